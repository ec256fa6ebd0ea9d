#include "src/workerthread/asynctaskmanager.h"

#include <vector>

namespace bkedittimecheck {

AsyncTaskManager& AsyncTaskManager::instance() {
  static AsyncTaskManager manager;
  return manager;
}

AsyncTaskManager::AsyncTaskManager() : blockara::TimerThread(0, 1.0) { start(); }

AsyncTaskManager::~AsyncTaskManager() {
  stop();
  ConcurrentQueueItem* item = nullptr;
  while (immediateQueue.try_pop(item)) delete item;
  while (batchQueue.try_pop(item)) delete item;
}

void AsyncTaskManager::enqueue(std::unique_ptr<WorkerQueueFunc> func, bool useBatchQueue) {
  auto* item = new ConcurrentQueueItem{std::move(func)};
  (useBatchQueue ? batchQueue : immediateQueue).push(item);
}

void AsyncTaskManager::onTimer() {
  ConcurrentQueueItem* item = nullptr;
  while (immediateQueue.try_pop(item)) {
    try {
      item->func->run(nullptr);
    } catch (...) {
    }
    delete item;
  }
  std::vector<ConcurrentQueueItem*> batch;
  while (batchQueue.try_pop(item)) batch.push_back(item);
  for (ConcurrentQueueItem* b : batch) {
    try {
      b->func->run(nullptr);
    } catch (...) {
    }
    delete b;
  }
}

}  // namespace bkedittimecheck
