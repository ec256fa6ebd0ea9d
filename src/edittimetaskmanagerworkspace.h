#pragma once

#include <string>

#include "host/runtime/cooperativetaskmanager.h"

namespace bkedittimecheck {

/// One slice of the interactive scan of a diagram (the scan that a change of the base
/// workspace restarts): when the host is idle it snapshots the next unvisited system level on
/// view and starts a pass of checks for it. It holds only the diagram's name, so a task that
/// outlives its engine finds none and does nothing.
///
/// Thread contract: main thread only, like the cooperative task service.
class EditTimeTaskManagerWorkspace : public Performance::CooperativeTaskManager::Task {
 public:
  explicit EditTimeTaskManagerWorkspace(std::wstring diagramName)
      : diagramName(std::move(diagramName)) {}

  /// Main thread. Always true: a stale task is harmless.
  bool isValid() override { return true; }

  /// Main thread. `EditTimeController::runWorkspaceSlice` for the diagram; returns true (one
  /// slice a task). Exceptions of the slice go to the cooperative task service.
  bool onProcess() override;

  const std::wstring diagramName;
};

}  // namespace bkedittimecheck
