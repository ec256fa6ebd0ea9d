#include "src/algorithms/removeblock.h"

#include <utility>

#include "src/bkeditbd.h"
#include "src/edittimecontroller.h"

namespace bkedittimecheck {

RemoveBlock::RemoveBlock(std::wstring diagramName, std::uint32_t severity)
    : EditTimeAlgorithms("internal.RemoveBlock", std::move(diagramName), severity) {}

bool RemoveBlock::runCheck() {
  const std::shared_ptr<bkEditBD> data = EditTimeController::instance().findEditBD(diagramName);
  if (!data) return false;
  data->processDeletions();
  return true;
}

}  // namespace bkedittimecheck
