#include "src/algorithms/portnameviolation.h"

#include <utility>

#include "src/constraints/bkeditblock.h"

namespace bkedittimecheck {

std::string PortNameViolation::prohibitedNamePattern;

PortNameViolation::PortNameViolation(const std::wstring& diagramName, std::uint32_t severity)
    : NameCheck(kCheckId, diagramName, severity) {}

bool PortNameViolation::considers(const bkEditBlock& block) const {
  return BlockKind::isPortBlock(block.getBlockKind());
}

Verdict PortNameViolation::decideOne(const bkEditBlock& block) const {
  // A port with a hidden name is checked all the same.
  return searchWhole(compiled, block.getBlockName()) ? Verdict::Add : Verdict::Remove;
}

}  // namespace bkedittimecheck
