#pragma once

#include <tbb/concurrent_queue.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "host/runtime/timerthread.h"
#include "src/queueallocator.h"
#include "src/workerthread/workerqueuefunc.h"

namespace bkedittimecheck {

/// The one worker queue of the process, served by the host's timer thread: each tick runs
/// every queued item in order of arrival.
///
/// Thread contract: `enqueue` from any thread; `onTimer` on the timer thread. The two queues are
/// lock-free concurrent queues and need no further guard; the count of outstanding items is an
/// atomic.
class AsyncTaskManager : public blockara::TimerThread {
 public:
  /// Any thread. The process-wide queue; its thread starts on first use.
  static AsyncTaskManager& instance();

  ~AsyncTaskManager() override;

  /// Any thread. Takes ownership of `func` and queues it; `useBatchQueue` false selects the
  /// immediate queue, the one this engine uses.
  void enqueue(std::unique_ptr<WorkerQueueFunc> func, bool useBatchQueue);

  /// Any thread. Queues every item of `funcs` in order, as `enqueue` does each, and asks for a
  /// tick once, after the last; leaves `funcs` empty.
  void enqueueAll(std::vector<std::unique_ptr<WorkerQueueFunc>>& funcs, bool useBatchQueue);

  /// Any thread. Items queued and not yet finished, over the life of the process; 0 before the
  /// first item and without making the manager.
  static std::int64_t outstandingCount();

  /// Timer thread. Runs the queued items until both queues are empty; an item that throws is
  /// dropped and the loop goes on.
  void onTimer() override;

 private:
  struct ConcurrentQueueItem {
    std::unique_ptr<WorkerQueueFunc> func;
  };
  using ItemQueue =
      tbb::concurrent_queue<ConcurrentQueueItem*, QueueAllocator<ConcurrentQueueItem*>>;

  AsyncTaskManager();
  // Queues `func` without asking for a tick.
  void push(std::unique_ptr<WorkerQueueFunc> func, bool useBatchQueue);

  ItemQueue batchQueue;
  ItemQueue immediateQueue;
};

}  // namespace bkedittimecheck
