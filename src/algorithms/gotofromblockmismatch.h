#pragma once

#include <cstdint>
#include <string>

#include "src/algorithms/diagramcheck.h"
#include "src/editcodes.h"

namespace bkedittimecheck {

/// "orvanta.blockara.GoToFromBlockMismatch": Goto, From and Goto Tag Visibility blocks of the
/// diagram that do not fit together. Its severity selects the groups of findings: 0 the pairing
/// group ("NoMatchingGoTO", "NoMatchingFrom", "DuplicateGoToTagVisibility"), 1 the Goto group
/// ("NoMatchingGoToTagVisibilityBlock", "DuplicateGoTo"), 5 both; the records carry 0 or 1 by
/// type. Scope plays no part; commented blocks drop out of the pairing. Worker thread only.
class GoToFromBlockMismatch : public DiagramCheck {
 public:
  static constexpr char kCheckId[] = "orvanta.blockara.GoToFromBlockMismatch";
  static constexpr std::uint32_t kSeverity = Severity::kBoth;

  /// Any thread. Never throws beyond allocation.
  GoToFromBlockMismatch(const std::wstring& diagramName, std::uint32_t severity);

  /// Worker thread. Does nothing past the diagram's limit of routing blocks; otherwise pairs
  /// the blocks by tag and brings the store to the findings in a fixed order. Always true.
  bool evaluate(bkEditBD& data, ViolationDatabase& database) override;
};

}  // namespace bkedittimecheck
