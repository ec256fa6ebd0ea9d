#include "host/runtime/eventloop.h"

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
  return postedCv.wait_for(lock, timeout, [this] { return !posted.empty(); });
}

void EventLoop::adoptCurrentThread() { mainThread = std::this_thread::get_id(); }

bool EventLoop::isMainThread() const { return std::this_thread::get_id() == mainThread; }

}  // namespace blockara
