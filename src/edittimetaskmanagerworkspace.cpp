#include "src/edittimetaskmanagerworkspace.h"

#include "src/edittimecontroller.h"

namespace bkedittimecheck {

bool EditTimeTaskManagerWorkspace::onProcess() {
  // A copy: the slice may drop the last reference to this task.
  const std::wstring name = diagramName;
  EditTimeController::instance().runWorkspaceSlice(name);
  return true;
}

}  // namespace bkedittimecheck
