#pragma once

#include "host/runtime/cooperativetaskmanager.h"
#include "host/runtime/tasksession.h"

namespace Performance {

/// A session whose tasks run strictly in the order of adding: a task that asks for another
/// slice keeps its place, and the next task starts only when it is done.
///
/// Thread contract: main thread only.
class CooperativeTaskManager::OrderedTaskSession : public CooperativeTaskManager::TaskSession {
 public:
  OrderedTaskSession() = default;
  ~OrderedTaskSession() override = default;

 protected:
  bool keepsOrder() const override { return true; }
};

}  // namespace Performance
