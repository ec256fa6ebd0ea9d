#include "src/algorithms/subsystemnameviolation.h"

#include <utility>

#include "src/constraints/bkeditblock.h"

namespace bkedittimecheck {

std::string SubsystemNameViolation::prohibitedNamePattern;

SubsystemNameViolation::SubsystemNameViolation(std::wstring diagramName, std::uint32_t severity)
    : NameCheck("orvanta.kabe.kb_0406", std::move(diagramName), severity) {}

Verdict SubsystemNameViolation::decideOne(const bkEditBlock& block) const {
  const bkRAEditBlock& ra = *block.getRaEditBlock();
  if (block.getBlockKind() != 131 || ra.isBlockaraFunction) return Verdict::Leave;
  if (ra.subsystemType == 2) return Verdict::Remove;
  if (ra.functionPackaging == 1) return Verdict::Remove;  // inlined
  return searchWhole(compiled, block.getBlockName()) ? Verdict::Add : Verdict::Remove;
}

}  // namespace bkedittimecheck
