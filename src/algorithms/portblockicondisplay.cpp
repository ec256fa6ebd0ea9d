#include "src/algorithms/portblockicondisplay.h"

#include <utility>

#include "src/constraints/bkeditblock.h"

namespace bkedittimecheck {

PortBlockIconDisplay::PortBlockIconDisplay(const std::wstring& diagramName, std::uint32_t severity)
    : BlockCheck(kCheckId, diagramName, severity) {}

bool PortBlockIconDisplay::considers(const bkEditBlock& block) const {
  // Kind 67 shares the icon parameter but stays outside this check.
  return block.getBlockKind() == BlockKind::kInport || block.getBlockKind() == BlockKind::kOutport;
}

Verdict PortBlockIconDisplay::decideOne(const bkEditBlock& block) const {
  return block.getRaEditBlock()->enumParameterValue != 0 ? Verdict::Add : Verdict::Remove;
}

}  // namespace bkedittimecheck
