#include "host/runtime/timerthread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "host/runtime/eventloop.h"

namespace blockara {
namespace {

// Records its hooks and the thread of each tick; a tick drains `queued`.
class RecordingTimer : public TimerThread {
 public:
  RecordingTimer(int mode, double period) : TimerThread(mode, period) {}
  ~RecordingTimer() override { stop(); }

  void starting() override { record("starting"); }
  void running() override { record("running"); }
  void stopping() override { record("stopping"); }
  void onTimer() override {
    tickThread = std::this_thread::get_id();
    const int n = queued.exchange(0);
    drained += n;
    if (onTick) onTick();
    if (throwOnTick) throw std::runtime_error("tick failed");
    ticks.fetch_add(1);
  }
  void record(const std::string& what) {
    std::lock_guard<std::mutex> lock(m);
    hooks.push_back(what);
  }

  std::mutex m;
  std::vector<std::string> hooks;  // guarded by m
  std::atomic<int> queued{0};
  std::atomic<int> drained{0};
  std::atomic<int> ticks{0};
  std::atomic<bool> throwOnTick{false};
  std::function<void()> onTick;  // set before start
  std::thread::id tickThread;    // read after a tick completed
};

// A periodic timer told of its work ticks at once for it, and again for work that its own tick
// queues, long before its period (here a thousand seconds) would have come round.
TEST(TimerThreadTest, ReportedWorkBringsTheTickForwardAlsoFromTheTimerThread) {
  RecordingTimer timer(TimerThread::periodic, 1e5);
  timer.tickOnReportedWork(true);
  timer.onTick = [&timer] {
    if (timer.ticks.load() == 0) timer.workArrived();
  };
  timer.start();
  timer.workArrived();
  while (timer.ticks.load() < 2) std::this_thread::yield();
  EXPECT_EQ(timer.ticks.load(), 2);
}

TEST(TimerThreadTest, ManualModeTicksOnlyWhenAskedOnItsOwnThreadAndSurvivesAFailingTick) {
  RecordingTimer timer(TimerThread::manual, 1.0);
  EXPECT_FALSE(timer.tick());  // not started
  timer.start();
  timer.queued = 3;
  ASSERT_TRUE(timer.tick());
  EXPECT_EQ(timer.drained.load(), 3);
  EXPECT_NE(timer.tickThread, std::this_thread::get_id());

  // Work queued between ticks waits for the next tick, however long that takes.
  timer.queued = 2;
  EXPECT_EQ(timer.drained.load(), 3);
  ASSERT_TRUE(timer.tick());
  EXPECT_EQ(timer.drained.load(), 5);
  timer.stop();
  timer.stop();
  EXPECT_FALSE(timer.tick());
  EXPECT_EQ(timer.hooks, (std::vector<std::string>{"starting", "running", "stopping"}));

  // A failing tick does not end the thread.
  RecordingTimer failing(TimerThread::manual, 1.0);
  failing.throwOnTick = true;
  failing.start();
  EXPECT_TRUE(failing.tick());
  failing.throwOnTick = false;
  EXPECT_TRUE(failing.tick());
  EXPECT_EQ(failing.ticks.load(), 1);
  EXPECT_EQ(failing.tickCount(), 2u);
}

// Driving a manual worker to quiescence is what every engine fixture does; here, the busy checks.
TEST(TimerThreadTest, RunUntilQuietGivesUpWithTheReasonsOfWorkThatNeverSettles) {
  EventLoop& loop = EventLoop::instance();
  loop.adoptCurrentThread();
  const int stuck = loop.addBusyCheck("stuck", [] { return true; });
  loop.addBusyCheck("broken", []() -> bool { throw std::runtime_error("no answer"); });
  EXPECT_FALSE(loop.runUntilQuiet(std::chrono::milliseconds(0)));
  EXPECT_EQ(loop.busyReasons(), (std::vector<std::string>{"stuck", "broken"}));
  loop.removeBusyCheck(stuck);
  loop.removeBusyCheck(12345);
  EXPECT_EQ(loop.busyReasons(), (std::vector<std::string>{"broken"}));
}

TEST(TimerThreadTest, BatchModeRunsAChainOfRoundTripsWithoutWaitingOutThePeriod) {
  EventLoop& loop = EventLoop::instance();
  loop.adoptCurrentThread();
  RecordingTimer worker(TimerThread::periodic, 1e9);  // never ticks by itself in a test run
  EXPECT_FALSE(worker.requestTick());                 // not started
  // Each tick hands its result to the main thread, which queues the next item, as a scan that
  // snapshots one system per slice does: five round trips.
  std::vector<int> log;  // main thread: the items handed back, in order
  worker.onTick = [&, seen = 0]() mutable {
    const int done = worker.drained.load();
    if (done == seen) return;  // a tick that found nothing queued hands nothing back
    seen = done;
    loop.post([&, done] {
      log.push_back(done);
      if (done < 5) worker.queued += 1;
    });
  };
  worker.start();
  const int busy = loop.addBusyCheck("worker", [&] { return worker.queued.load() > 0; });
  loop.post([&] { worker.queued = 1; });

  EXPECT_FALSE(loop.runUntilQuiet(std::chrono::milliseconds(50)));  // waits for the period
  EXPECT_EQ(worker.drained.load(), 0);
  loop.setBatchMode(true);
  EXPECT_TRUE(loop.runUntilQuiet(std::chrono::seconds(60)));
  loop.setBatchMode(false);
  // Every item ran at a tick after it was queued, and each result came back in order.
  EXPECT_EQ(worker.drained.load(), 5);
  EXPECT_EQ(log, (std::vector<int>{1, 2, 3, 4, 5}));
  EXPECT_TRUE(worker.requestTick());
  loop.removeBusyCheck(busy);
}

}  // namespace
}  // namespace blockara
