#include "src/algorithmtable.h"

#include <map>
#include <utility>

#include "src/algorithms/bkciunsupportedblocks.h"
#include "src/algorithms/blockarastateportmappingviolation.h"
#include "src/algorithms/blockconstraintviolation.h"
#include "src/algorithms/blockmissingparams.h"
#include "src/algorithms/blocknameposition.h"
#include "src/algorithms/blocknameviolation.h"
#include "src/algorithms/blockorientation.h"
#include "src/algorithms/codegenblocknameviolation.h"
#include "src/algorithms/datastoreusage.h"
#include "src/algorithms/gotofromblockmismatch.h"
#include "src/algorithms/portblockicondisplay.h"
#include "src/algorithms/portnameviolation.h"
#include "src/algorithms/productioncodegensupport.h"
#include "src/algorithms/prohibitedblocks.h"
#include "src/algorithms/prohibitedsinks.h"
#include "src/algorithms/removeblock.h"
#include "src/algorithms/setup.h"
#include "src/algorithms/stateaccessorpathviolation.h"
#include "src/algorithms/subsystemnameviolation.h"
#include "src/configuration/edittimecheckselector.h"
#include "src/editcodes.h"
#include "src/features.h"
#include "src/hostinterface.h"
#include "src/workerthread/asynctaskmanager.h"
#include "src/workerthread/threadeddataanalyzer.h"

