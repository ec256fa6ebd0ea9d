#pragma once

#include <cstdint>
#include <string>

#include "src/algorithms/edittimealgorithms.h"
#include "src/editcodes.h"

namespace bkedittimecheck {

/// "internal.RemoveBlock", plumbing of every run: forgets the deleted blocks of the diagram and
/// their violations: bkEditBD::processDeletions. It stands in every table ahead of the real checks,
/// reports nothing and is never selected. Worker thread only.
class RemoveBlock : public EditTimeAlgorithms {
 public:
  static constexpr char kCheckId[] = "internal.RemoveBlock";
  static constexpr std::uint32_t kSeverity = Severity::kBoth;

  /// Any thread. Never throws beyond allocation.
  RemoveBlock(const std::wstring& diagramName, std::uint32_t severity);

  /// Worker thread. False when the diagram has no data; true otherwise.
  bool runCheck(const CheckContext& context) override;
};

}  // namespace bkedittimecheck
