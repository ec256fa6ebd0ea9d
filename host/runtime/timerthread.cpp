#include "host/runtime/timerthread.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/runtime/eventloop.h"

namespace blockara {
namespace {

std::atomic<int> defaultModeSetting{TimerThread::periodic};
std::atomic<std::int64_t> periodUnitNanos{10'000'000};  // 10 ms
std::atomic<bool> periodsHeld{false};

// The running timers, for `tickAllManual`. registryMutex guards liveTimers.
std::mutex registryMutex;
std::vector<TimerThread*> liveTimers;

TimerThread::ExecutionMode resolveMode(int mode) {
  switch (mode) {
    case TimerThread::hostDefault:
      return static_cast<TimerThread::ExecutionMode>(defaultModeSetting.load());
    case TimerThread::periodic:
    case TimerThread::manual:
      return static_cast<TimerThread::ExecutionMode>(mode);
    default:
      throw std::invalid_argument("timer thread: unknown execution mode " + std::to_string(mode));
  }
}

std::chrono::nanoseconds resolvePeriod(TimerThread::ExecutionMode mode, double period) {
  const bool valid = std::isfinite(period) && period > 0.0;
  if (!valid) {
    if (mode == TimerThread::periodic) {
      throw std::invalid_argument("timer thread: the period must be finite and positive, not " +
                                  std::to_string(period));
    }
    return std::chrono::nanoseconds::zero();
  }
  const double nanos = period * static_cast<double>(periodUnitNanos.load());
  return std::chrono::nanoseconds(static_cast<std::int64_t>(std::max(1.0, std::min(nanos, 1e18))));
}

}  // namespace

TimerThread::TimerThread(int mode, double period)
    : executionMode(resolveMode(mode)), periodLength(resolvePeriod(executionMode, period)) {}

TimerThread::~TimerThread() { stop(); }

void TimerThread::start() {
  {
    std::lock_guard<std::mutex> lock(mutex);
    if (threadState != ThreadState::notStarted) return;
    threadState = ThreadState::starting;
    // Made under the lock so that `tick` reads a complete id; `run` takes the lock only later.
    thread = std::thread([this] { run(); });
    timerId = thread.get_id();
  }
  registerSelf();
}

void TimerThread::stop() {
  unregisterSelf();
  {
    std::lock_guard<std::mutex> lock(mutex);
    stopRequested = true;
  }
  wake.notify_all();
  if (thread.joinable() && thread.get_id() != std::this_thread::get_id()) thread.join();
  std::lock_guard<std::mutex> lock(mutex);
  if (threadState != ThreadState::notStarted) threadState = ThreadState::stopped;
  tickDone.notify_all();
}

void TimerThread::run() {
  starting();
  {
    std::lock_guard<std::mutex> lock(mutex);
    threadState = ThreadState::running;
  }
  running();
  // A timer told of its work sleeps through idle periods and ticks at every hundredth at least.
  const std::chrono::nanoseconds wait = workDriven ? 100 * periodLength : periodLength;
  auto deadline = std::chrono::steady_clock::now() + wait;
  std::unique_lock<std::mutex> lock(mutex);
  for (;;) {
    auto due = [this] { return stopRequested || ticksRequested > ticksStarted; };
    if (executionMode == periodic) {
      // A held period passes without a tick; only requests tick the timer meanwhile.
      if (!wake.wait_until(lock, deadline, due) && periodsHeld.load()) {
        deadline = std::chrono::steady_clock::now() + wait;
        continue;
      }
    } else {
      wake.wait(lock, due);
    }
    if (stopRequested) break;
    // A tick that starts now serves every request made before it.
    ticksStarted = std::max(ticksStarted + 1, ticksRequested);
    lock.unlock();
    timerTick();
    deadline = std::chrono::steady_clock::now() + wait;
    lock.lock();
    ticksDone = ticksStarted;
    tickDone.notify_all();
  }
  threadState = ThreadState::stopping;
  lock.unlock();
  stopping();
}

void TimerThread::timerTick() {
  try {
    onTimer();
  } catch (...) {
    // The thread outlives any failure of its work.
  }
}

bool TimerThread::tick() {
  std::unique_lock<std::mutex> lock(mutex);
  if (std::this_thread::get_id() == timerId) return false;
  if (stopRequested ||
      (threadState != ThreadState::starting && threadState != ThreadState::running)) {
    return false;
  }
  const std::uint64_t wanted = ticksStarted + 1;
  ticksRequested = std::max(ticksRequested, wanted);
  wake.notify_all();
  const auto finished = [&] { return ticksDone >= wanted || stopRequested; };
  EventLoop& loop = EventLoop::instance();
  if (!loop.isMainThread()) {
    tickDone.wait(lock, finished);
    return ticksDone >= wanted;
  }
  // The tick may wait for a host-language evaluation that it posted to the main thread; the
  // main thread waiting here runs what is posted meanwhile, or both would wait for ever.
  while (!finished()) {
    lock.unlock();
    const std::size_t ran = loop.runPosted();
    lock.lock();
    if (ran == 0) tickDone.wait_for(lock, std::chrono::milliseconds(1), finished);
  }
  return ticksDone >= wanted;
}

bool TimerThread::requestTick() {
  {
    std::lock_guard<std::mutex> lock(mutex);
    if (std::this_thread::get_id() == timerId) return false;
    if (stopRequested ||
        (threadState != ThreadState::starting && threadState != ThreadState::running)) {
      return false;
    }
    ticksRequested = std::max(ticksRequested, ticksStarted + 1);
  }
  wake.notify_all();
  return true;
}

void TimerThread::workArrived() {
  if (executionMode != periodic || periodsHeld.load()) return;
  {
    std::lock_guard<std::mutex> lock(mutex);
    if (stopRequested ||
        (threadState != ThreadState::starting && threadState != ThreadState::running)) {
      return;
    }
    // From the timer thread itself (work queued by a tick) this asks for the tick after it.
    // When that tick is asked for already, the thread was woken for it: an edit that queues
    // several items wakes it once.
    if (ticksRequested >= ticksStarted + 1) return;
    ticksRequested = ticksStarted + 1;
  }
  wake.notify_all();  // after unlocking, so that the woken thread does not wait for the lock
}

TimerThread::ThreadState TimerThread::state() const {
  std::lock_guard<std::mutex> lock(mutex);
  return threadState;
}

std::uint64_t TimerThread::tickCount() const {
  std::lock_guard<std::mutex> lock(mutex);
  return ticksDone;
}

void TimerThread::setDefaultMode(ExecutionMode mode) {
  if (mode != periodic && mode != manual) {
    throw std::invalid_argument("timer thread: the default mode must be periodic or manual");
  }
  defaultModeSetting.store(mode);
}

TimerThread::ExecutionMode TimerThread::defaultMode() {
  return static_cast<ExecutionMode>(defaultModeSetting.load());
}

void TimerThread::setPeriodUnit(std::chrono::nanoseconds unit) {
  if (unit.count() <= 0)
    throw std::invalid_argument("timer thread: the period unit must be positive");
  periodUnitNanos.store(unit.count());
}

void TimerThread::holdPeriods(bool on) { periodsHeld.store(on); }

std::chrono::nanoseconds TimerThread::periodUnit() {
  return std::chrono::nanoseconds(periodUnitNanos.load());
}

namespace {

// Calls `fn` on every running timer that `select` accepts; counts the calls that returned true.
template <typename Select, typename Fn>
std::size_t forEachTimer(Select select, Fn fn) {
  std::vector<TimerThread*> timers;
  {
    std::lock_guard<std::mutex> lock(registryMutex);
    timers = liveTimers;
  }
  std::size_t done = 0;
  for (TimerThread* timer : timers) {
    if (select(*timer) && fn(*timer)) ++done;
  }
  return done;
}

}  // namespace

std::size_t TimerThread::tickAllManual() {
  return forEachTimer([](TimerThread& t) { return t.mode() == manual; },
                      [](TimerThread& t) { return t.tick(); });
}

std::size_t TimerThread::requestTickAll() {
  return forEachTimer([](TimerThread&) { return true; },
                      [](TimerThread& t) { return t.requestTick(); });
}

std::size_t TimerThread::tickAll() {
  return forEachTimer([](TimerThread&) { return true; }, [](TimerThread& t) { return t.tick(); });
}

void TimerThread::registerSelf() {
  std::lock_guard<std::mutex> lock(registryMutex);
  liveTimers.push_back(this);
}

void TimerThread::unregisterSelf() {
  std::lock_guard<std::mutex> lock(registryMutex);
  liveTimers.erase(std::remove(liveTimers.begin(), liveTimers.end(), this), liveTimers.end());
}

}  // namespace blockara
