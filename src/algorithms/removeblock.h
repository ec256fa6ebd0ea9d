#pragma once

#include <string>

#include "src/algorithms/edittimealgorithms.h"

namespace bkedittimecheck {

/// The internal first entry of every table, "internal.RemoveBlock": on the worker it forgets the
/// blocks whose handles wait on `bkEditBD::deletedHandles`, and their violations.
class RemoveBlock : public EditTimeAlgorithms {
 public:
  /// Main thread. `severity` is 5 in every table.
  RemoveBlock(std::wstring diagramName, std::uint32_t severity);
};

}  // namespace bkedittimecheck
