#include "src/edittimetaskmanager.h"

#include "src/edittimecontroller.h"

namespace bkedittimecheck {

bool EditTimeTaskManager::onProcess() {
  // A copy: the slice may drop the last reference to this task.
  const std::wstring name = diagramName;
  EditTimeController::instance().runDiagramSlice(name);
  return true;
}

}  // namespace bkedittimecheck
