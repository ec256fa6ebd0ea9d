#include "src/algorithms/setup.h"

#include <utility>

#include "src/bkeditbd.h"
#include "src/edittimecontroller.h"

namespace bkedittimecheck {

Setup::Setup(std::wstring diagramName)
    : EditTimeAlgorithms("internal.DBsetup", std::move(diagramName), 5) {}

bool Setup::runCheck() {
  const std::shared_ptr<bkEditBD> data = EditTimeController::instance().findEditBD(diagramName);
  if (data) data->processChanges();
  return true;
}

}  // namespace bkedittimecheck
