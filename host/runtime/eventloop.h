#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace blockara {

/// The main thread's event loop. Any thread may post work; only the main thread runs it.
///
/// One step of the loop runs what was posted (host-language commands and the like); only when
/// nothing was posted does it give one slice to the cooperative tasks, so that tasks run when
/// the host is idle. `runUntilIdle` pumps until neither is left; `runUntilQuiet` also waits for
/// work outside the main thread, which registered busy checks report.
///
/// Thread contract: `post`, `pendingCount` and `wake` may be called from any thread; every other
/// operation belongs to the main thread (the thread that first called `instance`, or the one
/// named by `adoptCurrentThread`). `mutex` guards `posted` and `wakeups`; `busyChecks` is
/// main-thread state.
class EventLoop {
 public:
  /// The process-wide loop. The first caller's thread becomes the main thread.
  static EventLoop& instance();

  EventLoop(const EventLoop&) = delete;
  EventLoop& operator=(const EventLoop&) = delete;

  /// Any thread. Queues `fn` to run on the main thread at the next pump, in order of posting.
  void post(std::function<void()> fn);

  /// Any thread. How many posted items wait to run.
  std::size_t pendingCount() const;

  /// Main thread. Runs the items posted so far (not those they post in turn) and returns how many
  /// ran. An exception thrown by an item propagates after the item is removed.
  std::size_t runPosted();

  /// Main thread. Blocks until an item is posted, `wake` is called or `timeout` passes; true when
  /// an item waits.
  bool waitForPosted(std::chrono::milliseconds timeout);

  /// Any thread. Wakes a main thread blocked in `waitForPosted` or `runUntilQuiet`, so that it
  /// looks at its busy checks again (call it when outside work has finished).
  void wake();

  /// Main thread. One step: runs the items posted so far; if there were none, runs one slice of
  /// the cooperative tasks. Returns true when anything ran. Exceptions of posted items propagate
  /// as in `runPosted`; those of tasks are handled by the task manager.
  bool pumpOnce();

  /// Main thread. True when an item is posted or a cooperative task waits to run.
  bool hasLocalWork() const;

  /// Main thread. Pumps until nothing is posted and no cooperative task waits, or until
  /// `maxSteps` steps have run (a guard against work that keeps making work). Does not wait for
  /// outside work. Returns the number of steps that did something.
  std::size_t runUntilIdle(std::size_t maxSteps = 1'000'000);

  /// Main thread. Registers a check that returns true while something outside the main loop is
  /// in flight (say, a worker's queue). Checks run on the main thread and must be cheap and
  /// thread-safe towards what they look at. `name` is what `busyReasons` reports. Returns the id
  /// that `removeBusyCheck` takes.
  int addBusyCheck(std::string name, std::function<bool()> check);

  /// Main thread. Forgets a busy check; an unknown id is ignored.
  void removeBusyCheck(int id);

  /// Main thread. The names of the busy checks that return true now, in order of registration.
  /// A check that throws counts as busy.
  std::vector<std::string> busyReasons() const;

  /// Main thread. Runs the loop until it is quiet: nothing posted, no cooperative task, and no
  /// busy check true. While only outside work is left, timers in manual mode are ticked (so that
  /// a manual worker drains deterministically) and otherwise the loop sleeps until something is
  /// posted or `wake` is called, looking again at least every millisecond. Returns true when
  /// quiet, false when `timeout` ran out first.
  bool runUntilQuiet(std::chrono::milliseconds timeout);

  /// Main thread. Batch mode, for a program that only wants work done (a batch check): timers
  /// are not left to their periods (`TimerThread::holdPeriods`). `runUntilQuiet` runs the main
  /// thread's own work first; only when none is left does it tick every running timer and wait
  /// for the tick (`TimerThread::tickAll`), instead of sleeping. A worker so takes what the main
  /// thread queued in few large ticks rather than one tick per slice. Off by default.
  void setBatchMode(bool on);
  bool isBatchMode() const { return batchMode; }

  /// Makes the calling thread the main thread (tests and the program call it once at start).
  void adoptCurrentThread();

  /// True on the main thread.
  bool isMainThread() const;

 private:
  EventLoop();

  mutable std::mutex mutex;
  std::condition_variable postedCv;                                         // signalled by post
  std::deque<std::function<void()>> posted;                                 // guarded by mutex
  std::uint64_t wakeups = 0;                                                // guarded by mutex
  int nextBusyId = 1;                                                       // main thread
  std::map<int, std::pair<std::string, std::function<bool()>>> busyChecks;  // main thread
  std::thread::id mainThread;  // written once at start, on the main thread
  bool batchMode = false;      // main thread
};

}  // namespace blockara
