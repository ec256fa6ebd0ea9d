#include "src/algorithms/blocknameposition.h"

#include <utility>

#include "src/constraints/bkeditblock.h"

namespace bkedittimecheck {

BlockNamePosition::BlockNamePosition(const std::wstring& diagramName, std::uint32_t severity)
    : BlockCheck(kCheckId, diagramName, severity) {}

Verdict BlockNamePosition::decideOne(const bkEditBlock& block) const {
  const bkRAEditBlock& ra = *block.getRaEditBlock();
  return ra.rawFlagBit1 && ra.rawFlagBit2 ? Verdict::Add : Verdict::Remove;
}

}  // namespace bkedittimecheck
