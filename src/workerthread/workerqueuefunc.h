#pragma once

namespace bkedittimecheck {

/// One unit of work for the worker queue.
class WorkerQueueFunc {
 public:
  WorkerQueueFunc() = default;
  virtual ~WorkerQueueFunc() = default;
  WorkerQueueFunc(const WorkerQueueFunc&) = delete;
  WorkerQueueFunc& operator=(const WorkerQueueFunc&) = delete;

  /// Worker. Does the work. `context` is the host repository handle; it may be null.
  virtual void run(void* context) = 0;
};

}  // namespace bkedittimecheck
