#include "src/algorithms/diagramcheck.h"

#include <memory>

#include "src/bkeditbd.h"
#include "src/edittimecontroller.h"
#include "src/violationdatabase.h"

namespace bkedittimecheck {

bool DiagramCheck::runCheck() {
  EditTimeController& controller = EditTimeController::instance();
  const std::shared_ptr<bkEditBD> data = controller.findEditBD(diagramName);
  const std::shared_ptr<ViolationDatabase> database = controller.findViolationDatabase(diagramName);
  if (!data || !database) return false;
  return evaluate(*data, *database);
}

}  // namespace bkedittimecheck
