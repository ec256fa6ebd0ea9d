#pragma once

#include "host/runtime/cooperativetaskmanager.h"
#include "host/runtime/pauseable.h"

namespace Performance {

/// One unit of cooperative work. Subclasses implement `onProcess`, which runs one slice.
///
/// Virtual slots, in order: the destructor, `onPause`, `onResume` (from `Pauseable`), `isValid`,
/// `onProcess`.
///
/// Thread contract: main thread only. `session` is written by the owning session alone.
class CooperativeTaskManager::Task : public Pauseable {
 public:
  Task() = default;
  ~Task() override = default;
  Task(const Task&) = delete;
  Task& operator=(const Task&) = delete;

  /// Main thread. False makes the manager drop the task without running it. Default: true.
  virtual bool isValid() { return true; }

  /// Main thread. Runs one slice. Returns true when the task is done and leaves its session;
  /// false asks for another slice later. An exception drops the task.
  virtual bool onProcess() = 0;

  /// Main thread. Takes the task out of its session so that it never runs (again). Harmless for
  /// a task that has run already, was removed already, or was never added.
  void remove();

  /// Main thread. The session that holds the task, or null.
  TaskSession* owner() const { return session; }

 private:
  friend class TaskSession;
  TaskSession* session = nullptr;  // set while a session holds this task
};

}  // namespace Performance
