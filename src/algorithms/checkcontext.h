#pragma once

#include <memory>

namespace bkedittimecheck {

class BlockParamConstraintData;
class bkEditBD;
class EditTimeCheckSelector;
class ViolationDatabase;

/// What one run of a check works on: the shared parts of the engine that queued it, as the
/// worker's item found that engine. A check never looks the engine up by name itself.
///
/// Thread contract: built and used on the worker; the pointers keep the parts alive for the run
/// even when the engine closes meanwhile.
struct CheckContext {
  std::shared_ptr<bkEditBD> data;                   ///< the diagram's exchange record
  std::shared_ptr<ViolationDatabase> violations;    ///< the diagram's store
  std::shared_ptr<EditTimeCheckSelector> selector;  ///< the selection of configurable checks
  /// The constraint data of the engine's configuration; null before it was first loaded.
  std::shared_ptr<BlockParamConstraintData> configuration;
};

}  // namespace bkedittimecheck
