#include "src/algorithms/blocknameviolation.h"

#include <utility>

#include "src/constraints/bkeditblock.h"

namespace bkedittimecheck {

std::string BlockNameViolation::prohibitedNamePattern;

BlockNameViolation::BlockNameViolation(const std::wstring& diagramName, std::uint32_t severity)
    : NameCheck(kCheckId, diagramName, severity) {}

Verdict BlockNameViolation::decideOne(const bkEditBlock& block) const {
  const bkRAEditBlock& ra = *block.getRaEditBlock();
  if (!ra.rawFlagBit1) return Verdict::Remove;
  // Port blocks are PortNameViolation's; a plain subsystem is SubsystemNameViolation's, while a
  // masked or function subsystem is checked here.
  if (BlockKind::isPortBlock(block.getBlockKind())) {
    return Verdict::Leave;
  }
  if (block.getBlockKind() == BlockKind::kSubSystem && ra.maskType.empty() &&
      !ra.isBlockaraFunction) {
    return Verdict::Leave;
  }
  return searchByLines(compiled, block.getBlockName()) ? Verdict::Add : Verdict::Remove;
}

}  // namespace bkedittimecheck
