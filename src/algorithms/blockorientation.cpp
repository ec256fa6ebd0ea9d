#include "src/algorithms/blockorientation.h"

#include <utility>

#include "src/constraints/bkeditblock.h"

namespace bkedittimecheck {

BlockOrientation::BlockOrientation(const std::wstring& diagramName, std::uint32_t severity)
    : BlockCheck(kCheckId, diagramName, severity) {}

Verdict BlockOrientation::decideOne(const bkEditBlock& block) const {
  return block.getBlockKind() == BlockKind::kSubSystem && block.getRaEditBlock()->orientation != 0
             ? Verdict::Add
             : Verdict::Remove;
}

}  // namespace bkedittimecheck
