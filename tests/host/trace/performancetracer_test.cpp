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

namespace blockara {
namespace {

namespace fs = std::filesystem;
namespace pt = boost::property_tree;

fs::path tracePath(const std::string& name) {
  return fs::temp_directory_path() / ("bketc-trace-" + std::to_string(::getpid()) + "-" + name);
}

struct Event {
  std::string name, cat, ph;
  double ts = 0;
  int tid = 0;
  std::string contextA, contextB, threadName;
};

std::vector<Event> readTrace(const fs::path& path) {
  pt::ptree root;
  pt::read_json(path.string(), root);  // throws on malformed JSON
  std::vector<Event> events;
  for (const auto& [key, node] : root) {
    Event e;
    e.name = node.get<std::string>("name");
    e.ph = node.get<std::string>("ph");
    e.cat = node.get<std::string>("cat", "");
    e.ts = node.get<double>("ts", 0);
    e.tid = node.get<int>("tid");
    EXPECT_EQ(node.get<int>("pid"), ::getpid());
    e.contextA = node.get<std::string>("args.contextA", "");
    e.contextB = node.get<std::string>("args.contextB", "");
    e.threadName = node.get<std::string>("args.name", "");
    events.push_back(e);
  }
  return events;
}

TEST(PerformanceTracerTest, WritesNestedStartsAndStopsPerThreadAsChromeTraceEvents) {
  const fs::path path = tracePath("nested.json");
  PerformanceTracer& tracer = PerformanceTracer::instance();
  PerformanceTracer::nameCurrentThread("main");
  tracer.start(path.string());
  EXPECT_TRUE(tracer.isOn());
  EXPECT_EQ(tracer.filePath(), path.string());

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
  EXPECT_FALSE(tracer.isOn());

  const std::vector<Event> events = readTrace(path);
  std::map<int, std::string> threadNames;
  std::map<int, std::vector<std::string>> sequence;  // per tid: "B:name" / "E:name"
  std::map<int, double> lastTs;
  for (const Event& e : events) {
    if (e.ph == "M") {
      EXPECT_EQ(e.name, "thread_name");
      EXPECT_FALSE(threadNames.count(e.tid)) << "thread announced twice";
      threadNames[e.tid] = e.threadName;
      continue;
    }
    ASSERT_TRUE(threadNames.count(e.tid)) << "event before its thread's name";
    EXPECT_EQ(e.cat, "EDITTIMECHECK");
    EXPECT_GE(e.ts, lastTs[e.tid]);
    lastTs[e.tid] = e.ts;
    sequence[e.tid].push_back(e.ph + ":" + e.name);
    if (e.name == "Inner") {
      EXPECT_EQ(e.contextA, "ctx \"a\"");
      EXPECT_EQ(e.contextB, "b\\c");
    }
  }
  ASSERT_EQ(threadNames.size(), 2u);
  int mainTid = 0, workerTid = 0;
  for (const auto& [tid, name] : threadNames) (name == "main" ? mainTid : workerTid) = tid;
  EXPECT_EQ(threadNames[workerTid], "worker");
  EXPECT_EQ(sequence[mainTid],
            (std::vector<std::string>{"B:Outer", "B:Inner", "E:Inner", "E:Outer"}));
  EXPECT_EQ(sequence[workerTid],
            (std::vector<std::string>{"B:ParallelThreadTime", "E:ParallelThreadTime"}));
  fs::remove(path);
}

TEST(PerformanceTracerTest, OffWritesNothingAndABadPathKeepsTheRunningTrace) {
  const fs::path path = tracePath("keep.json");
  PerformanceTracer& tracer = PerformanceTracer::instance();
  ptLogBlockaraData("C", "", "", "beforeStart", true);  // off: no effect, no error
  tracer.start(path.string());
  ptLogBlockaraData("C", "", "", "first", true);
  try {
    tracer.start("/nonexistent-dir/trace.json");
    FAIL() << "expected an error";
  } catch (const std::runtime_error& e) {
    EXPECT_NE(std::string(e.what()).find("/nonexistent-dir/trace.json"), std::string::npos);
  }
  EXPECT_TRUE(tracer.isOn());
  ptLogBlockaraData("C", "", "", "first", false);
  tracer.stop();
  tracer.stop();
  ptLogBlockaraData("C", "", "", "afterStop", true);

  std::vector<std::string> names;
  for (const Event& e : readTrace(path)) {
    if (e.ph != "M") names.push_back(e.ph + ":" + e.name);
  }
  EXPECT_EQ(names, (std::vector<std::string>{"B:first", "E:first"}));
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
  std::map<int, int> perThread;
  for (const Event& e : readTrace(path)) {
    if (e.ph != "M") ++perThread[e.tid];
  }
  EXPECT_EQ(perThread.size(), 4u);
  for (const auto& [tid, count] : perThread) EXPECT_EQ(count, 400) << "tid " << tid;
  fs::remove(path);
}

TEST(PerformanceTracerTest, GroupingsAreKeptByName) {
  EXPECT_EQ(ptAddGrouping("EDITTIMECHECK", {"ENGINE", "GRAPH"}), "EDITTIMECHECK");
  ptAddGrouping("EDITTIMECHECK", {"ENGINE", "GRAPH", "ALGORITHMS"});
  ptAddGrouping("OTHER", {});
  const auto groupings = PerformanceTracer::instance().groupingsByName();
  ASSERT_EQ(groupings.size(), 2u);
  EXPECT_EQ(groupings.at("EDITTIMECHECK"),
            (std::vector<std::string>{"ENGINE", "GRAPH", "ALGORITHMS"}));
  EXPECT_TRUE(groupings.at("OTHER").empty());
}

}  // namespace
}  // namespace blockara
