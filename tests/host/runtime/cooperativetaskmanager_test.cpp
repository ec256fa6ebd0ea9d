#include "host/runtime/cooperativetaskmanager.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/runtime/eventloop.h"

namespace Performance {
namespace {

using Manager = CooperativeTaskManager;

// A task that writes "<name>" to the log for each slice and asks for `slices` slices in all.
class LoggingTask : public Manager::Task {
 public:
  LoggingTask(std::string name, std::vector<std::string>& log, int slices = 1)
      : name(std::move(name)), log(log), slicesLeft(slices) {}

  bool isValid() override { return valid; }
  bool onProcess() override {
    log.push_back(name);
    if (throws) throw std::runtime_error(name + " failed");
    if (duringSlice) duringSlice();
    return --slicesLeft <= 0;
  }

  std::string name;
  std::vector<std::string>& log;
  int slicesLeft;
  bool valid = true;
  bool throws = false;
  std::function<void()> duringSlice;
};

std::size_t drain() { return blockara::EventLoop::instance().runUntilIdle(); }

TEST(CooperativeTaskManagerTest, OrderedSessionRunsInOrderAndFinishes) {
  std::vector<std::string> log;
  auto session = Manager::instance().addOrderedSession();
  session->add(std::make_shared<LoggingTask>("a", log, 2));
  session->add(std::make_shared<LoggingTask>("b", log));
  Manager::TaskSession::queueForProcessing();
  EXPECT_FALSE(session->isFinished());
  EXPECT_EQ(drain(), 3u);
  // "a" keeps its place until it is done.
  EXPECT_EQ(log, (std::vector<std::string>{"a", "a", "b"}));
  EXPECT_TRUE(session->isFinished());
  EXPECT_EQ(Manager::instance().size(), 0u);
}

TEST(CooperativeTaskManagerTest, PlainSessionTakesTurnsAndRootKeepsAcceptingWork) {
  std::vector<std::string> log;
  auto& root = Manager::instance();
  root.add(std::make_shared<LoggingTask>("a", log, 2));
  root.add(std::make_shared<LoggingTask>("b", log, 2));
  Manager::TaskSession::queueForProcessing();
  drain();
  EXPECT_EQ(log, (std::vector<std::string>{"a", "b", "a", "b"}));
  // The root outlives emptiness: new work after a drain runs as well.
  root.add(std::make_shared<LoggingTask>("c", log));
  Manager::TaskSession::queueForProcessing();
  drain();
  EXPECT_EQ(log.back(), "c");
  EXPECT_FALSE(root.isFinished());
}

TEST(CooperativeTaskManagerTest, RemovedInvalidAndThrowingTasksDoNotStopTheOthers) {
  // Removal takes a task out before it runs, also from inside another task's slice.
  std::vector<std::string> log;
  auto session = Manager::instance().addOrderedSession();
  auto first = std::make_shared<LoggingTask>("first", log);
  auto second = std::make_shared<LoggingTask>("second", log);
  auto third = std::make_shared<LoggingTask>("third", log);
  first->duringSlice = [&] { third->remove(); };
  session->add(first);
  session->add(second);
  session->add(third);
  second->remove();
  Manager::TaskSession::queueForProcessing();
  drain();
  EXPECT_EQ(log, (std::vector<std::string>{"first"}));
  EXPECT_TRUE(session->isFinished());

  // Invalid tasks are dropped; a throwing task is reported and finished.
  log.clear();
  std::vector<std::string> errors;
  Manager::setErrorHandler([&](const std::string& message) { errors.push_back(message); });
  session = Manager::instance().addOrderedSession();
  auto invalid = std::make_shared<LoggingTask>("invalid", log);
  invalid->valid = false;
  auto thrower = std::make_shared<LoggingTask>("thrower", log, 5);
  thrower->throws = true;
  session->add(invalid);
  session->add(thrower);
  session->add(std::make_shared<LoggingTask>("after", log));
  Manager::TaskSession::queueForProcessing();
  drain();
  EXPECT_EQ(log, (std::vector<std::string>{"thrower", "after"}));
  EXPECT_EQ(errors, (std::vector<std::string>{"thrower failed"}));
  EXPECT_TRUE(session->isFinished());
}

TEST(CooperativeTaskManagerTest, TasksRunOnlyWhenRequestedAndNothingIsPosted) {
  std::vector<std::string> log;
  auto& loop = blockara::EventLoop::instance();
  loop.adoptCurrentThread();
  auto session = Manager::instance().addOrderedSession();
  session->add(std::make_shared<LoggingTask>("task", log));
  // Without a request the task waits.
  EXPECT_FALSE(loop.pumpOnce());
  EXPECT_TRUE(log.empty());

  Manager::TaskSession::queueForProcessing();
  loop.post([&] { log.push_back("posted1"); });
  loop.post([&] {
    log.push_back("posted2");
    loop.post([&] { log.push_back("posted3"); });
  });
  EXPECT_TRUE(loop.hasLocalWork());
  EXPECT_TRUE(loop.pumpOnce());
  EXPECT_EQ(log, (std::vector<std::string>{"posted1", "posted2"}));
  EXPECT_TRUE(loop.pumpOnce());  // what was posted meanwhile still comes first
  EXPECT_EQ(log.back(), "posted3");
  EXPECT_TRUE(loop.pumpOnce());
  EXPECT_EQ(log.back(), "task");
  EXPECT_FALSE(loop.pumpOnce());
  EXPECT_FALSE(loop.hasLocalWork());
}

TEST(CooperativeTaskManagerTest, RunUntilIdleStopsWorkThatKeepsMakingWork) {
  std::vector<std::string> log;
  Manager::instance().add(std::make_shared<LoggingTask>("forever", log, 1'000'000'000));
  Manager::TaskSession::queueForProcessing();
  EXPECT_EQ(blockara::EventLoop::instance().runUntilIdle(10), 10u);
  EXPECT_EQ(log.size(), 10u);
  EXPECT_TRUE(Manager::hasPendingWork());
}

}  // namespace
}  // namespace Performance
