#include "src/profiler.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

#include "host/trace/performancetracer.h"

namespace bkedittimecheck {
namespace {

std::size_t count(const std::string& text, const std::string& part) {
  std::size_t n = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
  return n;
}

std::string event(const std::string& point, const char* phase) {
  return "{\"name\":\"" + point + "\",\"cat\":\"EDITTIMECHECK\",\"ph\":\"" + phase + "\"";
}

TEST(ProfilerTest, OneStopPerScopeAndTheTraceContextGoesWithEveryLog) {
  const std::filesystem::path file =
      std::filesystem::temp_directory_path() / "bketc_profiler_test.json";
  blockara::PerformanceTracer& tracer = blockara::PerformanceTracer::instance();
  tracer.start(file.string());
  {
    Profiler early("ENGINE", "early");
    early.stop();
    early.stop();  // the destructor and this second call log nothing more
  }
  try {
    Profiler failing("ENGINE", "failing");
    throw std::runtime_error("through the scope");
  } catch (const std::runtime_error&) {
  }
  Profiler::setTraceContext("first", "second");
  { Profiler withContext("ENGINE", "withContext"); }
  Profiler::clearTraceContext();
  { Profiler cleared("ENGINE", "cleared"); }
  tracer.stop();

  std::stringstream text;
  text << std::ifstream(file).rdbuf();
  const std::string trace = text.str();
  std::filesystem::remove(file);
  for (const char* point : {"early", "failing", "withContext", "cleared"}) {
    EXPECT_EQ(count(trace, event(point, "B")), 1u) << point;
    EXPECT_EQ(count(trace, event(point, "E")), 1u) << point;
  }
  // Start and stop of the one scope made while the context was set carry it; nothing else does.
  EXPECT_EQ(count(trace, "\"args\":{\"contextA\":\"first\",\"contextB\":\"second\"}"), 2u);
  EXPECT_EQ(count(trace, "\"contextA\""), 2u);
}

}  // namespace
}  // namespace bkedittimecheck
