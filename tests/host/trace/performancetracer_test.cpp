#include "host/trace/performancetracer.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <boost/property_tree/json_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "host/trace/ptlog.h"
#include "tests/host/messageof.h"

namespace blockara {
namespace {

namespace fs = std::filesystem;
namespace pt = boost::property_tree;

fs::path tracePath(const std::string& name) {
  return fs::temp_directory_path() / ("bketc-trace-" + std::to_string(::getpid()) + "-" + name);
}

/// The events of a trace in file order as "thread category ph:name[ contextA|contextB]",
/// checking on the way that each thread is named once before its first event and that its clock
/// never goes back.
std::vector<std::string> readTrace(const fs::path& path) {
  pt::ptree root;
  pt::read_json(path.string(), root);  // throws on malformed JSON
  std::map<int, std::string> names;
  std::map<int, double> lastTs;
  std::vector<std::string> events;
  for (const auto& [key, node] : root) {
    const int tid = node.get<int>("tid");
    EXPECT_EQ(node.get<int>("pid"), ::getpid());
    const std::string ph = node.get<std::string>("ph");
    if (ph == "M") {
      EXPECT_TRUE(names.emplace(tid, node.get<std::string>("args.name")).second) << "named twice";
      continue;
    }
    EXPECT_TRUE(names.count(tid)) << "event before its thread's name";
    const double ts = node.get<double>("ts");
    EXPECT_GE(ts, lastTs[tid]);
    lastTs[tid] = ts;
    std::string context = node.get<std::string>("args.contextA", "");
    if (!context.empty()) context = " " + context + "|" + node.get<std::string>("args.contextB");
    events.push_back(names[tid] + " " + node.get<std::string>("cat") + " " + ph + ":" +
                     node.get<std::string>("name") + context);
  }
  return events;
}

TEST(PerformanceTracerTest, WritesNestedStartsAndStopsPerThreadAsChromeTraceEvents) {
  const fs::path path = tracePath("nested.json");
  PerformanceTracer& tracer = PerformanceTracer::instance();
  PerformanceTracer::nameCurrentThread("main");
  tracer.start(path.string());
  ptLogBlockaraData("EDITTIMECHECK", "", "", "Outer", true);
  ptLogBlockaraData("EDITTIMECHECK", "ctx \"a\"", "b\\c", "Inner", true);
  std::thread worker([] {
    PerformanceTracer::nameCurrentThread("worker");
    ptLogBlockaraData("EDITTIMECHECK", "", "", "ParallelThreadTime", true);
    ptLogBlockaraData("EDITTIMECHECK", "", "", "ParallelThreadTime", false);
  });
  worker.join();
  ptLogBlockaraData("EDITTIMECHECK", "ctx \"a\"", "b\\c", "Inner", false);
  ptLogBlockaraData("EDITTIMECHECK", "", "", "Outer", false);
  tracer.stop();
  EXPECT_EQ(readTrace(path), (std::vector<std::string>{
                                 "main EDITTIMECHECK B:Outer",
                                 "main EDITTIMECHECK B:Inner ctx \"a\"|b\\c",
                                 "worker EDITTIMECHECK B:ParallelThreadTime",
                                 "worker EDITTIMECHECK E:ParallelThreadTime",
                                 "main EDITTIMECHECK E:Inner ctx \"a\"|b\\c",
                                 "main EDITTIMECHECK E:Outer",
                             }));
  fs::remove(path);
}

TEST(PerformanceTracerTest, OffWritesNothingAndABadPathKeepsTheRunningTrace) {
  const fs::path path = tracePath("keep.json");
  PerformanceTracer& tracer = PerformanceTracer::instance();
  PerformanceTracer::nameCurrentThread("main");
  ptLogBlockaraData("C", "", "", "beforeStart", true);  // off: no effect, no error
  tracer.start(path.string());
  ptLogBlockaraData("C", "", "", "first", true);
  EXPECT_NE(messageOf<std::runtime_error>([&] {
              tracer.start("/nonexistent-dir/trace.json");
            }).find("/nonexistent-dir/trace.json"),
            std::string::npos);
  EXPECT_TRUE(tracer.isOn());
  ptLogBlockaraData("C", "", "", "first", false);
  tracer.stop();
  tracer.stop();
  ptLogBlockaraData("C", "", "", "afterStop", true);

  EXPECT_EQ(readTrace(path), (std::vector<std::string>{"main C B:first", "main C E:first"}));
  fs::remove(path);
}

TEST(PerformanceTracerTest, ManyThreadsLogWithoutTearingTheFile) {
  const fs::path path = tracePath("threads.json");
  PerformanceTracer::instance().start(path.string());
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([] {
      for (int i = 0; i < 200; ++i) {
        ptLogBlockaraData("C", "", "", "p", true);
        ptLogBlockaraData("C", "", "", "p", false);
      }
    });
  }
  for (auto& t : threads) t.join();
  PerformanceTracer::instance().stop();
  std::map<std::string, int> perThread;
  for (const std::string& e : readTrace(path)) ++perThread[e.substr(0, e.find(" C "))];
  EXPECT_EQ(perThread.size(), 4u);
  for (const auto& [thread, count] : perThread) EXPECT_EQ(count, 400) << thread;
  fs::remove(path);
}

}  // namespace
}  // namespace blockara
