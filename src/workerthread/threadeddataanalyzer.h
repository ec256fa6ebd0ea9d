#pragma once

#include <cstdint>
#include <memory>

#include "src/algorithms/edittimealgorithms.h"
#include "src/workerthread/workerqueuefunc.h"

namespace bkedittimecheck {

class bkEditBD;
class ViolationDatabase;

/// Runs one check of one pass on the worker, for the engine that queued it. When the last
/// queued check of the engine is done it asks the main thread to style the diagram.
class ThreadedDataAnalyzer : public WorkerQueueFunc {
 public:
  /// Any thread. `engineId` is the id of the engine that queued the check.
  ThreadedDataAnalyzer(std::shared_ptr<EditTimeAlgorithms> algorithm, std::uint32_t engineId);

  /// Worker. Skips the check when its engine is gone or replaced; otherwise runs it, counts it
  /// off and requests styling at the end of the pass. Never throws.
  void run(void* context) override;

  const std::shared_ptr<EditTimeAlgorithms>& getAlgorithm() const { return algorithm; }
  std::uint32_t getEngineId() const { return engineId; }

 private:
  // Clears the "parameters changed" flag, prunes the block map of `data` (null: none), readies
  // the store's bookkeeping for styling (null: none) and posts the styling of the pass.
  void requestStyling(bkEditBD* data, ViolationDatabase* violations);
  // Records that the check threw `what`; never throws.
  void noteFailure(const char* what) noexcept;

  std::shared_ptr<EditTimeAlgorithms> algorithm;
  std::uint32_t engineId;
};

}  // namespace bkedittimecheck
