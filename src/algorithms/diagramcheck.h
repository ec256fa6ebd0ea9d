#pragma once

#include "src/algorithms/edittimealgorithms.h"

namespace bkedittimecheck {

class bkEditBD;
class ViolationDatabase;

/// The shared run of the checks that reason over the diagram as a whole (Goto/From pairs, data
/// stores, state accessors, chart state ports, missing variables): take the diagram's data and
/// store from the run's context and hand both to the check's decision.
///
/// Thread contract: worker thread only, like every check.
class DiagramCheck : public EditTimeAlgorithms {
 public:
  using EditTimeAlgorithms::EditTimeAlgorithms;

  /// Worker thread. False when the context lacks the diagram's data or store (no record
  /// changes); otherwise what `evaluate` returns. Exceptions of `evaluate` pass to the caller.
  bool runCheck(const CheckContext& context) final;

  /// Worker thread. The whole decision of the check over the diagram's snapshot, adding and
  /// removing records in `database`. The result is informative only.
  virtual bool evaluate(bkEditBD& data, ViolationDatabase& database) = 0;
};

}  // namespace bkedittimecheck
