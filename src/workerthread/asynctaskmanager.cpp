#include "src/workerthread/asynctaskmanager.h"

#include <atomic>
#include <vector>

namespace bkedittimecheck {
namespace {

// Raised before an item is queued and lowered after it ran, so that a reader never sees 0 while
// an item is on its way or in progress.
std::atomic<std::int64_t> outstanding{0};

}  // namespace

std::int64_t AsyncTaskManager::outstandingCount() { return outstanding.load(); }

AsyncTaskManager& AsyncTaskManager::instance() {
  static AsyncTaskManager manager;
  return manager;
}

AsyncTaskManager::AsyncTaskManager() : blockara::TimerThread(0, 1.0) {
  // Every item comes through `enqueue`, which tells the timer; an idle worker need not wake.
  tickOnReportedWork(true);
  start();
}

AsyncTaskManager::~AsyncTaskManager() {
  stop();
  ConcurrentQueueItem* item = nullptr;
  while (immediateQueue.try_pop(item)) {
    delete item;
    outstanding.fetch_sub(1);
  }
  while (batchQueue.try_pop(item)) {
    delete item;
    outstanding.fetch_sub(1);
  }
}

void AsyncTaskManager::push(std::unique_ptr<WorkerQueueFunc> func, bool useBatchQueue) {
  auto* item = new ConcurrentQueueItem{std::move(func)};
  outstanding.fetch_add(1);
  (useBatchQueue ? batchQueue : immediateQueue).push(item);
}

void AsyncTaskManager::enqueue(std::unique_ptr<WorkerQueueFunc> func, bool useBatchQueue) {
  push(std::move(func), useBatchQueue);
  // The items still run at a tick after they were queued; the host's timer chooses whether that
  // tick comes at the end of the period or at once.
  workArrived();
}

void AsyncTaskManager::enqueueAll(std::vector<std::unique_ptr<WorkerQueueFunc>>& funcs,
                                  bool useBatchQueue) {
  for (auto& func : funcs) push(std::move(func), useBatchQueue);
  funcs.clear();
  workArrived();
}

void AsyncTaskManager::onTimer() {
  ConcurrentQueueItem* item = nullptr;
  while (immediateQueue.try_pop(item)) {
    try {
      item->func->run(nullptr);
    } catch (...) {
    }
    delete item;
    outstanding.fetch_sub(1);
  }
  std::vector<ConcurrentQueueItem*> batch;
  while (batchQueue.try_pop(item)) batch.push_back(item);
  for (ConcurrentQueueItem* b : batch) {
    try {
      b->func->run(nullptr);
    } catch (...) {
    }
    delete b;
    outstanding.fetch_sub(1);
  }
}

}  // namespace bkedittimecheck
