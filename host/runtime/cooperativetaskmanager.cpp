#include "host/runtime/cooperativetaskmanager.h"

#include <algorithm>
#include <exception>
#include <iostream>

namespace Performance {
namespace {

// Main-thread state of the manager.
bool processingRequested = false;
std::function<void(const std::string&)> errorHandler;

void reportTaskError(const std::string& message) {
  if (errorHandler) {
    errorHandler(message);
  } else {
    std::cerr << "blockara: a cooperative task failed: " << message << '\n';
  }
}

}  // namespace

CooperativeTaskManager::TaskSession& CooperativeTaskManager::instance() {
  // Never destroyed: tasks of other libraries may still refer to their session at exit.
  static TaskSession* root = new TaskSession();
  return *root;
}

void CooperativeTaskManager::requestProcessing() { processingRequested = true; }

bool CooperativeTaskManager::processNext() {
  if (!processingRequested) return false;
  TaskSession& root = instance();
  const bool ran = root.step();
  // The root is never finished in the sense of leaving anything: it is simply empty.
  root.finished = false;
  if (!root.hasRunnableTask()) processingRequested = false;
  return ran;
}

bool CooperativeTaskManager::hasPendingWork() {
  return processingRequested && instance().hasRunnableTask();
}

void CooperativeTaskManager::setErrorHandler(std::function<void(const std::string&)> handler) {
  errorHandler = std::move(handler);
}

void CooperativeTaskManager::Task::remove() {
  if (session != nullptr) session->erase(this);
}

CooperativeTaskManager::TaskSession::~TaskSession() {
  for (auto& task : tasks) task->session = nullptr;
}

void CooperativeTaskManager::TaskSession::queueForProcessing() {
  CooperativeTaskManager::requestProcessing();
}

std::shared_ptr<CooperativeTaskManager::OrderedTaskSession>
CooperativeTaskManager::TaskSession::addOrderedSession() {
  auto session = std::make_shared<OrderedTaskSession>();
  append(session);
  return session;
}

void CooperativeTaskManager::TaskSession::append(std::shared_ptr<Task> task) {
  if (task.get() == this) return;
  if (task->session != nullptr) task->session->erase(task.get());
  task->session = this;
  tasks.push_back(std::move(task));
  finished = false;
}

void CooperativeTaskManager::TaskSession::erase(const Task* task) {
  auto it = std::find_if(tasks.begin(), tasks.end(),
                         [task](const std::shared_ptr<Task>& t) { return t.get() == task; });
  if (it == tasks.end()) return;
  (*it)->session = nullptr;
  tasks.erase(it);
}

void CooperativeTaskManager::TaskSession::pause() {
  if (paused) return;
  paused = true;
  onPause();
}

void CooperativeTaskManager::TaskSession::resume() {
  if (!paused) return;
  paused = false;
  onResume();
}

void CooperativeTaskManager::TaskSession::onPause() {
  // Copy: a hook may remove tasks.
  auto held = tasks;
  for (auto& task : held) task->onPause();
}

void CooperativeTaskManager::TaskSession::onResume() {
  auto held = tasks;
  for (auto& task : held) task->onResume();
}

bool CooperativeTaskManager::TaskSession::onProcess() {
  step();
  return finished;
}

bool CooperativeTaskManager::TaskSession::hasRunnableTask() const {
  if (paused) return false;
  for (const auto& task : tasks) {
    auto* sub = dynamic_cast<const TaskSession*>(task.get());
    if (sub == nullptr || sub->hasRunnableTask()) return true;
  }
  return false;
}

bool CooperativeTaskManager::TaskSession::step() {
  if (paused) return false;
  for (std::size_t i = 0; i < tasks.size(); ++i) {
    // Hold the task: its slice may remove it from this session.
    std::shared_ptr<Task> task = tasks[i];
    auto* sub = dynamic_cast<TaskSession*>(task.get());
    if (sub != nullptr && !sub->hasRunnableTask()) continue;

    bool done = true;
    if (sub != nullptr) {
      sub->step();
      done = sub->finished;
    } else {
      try {
        done = !task->isValid() || task->onProcess();
      } catch (const std::exception& e) {
        reportTaskError(e.what());
      } catch (...) {
        reportTaskError("unknown exception");
      }
    }
    if (task->session == this) {
      if (done) {
        erase(task.get());
      } else if (!keepsOrder()) {
        erase(task.get());
        append(task);
      }
    }
    if (tasks.empty()) finished = true;
    return true;
  }
  return false;
}

}  // namespace Performance
