#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace blockara {

/// The main thread's event loop. Any thread may post work; only the main thread runs it.
///
/// Thread contract: `post` and `pendingCount` may be called from any thread; every other
/// operation belongs to the main thread (the thread that first called `instance`, or the one
/// named by `adoptCurrentThread`). `mutex` guards `posted`.
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

  /// Main thread. Blocks until an item is posted or `timeout` passes; true when one waits.
  bool waitForPosted(std::chrono::milliseconds timeout);

  /// Makes the calling thread the main thread (tests and the program call it once at start).
  void adoptCurrentThread();

  /// True on the main thread.
  bool isMainThread() const;

 private:
  EventLoop();

  mutable std::mutex mutex;
  std::condition_variable postedCv;       // signalled by post
  std::deque<std::function<void()>> posted;  // guarded by mutex
  std::thread::id mainThread;             // written once at start, on the main thread
};

}  // namespace blockara
