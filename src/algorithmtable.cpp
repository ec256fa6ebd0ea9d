#include "src/algorithmtable.h"

#include <map>
#include <utility>

#include "src/algorithms/bkciunsupportedblocks.h"
#include "src/algorithms/blockarastateportmappingviolation.h"
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
  pendingAlgorithms.push_back(std::make_shared<RemoveBlock>(diagramName, 5));
  pendingAlgorithms.push_back(std::make_shared<Setup>(diagramName));
  appendMissingVariableCheck(code, hasVariants);
  if (auditorChecksEnabled) {
    appendSelectedChecks(code);
    if (code == 7) EditTimeAlgorithms::setInputParametersChanged(true);
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
    // The switches choose the groups: both, the warnings only (0) or the errors only (1).
    if (showErrors || showWarnings) {
      const std::uint32_t severity = showErrors && showWarnings ? 5 : showWarnings ? 0 : 1;
      pendingAlgorithms.push_back(std::make_shared<DataStoreUsage>(diagramName, severity));
    }
  } else if (featureOn(BKFEAT_BlockConstraintCheckAuthoring) && auditorChecksEnabled &&
             isSelected(id)) {
    // Placeholder: BlockConstraintViolation(id, diagramName, 3) is appended here once that class
    // is in the tree.
  }
  if (!pendingAlgorithms.empty()) startPending();
}

bool AlgorithmTable::isSelected(const std::string& id) {
  const std::map<std::string, bool> selection = EditTimeCheckSelector::getCheckSelectionMap();
  const auto it = selection.find(id);
  return it != selection.end() && it->second;
}

bool AlgorithmTable::interactiveChecksApply(bool hasVariants) const {
  return (showErrors || showWarnings) && !hasVariants && !isLibrary;
}

void AlgorithmTable::appendMissingVariableCheck(int code, bool hasVariants) {
  // An added block has not been scanned yet: the missing-variable question waits for that.
  if (!featureOn(BKFEAT_BlockParamEditTimeCheckOnCanvas) || !interactiveChecksApply(hasVariants) ||
      code == 18) {
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

void AlgorithmTable::appendSelectedChecks(int /*code*/) {
  // One copy of the selection per table; a check is on when its ID maps to true.
  const std::map<std::string, bool> selection = EditTimeCheckSelector::getCheckSelectionMap();
  const auto selected = [&selection](const char* id) {
    const auto it = selection.find(id);
    return it != selection.end() && it->second;
  };
  const auto append = [this, &selected](const char* id, auto make) {
    if (selected(id)) pendingAlgorithms.push_back(make());
  };
  // The constraint checks come first once their class is in the table; their IDs are kept in
  // constraintCheckIds by the configuration load.
  const std::wstring& name = diagramName;
  append("orvanta.kabe.kb_0401", [&] { return std::make_shared<BlockNamePosition>(name, 3); });
  append("orvanta.kabe.kb_0407", [&] { return std::make_shared<ProhibitedBlocks>(name, 3); });
  append("orvanta.kabe.kb_0408", [&] { return std::make_shared<ProhibitedSinks>(name, 3); });
  append("orvanta.kabe.kb_0402", [&] { return std::make_shared<BlockNameViolation>(name, 3); });
  append("orvanta.kabe.kb_0405", [&] { return std::make_shared<PortNameViolation>(name, 3); });
  append("orvanta.kabe.kb_0404", [&] { return std::make_shared<PortBlockIconDisplay>(name, 3); });
  append("orvanta.kabe.kb_0403", [&] { return std::make_shared<BlockOrientation>(name, 3); });
  append("orvanta.kabe.kb_0406", [&] { return std::make_shared<SubsystemNameViolation>(name, 3); });
  // These four run a second time in every table. Nothing depends on it but the work done: the
  // second run repeats the first one's adds and removes.
  append("orvanta.kabe.kb_0404", [&] { return std::make_shared<PortBlockIconDisplay>(name, 3); });
  append("orvanta.kabe.kb_0405", [&] { return std::make_shared<PortNameViolation>(name, 3); });
  append("orvanta.kabe.kb_0403", [&] { return std::make_shared<BlockOrientation>(name, 3); });
  append("orvanta.kabe.kb_0406", [&] { return std::make_shared<SubsystemNameViolation>(name, 3); });
  append("orvanta.codegen.PCGSupport",
         [&] { return std::make_shared<ProductionCodeGenSupport>(name, 3); });
  append("orvanta.codegen.BlockNames",
         [&] { return std::make_shared<CodegenBlockNameViolation>(name, 3); });
  append("orvanta.bkci.UnsupportedBlocks",
         [&] { return std::make_shared<BKCIUnsupportedBlocks>(name, 3); });
}

void AlgorithmTable::startPending() {
  pending.addQueued(static_cast<std::int64_t>(pendingAlgorithms.size()));
  for (auto& algorithm : pendingAlgorithms) {
    AsyncTaskManager::instance().enqueue(
        std::make_unique<ThreadedDataAnalyzer>(std::move(algorithm), engineId), false);
  }
  pendingAlgorithms.clear();
}

}  // namespace bkedittimecheck
