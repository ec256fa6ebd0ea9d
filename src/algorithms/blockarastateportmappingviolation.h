#pragma once

#include <cstdint>
#include <string>

#include "src/algorithms/diagramcheck.h"
#include "src/editcodes.h"

namespace bkedittimecheck {

/// "orvanta.blockara.BlockaraStatePortMapping": the Inport and Outport blocks of a chart's
/// Blockara-based state against the data the chart declares for that state:
/// "BlockaraStateMismappedPort" for a declared name of the wrong direction,
/// "BlockaraStateUnmappedPort" for an undeclared one, both severity 1. Hangs on
/// BKFEAT_BlockaraEditTimeChecksForBlockaraBasedStates. Worker thread only.
class BlockaraStatePortMappingViolation : public DiagramCheck {
 public:
  static constexpr char kCheckId[] = "orvanta.blockara.BlockaraStatePortMapping";
  static constexpr std::uint32_t kSeverity = Severity::kError;

  /// Any thread. Never throws beyond allocation.
  BlockaraStatePortMappingViolation(const std::wstring& diagramName, std::uint32_t severity);

  /// Worker thread. False with the feature off or an empty block map. A port whose state
  /// subsystem is not in the snapshot is left as it is; the others are compared with the table
  /// their state's record took when it was made.
  bool evaluate(bkEditBD& data, ViolationDatabase& database) override;
};

}  // namespace bkedittimecheck
