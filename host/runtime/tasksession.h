#pragma once

#include <deque>
#include <memory>

#include "host/runtime/cooperativetaskmanager.h"
#include "host/runtime/task.h"

namespace Performance {

/// A container of tasks that is itself a task, so that sessions nest. Each slice runs one task;
/// a task that asks for another slice goes to the back of the queue (round robin). A session is
/// finished once it has run all its tasks; a finished session leaves the session that holds it.
///
/// Pausing a session holds back everything in it: its tasks get `onPause` and no slices until
/// `resume`, which calls their `onResume`.
///
/// Thread contract: main thread only. `tasks`, `paused` and `finished` are main-thread state.
class CooperativeTaskManager::TaskSession : public CooperativeTaskManager::Task {
 public:
  TaskSession() = default;
  ~TaskSession() override;

  /// Main thread. Asks the host to process the sessions at its next idle moment on the main
  /// thread. The request lasts until no runnable task is left.
  static void queueForProcessing();

  /// Main thread. Appends `task` (the session takes a shared reference). A task held by another
  /// session is first removed from it. Adding to a finished session opens it again; one that has
  /// left its parent must be added again to get time. Null is ignored.
  void add(std::shared_ptr<Task> task) {
    if (task) append(std::move(task));
  }

  /// Main thread. Makes a new `OrderedTaskSession`, appends it, and returns it.
  std::shared_ptr<OrderedTaskSession> addOrderedSession();

  /// Main thread. True once the session has run all its tasks (and none was added since).
  bool isFinished() const { return finished; }

  /// Main thread. How many tasks (sessions included) the session holds.
  std::size_t size() const { return tasks.size(); }

  /// Main thread. Holds the session back; its tasks get `onPause`. Repeated calls do nothing.
  void pause();

  /// Main thread. Gives the session time again; its tasks get `onResume`.
  void resume();

  /// Main thread. True between `pause` and `resume`.
  bool isPaused() const { return paused; }

  /// Main thread. Passes the pause on to every task held.
  void onPause() override;

  /// Main thread. Passes the resume on to every task held.
  void onResume() override;

  /// Main thread. Runs one slice of the session; true when it has finished.
  bool onProcess() override;

  /// Main thread. True when some task in this session (or a session inside it) could run now.
  bool hasRunnableTask() const;

 protected:
  /// Whether a task that asked for another slice keeps its place at the front.
  virtual bool keepsOrder() const { return false; }

 private:
  friend class CooperativeTaskManager;
  friend class CooperativeTaskManager::Task;

  void append(std::shared_ptr<Task> task);
  void erase(const Task* task);
  // Runs one slice; returns true when a task ran or an invalid one was dropped.
  bool step();

  std::deque<std::shared_ptr<Task>> tasks;  // main thread
  bool paused = false;                      // main thread
  bool finished = false;                    // main thread
};

}  // namespace Performance
