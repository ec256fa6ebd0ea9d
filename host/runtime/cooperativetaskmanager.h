#pragma once

#include <functional>
#include <memory>
#include <string>

namespace Performance {

/// The host's cooperative task service: work cut into slices that the main loop runs one at a
/// time when nothing else waits, so that the main thread stays responsive.
///
/// Tasks live in sessions; sessions are tasks themselves and nest. The root session is the one
/// process-wide `instance()`. A session only gets time after `TaskSession::queueForProcessing`
/// was called; the request lasts until nothing runnable is left in the tree.
///
/// Thread contract: everything here belongs to the main thread. `requestCount` is the one field
/// that outlives a call; the main thread alone touches it.
class CooperativeTaskManager {
 public:
  class Task;
  class TaskSession;
  class OrderedTaskSession;

  /// Main thread. The process-wide root session, made on first use and never destroyed.
  static TaskSession& instance();

  /// Main thread. Runs one slice: the next runnable task of the root session, if processing was
  /// requested. Returns true when a task ran (or an invalid one was dropped). An exception from
  /// a task is caught, the task is dropped, and the error handler is told.
  static bool processNext();

  /// Main thread. True while processing is requested and some task could run now.
  static bool hasPendingWork();

  /// Main thread. Replaces what receives the message of a task that threw (default: standard
  /// error). An empty function restores the default.
  static void setErrorHandler(std::function<void(const std::string&)> handler);

  CooperativeTaskManager() = delete;

 private:
  friend class TaskSession;
  static void requestProcessing();
};

}  // namespace Performance

#include "host/runtime/task.h"
#include "host/runtime/tasksession.h"
#include "host/runtime/orderedtasksession.h"
