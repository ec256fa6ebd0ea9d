#include "src/algorithms/removeblock.h"

#include <utility>

#include "src/bkeditbd.h"

namespace bkedittimecheck {

RemoveBlock::RemoveBlock(const std::wstring& diagramName, std::uint32_t severity)
    : EditTimeAlgorithms(kCheckId, diagramName, severity) {}

bool RemoveBlock::runCheck(const CheckContext& context) {
  if (!context.data) return false;
  context.data->processDeletions(context.violations.get());
  return true;
}

}  // namespace bkedittimecheck
