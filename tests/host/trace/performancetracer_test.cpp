#include "host/trace/performancetracer.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <boost/property_tree/json_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <filesystem>
#include <map>
#include <thread>

#include "host/trace/ptlog.h"
#include "tests/host/messageof.h"

namespace blockara {
namespace {

namespace fs = std::filesystem;
namespace pt = boost::property_tree;

class PerformanceTracerTest : public ::testing::Test {
 protected:
  void SetUp() override { PerformanceTracer::nameCurrentThread("main"); }
  void TearDown() override { fs::remove(path); }
  /// The events of the trace in file order as "thread category ph:name[ contextA|contextB]",
  /// checking on the way that each thread is named once before its first event and that its
  /// clock never goes back.
  std::vector<std::string> events() {
    pt::ptree root;
    pt::read_json(path.string(), root);  // throws on malformed JSON
    std::map<int, std::string> names;
    std::map<int, double> lastTs;
    std::vector<std::string> out;
    for (const auto& [key, node] : root) {
      const int tid = node.get<int>("tid");
      EXPECT_EQ(node.get<int>("pid"), ::getpid());
      const std::string ph = node.get<std::string>("ph");
      if (ph == "M") {
        EXPECT_TRUE(names.emplace(tid, node.get<std::string>("args.name")).second) << "named twice";
        continue;
      }
      EXPECT_TRUE(names.count(tid)) << "event before its thread's name";
      EXPECT_GE(node.get<double>("ts"), lastTs[tid]);
      lastTs[tid] = node.get<double>("ts");
      std::string context = node.get<std::string>("args.contextA", "");
      if (!context.empty()) context = " " + context + "|" + node.get<std::string>("args.contextB");
      out.push_back(names[tid] + " " + node.get<std::string>("cat") + " " + ph + ":" +
                    node.get<std::string>("name") + context);
    }
    return out;
  }
  const fs::path path = fs::temp_directory_path() / ("bketc-trace-" + std::to_string(::getpid()));
  PerformanceTracer& tracer = PerformanceTracer::instance();
};

TEST_F(PerformanceTracerTest, WritesNestedStartsAndStopsPerThreadOnlyWhileOnAndKeepsItOnABadPath) {
  ptLogBlockaraData("C", "", "", "beforeStart", true);  // off: no effect, no error
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
  // Unnamed threads logging at once.
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
  // A bad path keeps the running trace.
  EXPECT_NE(messageOf<std::runtime_error>([&] {
              tracer.start("/nonexistent-dir/trace.json");
            }).find("/nonexistent-dir/trace.json"),
            std::string::npos);
  EXPECT_TRUE(tracer.isOn());
  tracer.stop();
  tracer.stop();
  ptLogBlockaraData("C", "", "", "afterStop", true);
  std::vector<std::string> all = events();
  std::map<std::string, int> perThread;
  for (auto e = all.begin() + 6; e != all.end(); ++e) ++perThread[e->substr(0, e->find(" C "))];
  all.resize(6);
  EXPECT_EQ(all, (std::vector<std::string>{
                     "main EDITTIMECHECK B:Outer",
                     "main EDITTIMECHECK B:Inner ctx \"a\"|b\\c",
                     "worker EDITTIMECHECK B:ParallelThreadTime",
                     "worker EDITTIMECHECK E:ParallelThreadTime",
                     "main EDITTIMECHECK E:Inner ctx \"a\"|b\\c",
                     "main EDITTIMECHECK E:Outer",
                 }));
  EXPECT_EQ(perThread.size(), 4u);
  for (const auto& [thread, count] : perThread) EXPECT_EQ(count, 400) << thread;
}

}  // namespace
}  // namespace blockara
