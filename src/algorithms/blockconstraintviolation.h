#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "src/algorithms/edittimealgorithms.h"
#include "src/editcodes.h"

namespace bkedittimecheck {

/// One constraint check of the configuration: runs the composites of the constraint data
/// under its check ID over the blocks of the run. A block that does not pass every composite
/// gets one "BlockConstraintViolation" of this check, whichever constraint it broke. One class
/// serves every such check ID, so it has no ID constant of its own. Worker thread only.
class BlockConstraintViolation : public EditTimeAlgorithms {
 public:
  static constexpr std::uint32_t kSeverity = Severity::kAuditorWarning;

  /// Any thread. Never throws beyond allocation.
  BlockConstraintViolation(std::string_view checkId, const std::wstring& diagramName,
                           std::uint32_t severity);

  /// Worker thread. False, changing nothing, without the diagram's data or store, without
  /// constraint data for this ID or when that data has no composite. Otherwise reads the scope
  /// pair at every run, then for each block with a rule-auditor part removes the record when the
  /// block is outside the scope or passes, and adds it when it fails. Exceptions of the
  /// constraints (a bad cast, a bad pattern, a pattern too complex to match) pass to the caller.
  bool runCheck(const CheckContext& context) override;
};

}  // namespace bkedittimecheck
