#include "host/runtime/cooperativetaskmanager.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "host/runtime/eventloop.h"

namespace Performance {
namespace {

using Manager = CooperativeTaskManager;
using Log = std::vector<std::string>;

// A task that writes "<name>" to the log for each slice and asks for `slices` slices in all.
class LoggingTask : public Manager::Task {
 public:
  LoggingTask(std::string name, Log& log, int slices = 1)
      : name(std::move(name)), log(log), slicesLeft(slices) {}

  bool isValid() override { return valid; }
  bool onProcess() override {
    log.push_back(name);
    if (throws) throw std::runtime_error(name + " failed");
    if (duringSlice) duringSlice();
    return --slicesLeft <= 0;
  }

  std::string name;
  Log& log;
  int slicesLeft;
  bool valid = true;
  bool throws = false;
  std::function<void()> duringSlice;
};

std::size_t drain() {
  Manager::TaskSession::queueForProcessing();
  return blockara::EventLoop::instance().runUntilIdle();
}

TEST(CooperativeTaskManagerTest, OrderedSessionsFinishEachTaskFirstAndTheRootTakesTurns) {
  Log log;
  auto session = Manager::instance().addOrderedSession();
  session->add(std::make_shared<LoggingTask>("a", log, 2));
  session->add(std::make_shared<LoggingTask>("b", log));
  EXPECT_FALSE(session->isFinished());
  EXPECT_EQ(drain(), 3u);
  EXPECT_TRUE(session->isFinished());
  EXPECT_EQ(Manager::instance().size(), 0u);

  auto& root = Manager::instance();
  root.add(std::make_shared<LoggingTask>("c", log, 2));
  root.add(std::make_shared<LoggingTask>("d", log, 2));
  drain();
  // The root outlives emptiness: new work after a drain runs as well.
  root.add(std::make_shared<LoggingTask>("e", log));
  drain();
  EXPECT_EQ(log, (Log{"a", "a", "b", "c", "d", "c", "d", "e"}));
  EXPECT_FALSE(root.isFinished());
}

TEST(CooperativeTaskManagerTest, RemovedInvalidAndThrowingTasksDoNotStopTheOthers) {
  // Removal takes a task out before it runs, also from inside another task's slice.
  Log log;
  auto session = Manager::instance().addOrderedSession();
  auto first = std::make_shared<LoggingTask>("first", log);
  auto second = std::make_shared<LoggingTask>("second", log);
  auto third = std::make_shared<LoggingTask>("third", log);
  first->duringSlice = [&] { third->remove(); };
  for (const auto& task : {first, second, third}) session->add(task);
  second->remove();
  drain();
  EXPECT_EQ(log, (Log{"first"}));
  EXPECT_TRUE(session->isFinished());

  // Invalid tasks are dropped; a throwing task is reported and finished.
  log.clear();
  Log errors;
  Manager::setErrorHandler([&](const std::string& message) { errors.push_back(message); });
  session = Manager::instance().addOrderedSession();
  auto invalid = std::make_shared<LoggingTask>("invalid", log);
  invalid->valid = false;
  auto thrower = std::make_shared<LoggingTask>("thrower", log, 5);
  thrower->throws = true;
  for (const auto& task : {invalid, thrower, std::make_shared<LoggingTask>("after", log)})
    session->add(task);
  drain();
  EXPECT_EQ(log, (Log{"thrower", "after"}));
  EXPECT_EQ(errors, (Log{"thrower failed"}));
  EXPECT_TRUE(session->isFinished());
}

TEST(CooperativeTaskManagerTest, PostedItemsComeFirstAndInOrderAndTasksOnlyWhenRequested) {
  Log log;
  auto& loop = blockara::EventLoop::instance();
  loop.adoptCurrentThread();
  auto session = Manager::instance().addOrderedSession();
  session->add(std::make_shared<LoggingTask>("task", log));
  // Without a request the task waits.
  EXPECT_FALSE(loop.pumpOnce());
  EXPECT_TRUE(log.empty());

  Manager::TaskSession::queueForProcessing();
  std::thread([&] { loop.post([&] { log.push_back("posted1"); }); }).join();
  ASSERT_TRUE(loop.waitForPosted(std::chrono::milliseconds(0)));
  loop.post([&] {
    log.push_back("posted2");
    loop.post([&] { log.push_back("posted3"); });
  });
  EXPECT_TRUE(loop.hasLocalWork());
  EXPECT_TRUE(loop.pumpOnce());
  EXPECT_EQ(log, (Log{"posted1", "posted2"}));
  EXPECT_TRUE(loop.pumpOnce());  // what was posted meanwhile still comes first
  EXPECT_EQ(log.back(), "posted3");
  EXPECT_TRUE(loop.pumpOnce());
  EXPECT_EQ(log.back(), "task");
  EXPECT_FALSE(loop.pumpOnce());
  EXPECT_FALSE(loop.hasLocalWork());

  // A throwing item keeps the rest for the next pump.
  loop.post([] { throw std::runtime_error("boom"); });
  loop.post([&] { log.push_back("after boom"); });
  EXPECT_THROW(loop.runPosted(), std::runtime_error);
  EXPECT_EQ(loop.pendingCount(), 1u);
  EXPECT_EQ(loop.runPosted(), 1u);
  EXPECT_EQ(log.back(), "after boom");
}

TEST(CooperativeTaskManagerTest, RunUntilIdleStopsWorkThatKeepsMakingWork) {
  Log log;
  Manager::instance().add(std::make_shared<LoggingTask>("forever", log, 1'000'000'000));
  Manager::TaskSession::queueForProcessing();
  EXPECT_EQ(blockara::EventLoop::instance().runUntilIdle(10), 10u);
  EXPECT_EQ(log.size(), 10u);
  EXPECT_TRUE(Manager::hasPendingWork());
}

}  // namespace
}  // namespace Performance
