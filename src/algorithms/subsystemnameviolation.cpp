#include "src/algorithms/subsystemnameviolation.h"

#include <utility>

#include "src/constraints/bkeditblock.h"

namespace bkedittimecheck {

std::string SubsystemNameViolation::prohibitedNamePattern;

SubsystemNameViolation::SubsystemNameViolation(const std::wstring& diagramName,
                                               std::uint32_t severity)
    : NameCheck(kCheckId, diagramName, severity) {}

Verdict SubsystemNameViolation::decideOne(const bkEditBlock& block) const {
  const bkRAEditBlock& ra = *block.getRaEditBlock();
  if (block.getBlockKind() != BlockKind::kSubSystem || ra.isBlockaraFunction) return Verdict::Leave;
  if (ra.subsystemType == kExemptSubsystemType) return Verdict::Remove;
  if (ra.functionPackaging == FunctionPackaging::kInline) return Verdict::Remove;
  return searchWhole(compiled, block.getBlockName()) ? Verdict::Add : Verdict::Remove;
}

}  // namespace bkedittimecheck
