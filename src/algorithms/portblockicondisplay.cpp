#include "src/algorithms/portblockicondisplay.h"

#include <utility>

#include "src/constraints/bkeditblock.h"

namespace bkedittimecheck {

PortBlockIconDisplay::PortBlockIconDisplay(std::wstring diagramName, std::uint32_t severity)
    : BlockCheck("orvanta.kabe.kb_0404", std::move(diagramName), severity) {}

bool PortBlockIconDisplay::considers(const bkEditBlock& block) const {
  // Kind 67 shares the icon parameter but stays outside this check.
  return block.getBlockKind() == 66 || block.getBlockKind() == 88;
}

Verdict PortBlockIconDisplay::decideOne(const bkEditBlock& block) const {
  return block.getRaEditBlock()->enumParameterValue != 0 ? Verdict::Add : Verdict::Remove;
}

}  // namespace bkedittimecheck
