#pragma once

#include <cstdint>
#include <string>

#include "src/algorithms/edittimealgorithms.h"
#include "src/editcodes.h"

namespace bkedittimecheck {

/// "internal.DBsetup", plumbing of every run: folds the queues of the main thread into the
/// worker-side maps: bkEditBD::processChanges. It stands in every table ahead of the real checks,
/// reports nothing and is never selected. Worker thread only.
class Setup : public EditTimeAlgorithms {
 public:
  static constexpr char kCheckId[] = "internal.DBsetup";
  static constexpr std::uint32_t kSeverity = Severity::kBoth;

  /// Any thread. The severity is 5. Never throws beyond allocation.
  explicit Setup(const std::wstring& diagramName);

  /// Worker thread. Always true; does nothing when the diagram has no data.
  bool runCheck(const CheckContext& context) override;
};

}  // namespace bkedittimecheck
