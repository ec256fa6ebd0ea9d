#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

namespace blockara {

/// The host's timer thread: one background thread that calls `onTimer` once per tick.
///
/// A tick comes either from the period (periodic mode) or only from `tick()` (manual mode, in
/// which a test or the main loop drives the thread deterministically). In both modes `onTimer`
/// runs on the timer thread itself, never on the caller's.
///
/// Virtual slots, in order: the destructor, `run`, `starting`, `running`, `stopping`,
/// `timerTick` (one tick; calls `onTimer` and drops what it throws), `onTimer` (pure).
///
/// Thread contract: `start`, `stop` and the destructor belong to the owner's thread (normally the
/// main thread); `tick`, `state` and `tickCount` may be called from any thread but the timer
/// thread. `mutex` guards `threadState`, `stopRequested` and the three tick counters.
/// A subclass must call `stop()` in its own destructor: once the subclass part is gone the
/// thread may no longer call `onTimer`.
class TimerThread {
 public:
  /// Execution modes given to the constructor. `hostDefault` (0) takes the process-wide mode
  /// that the host set with `setDefaultMode` (periodic unless changed).
  enum ExecutionMode : int { hostDefault = 0, periodic = 1, manual = 2 };

  /// The life of the thread.
  enum class ThreadState { notStarted, starting, running, stopping, stopped };

  /// Any thread. Makes a timer that has not started yet. `period` is counted in units of
  /// `periodUnit()` (10 ms unless the host set another). Throws `std::invalid_argument` for an
  /// unknown mode, or for a period that is not finite and positive in periodic mode.
  TimerThread(int executionMode, double period);

  /// Stops the thread if a subclass forgot to.
  virtual ~TimerThread();

  TimerThread(const TimerThread&) = delete;
  TimerThread& operator=(const TimerThread&) = delete;

  /// Timer thread. The body of the thread: `starting`, `running`, the tick loop, `stopping`.
  virtual void run();

  /// Timer thread. Called once when the thread begins, before any tick.
  virtual void starting() {}

  /// Timer thread. Called once when the tick loop is entered.
  virtual void running() {}

  /// Timer thread. Called once after the last tick.
  virtual void stopping() {}

  /// Timer thread. One tick: calls `onTimer`, catching and dropping any exception so that the
  /// thread never stops on an error.
  virtual void timerTick();

  /// Timer thread. The work of one tick.
  virtual void onTimer() = 0;

  /// Owner's thread. Starts the thread. Does nothing if it has already been started.
  void start();

  /// Owner's thread. Asks the thread to end after the tick in progress and joins it. Ticks that
  /// were asked for and have not begun are not run. Safe to call twice or before `start`.
  void stop();

  /// Any thread but the timer thread. Asks for one tick now and waits until it has run. In
  /// periodic mode this merely brings the next tick forward. Returns false, without waiting,
  /// when the thread is not running or when called on the timer thread itself. Called on the
  /// main thread, it runs the main loop's posted items while it waits, since the tick may wait
  /// for one of them (a host-language evaluation); their exceptions propagate.
  bool tick();

  /// Any thread but the timer thread. Asks for one tick that begins after this call and returns
  /// at once: in periodic mode the next tick comes forward, in manual mode the tick runs without
  /// anyone waiting for it. Requests made before a tick begins are served by that tick. Returns
  /// false when the thread is not running or when called on the timer thread.
  bool requestTick();

  /// Any thread, the timer thread too. Tells the timer that work arrived for its next tick. A
  /// periodic timer whose periods are not held brings that tick forward, so the work need not
  /// wait out the rest of the period; a manual timer, or a held one, ticks only when asked.
  void workArrived();

  /// Owner's thread, before `start`. For a periodic timer whose ticks only serve work that it is
  /// told of through `workArrived`: an idle period then passes without waking the thread, and
  /// only every hundredth period ticks, as a safety net. Other modes ignore it.
  void tickOnReportedWork(bool on) { workDriven = on; }

  /// Any thread. The current state of the thread.
  ThreadState state() const;

  /// Any thread. How many ticks have completed.
  std::uint64_t tickCount() const;

  /// Any thread. The mode this timer runs in (never `hostDefault`).
  ExecutionMode mode() const { return executionMode; }

  /// Any thread. The interval between periodic ticks.
  std::chrono::nanoseconds interval() const { return periodLength; }

  /// Host setting, read by constructors: the mode that `hostDefault` stands for.
  static void setDefaultMode(ExecutionMode mode);
  static ExecutionMode defaultMode();

  /// Host setting, read by constructors: the length of one unit of period. Throws
  /// `std::invalid_argument` for a unit that is not positive.
  static void setPeriodUnit(std::chrono::nanoseconds unit);
  static std::chrono::nanoseconds periodUnit();

  /// Any thread. While held, periodic timers let their periods pass without a tick and tick only
  /// when asked (`tick`, `requestTick`), as manual ones do. The main loop's batch mode holds
  /// them. Off by default.
  static void holdPeriods(bool on);

  /// Main thread. Ticks every running timer in manual mode once, each waiting for its tick.
  /// Returns how many were ticked. Used by the main loop to let manual timers drain their work.
  static std::size_t tickAllManual();

  /// Main thread. Asks every running timer, whatever its mode, for a tick (`requestTick`) without
  /// waiting. Returns how many were asked. Used by the main loop's batch mode.
  static std::size_t requestTickAll();

  /// Main thread. Ticks every running timer, whatever its mode, once, each waiting for its tick
  /// (`tick`). Returns how many were ticked. Used by the main loop's batch mode.
  static std::size_t tickAll();

 private:
  void registerSelf();
  void unregisterSelf();

  ExecutionMode executionMode;
  std::chrono::nanoseconds periodLength;
  std::thread thread;       // owner's thread
  std::thread::id timerId;  // guarded by mutex
  mutable std::mutex mutex;
  std::condition_variable wake;                       // signalled on a tick request or a stop
  std::condition_variable tickDone;                   // signalled after each tick
  ThreadState threadState = ThreadState::notStarted;  // guarded by mutex
  bool stopRequested = false;                         // guarded by mutex
  std::uint64_t ticksRequested = 0;  // guarded by mutex; the number of the last tick asked for
  std::uint64_t ticksStarted = 0;    // guarded by mutex
  std::uint64_t ticksDone = 0;       // guarded by mutex
  bool workDriven = false;           // set before start, read by the timer thread
};

}  // namespace blockara
