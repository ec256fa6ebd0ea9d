#include "host/runtime/eventloop.h"

#include <algorithm>

#include "host/runtime/cooperativetaskmanager.h"
#include "host/runtime/timerthread.h"

namespace blockara {

EventLoop& EventLoop::instance() {
  static EventLoop loop;
  return loop;
}

EventLoop::EventLoop() : mainThread(std::this_thread::get_id()) {}

void EventLoop::post(std::function<void()> fn) {
  {
    std::lock_guard<std::mutex> lock(mutex);
    posted.push_back(std::move(fn));
  }
  postedCv.notify_all();
}

std::size_t EventLoop::pendingCount() const {
  std::lock_guard<std::mutex> lock(mutex);
  return posted.size();
}

std::size_t EventLoop::runPosted() {
  std::deque<std::function<void()>> batch;
  {
    std::lock_guard<std::mutex> lock(mutex);
    batch.swap(posted);
  }
  std::size_t ran = 0;
  while (!batch.empty()) {
    auto fn = std::move(batch.front());
    batch.pop_front();
    ++ran;
    try {
      fn();
    } catch (...) {
      // Keep what was not run yet in front of anything posted meanwhile.
      std::lock_guard<std::mutex> lock(mutex);
      posted.insert(posted.begin(), std::make_move_iterator(batch.begin()),
                    std::make_move_iterator(batch.end()));
      throw;
    }
  }
  return ran;
}

bool EventLoop::waitForPosted(std::chrono::milliseconds timeout) {
  std::unique_lock<std::mutex> lock(mutex);
  const std::uint64_t seen = wakeups;
  postedCv.wait_for(lock, timeout, [&] { return !posted.empty() || wakeups != seen; });
  return !posted.empty();
}

void EventLoop::wake() {
  {
    std::lock_guard<std::mutex> lock(mutex);
    ++wakeups;
  }
  postedCv.notify_all();
}

bool EventLoop::pumpOnce() {
  if (runPosted() > 0) return true;
  return Performance::CooperativeTaskManager::processNext();
}

bool EventLoop::hasLocalWork() const {
  return pendingCount() > 0 || Performance::CooperativeTaskManager::hasPendingWork();
}

std::size_t EventLoop::runUntilIdle(std::size_t maxSteps) {
  std::size_t steps = 0;
  while (steps < maxSteps && pumpOnce()) ++steps;
  return steps;
}

int EventLoop::addBusyCheck(std::string name, std::function<bool()> check) {
  const int id = nextBusyId++;
  busyChecks.emplace(id, std::make_pair(std::move(name), std::move(check)));
  return id;
}

void EventLoop::removeBusyCheck(int id) { busyChecks.erase(id); }

std::vector<std::string> EventLoop::busyReasons() const {
  std::vector<std::string> reasons;
  for (const auto& [id, entry] : busyChecks) {
    bool busy = true;
    try {
      busy = !entry.second || entry.second();
    } catch (...) {
      // A check that cannot answer must not make the loop report quiet.
    }
    if (busy) reasons.push_back(entry.first);
  }
  return reasons;
}

bool EventLoop::runUntilQuiet(std::chrono::milliseconds timeout) {
  using Clock = std::chrono::steady_clock;
  const auto deadline = Clock::now() + timeout;
  for (;;) {
    if (pumpOnce()) {
      if (Clock::now() >= deadline) return false;
      continue;
    }
    if (busyReasons().empty()) {
      if (!hasLocalWork()) return true;
      continue;
    }
    if (Clock::now() >= deadline) return false;
    if (batchMode ? TimerThread::tickAll() > 0 : TimerThread::tickAllManual() > 0) continue;
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    waitForPosted(std::clamp(left, std::chrono::milliseconds(0), std::chrono::milliseconds(1)));
  }
}

void EventLoop::setBatchMode(bool on) {
  batchMode = on;
  TimerThread::holdPeriods(on);
}

void EventLoop::adoptCurrentThread() { mainThread = std::this_thread::get_id(); }

bool EventLoop::isMainThread() const { return std::this_thread::get_id() == mainThread; }

}  // namespace blockara
