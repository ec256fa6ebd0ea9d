#pragma once

#include <cstdint>
#include <string>

#include "src/algorithms/diagramcheck.h"
#include "src/editcodes.h"

namespace bkedittimecheck {

/// "orvanta.blockara.StateAccessorPathViolation": where a state reader or writer (kinds 123 and
/// 125) stands relative to the block whose state it accesses. Adds
/// "StateAccessorInImplicitIterator", "StateAccessorAndStateOwnerInSameSystem" and
/// "StateOwnerInsideStateAccessorSystem"; "StateAccessorInsideStateOwnerSystem" is reserved and
/// only ever removed. Records carry the check's severity. Worker thread only.
class StateAccessorPathViolation : public DiagramCheck {
 public:
  static constexpr char kCheckId[] = "orvanta.blockara.StateAccessorPathViolation";
  static constexpr std::uint32_t kSeverity = Severity::kError;

  /// Any thread. Never throws beyond allocation.
  StateAccessorPathViolation(const std::wstring& diagramName, std::uint32_t severity);

  /// Worker thread. Judges every accessor of the snapshot by its own path and its owner path;
  /// an owner that does not exist goes unnoticed. True when no record was added.
  bool evaluate(bkEditBD& data, ViolationDatabase& database) override;
};

}  // namespace bkedittimecheck