namespace bkedittimecheck {

AlgorithmTable::AlgorithmTable(std::wstring diagramName, bool isLibrary, bool showEditTimeIssues)
    : diagramName(std::move(diagramName)),
      isLibrary(isLibrary),
      showErrors(showEditTimeIssues),
      showWarnings(showEditTimeIssues) {}

void AlgorithmTable::runEvent(int code, bool hasVariants) {
  pendingAlgorithms.push_back(std::make_shared<RemoveBlock>(diagramName, RemoveBlock::kSeverity));
  pendingAlgorithms.push_back(std::make_shared<Setup>(diagramName));
  appendMissingVariableCheck(code, hasVariants);
  if (auditorChecksEnabled) {
    appendSelectedChecks(code);
    if (code == EditTimeEvent::kConfiguration) EditTimeAlgorithms::setInputParametersChanged(true);
  }
  appendInteractiveChecks(hasVariants);
  if (eventObserver) eventObserver(code, hasVariants, pendingAlgorithms.size());
  // Only the two internal entries: nothing to check. The queues of bkEditBD keep what they hold
  // until a later table runs.
  if (pendingAlgorithms.size() == 2) {
    pendingAlgorithms.clear();
    return;
  }
  startPending();
}

void AlgorithmTable::runCheckById(const std::string& id) {
  if (id == DataStoreUsage::kCheckId) {
    // The switches choose the groups: both, the warnings only or the errors only.
    if (showErrors || showWarnings) {
      const std::uint32_t severity = showErrors && showWarnings ? Severity::kBoth
                                     : showWarnings             ? Severity::kWarning
                                                                : Severity::kError;
      pendingAlgorithms.push_back(std::make_shared<DataStoreUsage>(diagramName, severity));
    }
  } else if (featureOn(BKFEAT_BlockConstraintCheckAuthoring) && auditorChecksEnabled) {
    const std::map<std::string, bool>& selection = EditTimeCheckSelector::getCheckSelectionMap();
    const auto it = selection.find(id);
    if (it != selection.end() && it->second) {
      pendingAlgorithms.push_back(std::make_shared<BlockConstraintViolation>(
          id, diagramName, BlockConstraintViolation::kSeverity));
    }
  }
  if (!pendingAlgorithms.empty()) startPending();
}

bool AlgorithmTable::interactiveChecksApply(bool hasVariants) const {
  return (showErrors || showWarnings) && !hasVariants && !isLibrary;
}

void AlgorithmTable::appendMissingVariableCheck(int code, bool hasVariants) {
  // An added block has not been scanned yet: the missing-variable question waits for that.
  if (!featureOn(BKFEAT_BlockParamEditTimeCheckOnCanvas) || !interactiveChecksApply(hasVariants) ||
      code == EditTimeEvent::kBlocksAdded) {
    return;
  }
  pendingAlgorithms.push_back(
      std::make_shared<BlockMissingParams>(diagramName, BlockMissingParams::kSeverity, code));
}

void AlgorithmTable::appendInteractiveChecks(bool hasVariants) {
  if (!interactiveChecksApply(hasVariants)) return;
  pendingAlgorithms.push_back(
      std::make_shared<GoToFromBlockMismatch>(diagramName, GoToFromBlockMismatch::kSeverity));
  pendingAlgorithms.push_back(
      std::make_shared<DataStoreUsage>(diagramName, DataStoreUsage::kSeverity));
  pendingAlgorithms.push_back(std::make_shared<StateAccessorPathViolation>(
      diagramName, StateAccessorPathViolation::kSeverity));
  if (featureOn(BKFEAT_BlockaraEditTimeChecksForBlockaraBasedStates)) {
    pendingAlgorithms.push_back(std::make_shared<BlockaraStatePortMappingViolation>(
        diagramName, BlockaraStatePortMappingViolation::kSeverity));
  }
}

template <typename Check>
void AlgorithmTable::appendIfSelected(const std::map<std::string, bool>& selection) {
  static const std::string id(Check::kCheckId);  // looked up without a string built per event
  const auto it = selection.find(id);
  if (it != selection.end() && it->second) {
    pendingAlgorithms.push_back(std::make_shared<Check>(diagramName, Check::kSeverity));
  }
}

void AlgorithmTable::appendSelectedChecks(int /*code*/) {
  // A check is on when its ID maps to true in the selection. The constraint checks of the loaded
  // configuration come first, in the configuration's order.
  const std::map<std::string, bool>& selection = EditTimeCheckSelector::getCheckSelectionMap();
  if (featureOn(BKFEAT_BlockConstraintCheckAuthoring)) {
    for (const std::string& id : constraintCheckIds) {
      const auto it = selection.find(id);
      if (it != selection.end() && it->second) {
        pendingAlgorithms.push_back(std::make_shared<BlockConstraintViolation>(
            id, diagramName, BlockConstraintViolation::kSeverity));
      }
    }
  }
  appendIfSelected<BlockNamePosition>(selection);
  appendIfSelected<ProhibitedBlocks>(selection);
  appendIfSelected<ProhibitedSinks>(selection);
  appendIfSelected<BlockNameViolation>(selection);
  appendIfSelected<PortNameViolation>(selection);
  appendIfSelected<PortBlockIconDisplay>(selection);
  appendIfSelected<BlockOrientation>(selection);
  appendIfSelected<SubsystemNameViolation>(selection);
  // These four run a second time in every table. Nothing depends on it but the work done: the
  // second run repeats the first one's adds and removes.
  appendIfSelected<PortBlockIconDisplay>(selection);
  appendIfSelected<PortNameViolation>(selection);
  appendIfSelected<BlockOrientation>(selection);
  appendIfSelected<SubsystemNameViolation>(selection);
  appendIfSelected<ProductionCodeGenSupport>(selection);
  appendIfSelected<CodegenBlockNameViolation>(selection);
  appendIfSelected<BKCIUnsupportedBlocks>(selection);
}

void AlgorithmTable::startPending() {
  pending.addQueued(static_cast<std::int64_t>(pendingAlgorithms.size()));
  for (auto& algorithm : pendingAlgorithms) {
    starting.push_back(std::make_unique<ThreadedDataAnalyzer>(std::move(algorithm), engineId));
  }
  pendingAlgorithms.clear();
  // All of them at once: the worker wakes once for the event and finds the whole list.
  AsyncTaskManager::instance().enqueueAll(starting, false);
}

}  // namespace bkedittimecheck
