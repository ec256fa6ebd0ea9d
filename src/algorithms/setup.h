#pragma once

#include <string>

#include "src/algorithms/edittimealgorithms.h"

namespace bkedittimecheck {

/// The internal second entry of every table, "internal.DBsetup": on the worker it folds the
/// queues of `bkEditBD` into its worker-side maps.
class Setup : public EditTimeAlgorithms {
 public:
  /// Main thread. Severity is always 5.
  explicit Setup(std::wstring diagramName);
};

}  // namespace bkedittimecheck
