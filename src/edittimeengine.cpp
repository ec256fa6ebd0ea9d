#include "src/edittimeengine.h"

#include <atomic>

#include "host/prefs/bkfeature.h"
#include "host/signals/pluginchangereport.h"
#include "host/model/bkglue.h"
#include "host/model/bkgraph.h"
#include "src/bkeditbd.h"
#include "src/configuration/edittimecheckselector.h"
#include "src/configuration/exclusionmanager.h"
#include "src/edittimetaskmanager.h"
#include "src/edittimetaskmanagerworkspace.h"
#include "src/features.h"
#include "src/hostinterface.h"
#include "src/presentation/edittimestyler.h"
#include "src/profiler.h"
#include "src/violationdatabase.h"

namespace {

BkFeature blockConstraintCheckAuthoring("BlockConstraintCheckAuthoring",
                                        "Block Constraint Check Authoring for Edit-time Checking",
                                        "src/edittimeengine", "BkCheck", 974268, 1, 0);
BkFeature blockParamEditTimeCheckOnCanvas(
    "BlockParamEditTimeCheckOnCanvas",
    "Missing variable check for block parameters during edit time", "src/edittimeengine",
    "Blockara Data Management", 1615926, 1, 0);

}  // namespace

BkFeature* BKFEAT_BlockConstraintCheckAuthoring = &blockConstraintCheckAuthoring;
BkFeature* BKFEAT_BlockParamEditTimeCheckOnCanvas = &blockParamEditTimeCheckOnCanvas;

namespace bkedittimecheck {

namespace {

std::atomic<std::uint32_t> engineCounter{0};

bool isStateOwnerKind(int code) {
  return code == 31 || code == 33 || code == 36 || code == 68 || code == 116 || code == 156;
}

bool isEventListener(const BKBlock* block) {
  return block->getTypeCode() == 62 || typeNameOf(block) == "EventListener";
}

}  // namespace

EditTimeEngine::EditTimeEngine(BKRootBD* diagram)
    : algorithmTable(diagramNameOf(diagram), isLibrary(diagram), showEditTimeIssues()),
      diagram(diagram),
      diagramName(diagramNameOf(diagram)),
      id(0),
      auditorMode(false) {
  // The styler is shared by every diagram; each new engine activates it again so that its rules
  // show in the drawing whatever happened to it before.
  diagram::style::Styler* styler = createEditTimeStyler();
  styler->activate();
  data = std::make_shared<bkEditBD>(diagramName, auditorModeOn(diagram));
  data->uniqueDataStoreMsg = uniqueDataStoreLevel(diagram);
  violations = std::make_shared<ViolationDatabase>();
  checkSelector = std::make_shared<EditTimeCheckSelector>();
  exclusions = std::make_shared<ExclusionManager>();
  styling = std::make_unique<EditTimeStyling>(
      *violations, *styler,
      [](double handle) { return BKGlue::getBlockFromHandle(handle) != nullptr; },
      [this](double handle, const EditTimeViolation& v) { return isExcluded(handle, v); });
  auditorMode = auditorModeOn(diagram);
  callDiagramFunction("edittime.EditTimeCheckingSetup.setup", diagramName);
  connectStudioListeners();
  refreshVisibleGraphs();
  id = ++engineCounter;
  // The table takes its switches from the preference as it stands now, after the host-language
  // setup function, which may have changed it.
  algorithmTable.showErrors = showEditTimeIssues();
  algorithmTable.showWarnings = algorithmTable.showErrors;
  algorithmTable.engineId = id;
}

EditTimeEngine::~EditTimeEngine() = default;

bool EditTimeEngine::isExcluded(double handle, const EditTimeViolation& violation) const {
  const BKBlock* block = BKGlue::getBlockFromHandle(handle);
  return block && exclusions->isExcluded(*block, violation);
}

bool EditTimeEngine::hasVariants() const { return data->variantSubsystemCount != 0; }

void EditTimeEngine::refreshVisibleGraphs() { data->setWantedGraphs(visibleGraphsOf(diagram)); }

void EditTimeEngine::noteSubsystemRename(BKBlock* block) { data->noteSubsystemRename(block); }

void EditTimeEngine::processChangedBlock(BKBlock* block, int kind) {
  if (!block) return;
  const int code = block->getTypeCode();
  if (isEventListener(block)) {
    data->subsysProperties.push(
        SubsysProperties{toWide(block->getFullPath(false)), block->getHandle(), code == 62});
  }
  if (code == 131) {
    if (isVariantSubsystem(block)) {
      data->variantSubsystemCount += 1;
      removeStyling(diagramName, 11);
      removeStyling(diagramName, 13);
    }
    noteSubsystemRename(block);
  }
  if (data->hasStateAccessBlocks && isStateOwnerKind(code)) {
    data->stateRWOwnerPathChanges.push(
        StateRWOwnerPathChange{block->getBlockId(), toWide(block->getFullPath(false)), true});
  }
  if (block->isCommented()) {
    commentStatusChanged(block);
    return;
  }
  if (!data->hasStateAccessBlocks && (code == 123 || code == 125)) {
    data->hasStateAccessBlocks = true;
  }
  data->noteBlock(block, kind);
}

void EditTimeEngine::processBatchOfEvents(const PluginChangeReport& report, int kind) {
  Profiler profiler("ENGINE", "PROCESSBATCHOFEVENTS");
  std::shared_ptr<bkEditBD> keep = data;
  refreshVisibleGraphs();
  switch (kind) {
    case 18:
      for (double handle : report.added) processChangedBlock(handle2Block(handle), 18);
      algorithmTable.runEvent(18, hasVariants());
      break;
    case 21:
      for (double handle : report.changed) processChangedBlock(handle2Block(handle), 21);
      algorithmTable.runEvent(21, hasVariants());
      break;
    case 19:
      for (double handle : report.deleted) {
        BKBlock* block = handle2Block(handle);
        if (!block) {
          data->handleToSubsystem.erase(handle);
          data->deletedHandles.push(handle);
          continue;
        }
        // The block survives as an undo object: its facts are still there to be withdrawn.
        const int code = block->getTypeCode();
        if (typeNameOf(block) == "EventListener") {
          data->dropSubsysProperties(handle);
          data->compactSubsysProperties();
        }
        if (isStateOwnerKind(code) && data->hasStateAccessBlocks) {
          data->stateRWOwnerPathChanges.push(
              StateRWOwnerPathChange{block->getBlockId(), toWide(block->getFullPath(false)), false});
        } else if (code == 62) {
          data->dropSubsysProperties(handle);
          data->compactSubsysProperties();
        } else if (code == 131) {
          if (isVariantSubsystem(block)) {
            data->variantSubsystemCount -= 1;
            removeStyling(diagramName, 11);
            removeStyling(diagramName, 13);
          }
          data->handleToSubsystem.erase(handle);
        }
        if (block->isCommented()) {
          commentStatusChanged(block);
        } else {
          data->deletedHandles.push(handle);
          removeErrorAndWarnClasses(handle);
        }
      }
      algorithmTable.runEvent(19, hasVariants());
      break;
    case 20:
      for (double handle : report.renamed) {
        BKBlock* block = handle2Block(handle);
        if (!block) continue;
        if (isEventListener(block)) data->compactSubsysProperties();
        if (block->getTypeCode() == 131) {
          noteSubsystemRename(block);
          if (isVariantSubsystem(block)) {
            removeStyling(diagramName, 11);
            removeStyling(diagramName, 13);
          }
        }
        if (block->isCommented()) {
          commentStatusChanged(block);
        } else {
          data->noteBlock(block, 0);
        }
      }
      algorithmTable.runEvent(20, hasVariants());
      break;
    default:
      break;
  }
}

void EditTimeEngine::commentStatusChanged(BKBlock* block) {
  if (!block) return;
  const int code = block->getTypeCode();
  const std::wstring path = toWide(block->getFullPath(false));
  if (!block->isCommented()) {
    if (code == 131) data->blkProperties.push(Blkproperties{L"", path + L"/", block->getHandle(), false});
  } else {
    removeBlockResults(block->getHandle());
    const bool routing = code == 22 || code == 23 || code == 24 || code == 51 || code == 56 || code == 57;
    if (code == 131) {
      data->blkProperties.push(Blkproperties{L"", path + L"/", block->getHandle(), true});
    } else if (!routing) {
      return;
    }
  }
  data->noteBlock(block, 0);
  algorithmTable.runEvent(3, hasVariants());
}

void EditTimeEngine::removeBlockResults(double blockHandle) {
  styling->removeBlockResults(blockHandle);
}

// ---- switches

void EditTimeEngine::checksOn(int code) {
  refreshVisibleGraphs();
  scanDiagram();
  restartVisibleScan();
  if (auditorModeOn(diagram)) populateBlockParamConstraintData(L"");
  algorithmTable.runEvent(code, hasVariants());
}

void EditTimeEngine::errorsOn() {
  Profiler profiler("ENGINE", "ERRORON");
  algorithmTable.showErrors = true;
  scanDiagram();
  restartVisibleScan();
  algorithmTable.runEvent(1, hasVariants());
}

void EditTimeEngine::warningsOn() {
  Profiler profiler("ENGINE", "WARNINGSON");
  algorithmTable.showWarnings = true;
  profiler.stop();
  scanDiagram();
  restartVisibleScan();
  algorithmTable.runEvent(1, hasVariants());
}

void EditTimeEngine::allOn() {
  algorithmTable.showErrors = true;
  algorithmTable.showWarnings = true;
  scanDiagram();
  restartVisibleScan();
  algorithmTable.runEvent(15, hasVariants());
}

void EditTimeEngine::errorsOff() { algorithmTable.showErrors = false; }

void EditTimeEngine::warningsOff() { algorithmTable.showWarnings = false; }

void EditTimeEngine::enableAuditor() {
  Profiler profiler("ENGINE", "ENABLERA");
  populateBlockParamConstraintData(L"");
  requeueMasks();
  algorithmTable.runEvent(7, hasVariants());
}

void EditTimeEngine::disableAuditor() {
  algorithmTable.auditorChecksEnabled = false;
  data->auditorGraphsDone.clear();
  data->auditorPathsDone.clear();
}

void EditTimeEngine::loadConfig(const std::wstring& path) {
  Profiler profiler("ENGINE", "LOADCONFIG");
  populateBlockParamConstraintData(path);
  requeueMasks();
  algorithmTable.runEvent(7, hasVariants());
}

void EditTimeEngine::loadDefaultConfig() {
  Profiler profiler("ENGINE", "LOADDEFAULTCONFIG");
  populateBlockParamConstraintData(L"");
  requeueMasks();
  algorithmTable.runEvent(7, hasVariants());
}

void EditTimeEngine::refreshChartChecks(double blockHandle) {
  Profiler profiler("ENGINE", "REFRESH_CHARTELLE_CHART_CHECKS");
  std::shared_ptr<bkEditBD> keep = data;
  // The graph that holds the block's owner: from a block inside one state of a chart, that is
  // the chart's own level with all its states.
  BKBlock* block = handle2Block(blockHandle);
  bkGraph* graph = block ? block->getGraph() : nullptr;
  BKBlock* owner = graph ? graph->getOwner() : nullptr;
  if (owner && owner->getGraph()) {
    for (BKBlock* state : bkgg::graphicalBlocksOf(owner->getGraph(), 1)) {
      if (isChartBasedSubsystem(state)) data->noteBlock(state, 0);
    }
  }
  algorithmTable.runEvent(9, hasVariants());
}

void EditTimeEngine::refreshWorkspaceChecks(int code) {
  Profiler profiler("ENGINE", "REFRESH_WORKSPACE_CHECKS");
  std::shared_ptr<bkEditBD> keep = data;
  data->visibleGraphsDone.clear();
  data->visiblePathsDone.clear();
  refreshVisibleGraphs();
  data->scanNextVisibleGraph();
  algorithmTable.runEvent(code, hasVariants());
}

void EditTimeEngine::refreshMissingVariables(int code) {
  if (!violations->violationsByCheck("BlockMissingVariable").empty()) {
    algorithmTable.runEvent(code, hasVariants());
  }
}

void EditTimeEngine::refreshExclusions() {
  if (!auditorModeOn(diagram)) return;
  exclusions->loadExclusions(diagram);
}

void EditTimeEngine::refreshExclusionsWithPartFile(const std::wstring& path) {
  if (!auditorModeOn(diagram)) return;
  exclusions->loadExclusionsFromFile(diagram, path);
}

void EditTimeEngine::viewChanged() {
  refreshVisibleGraphs();
  restartVisibleScan();
  if (auditorModeOn(diagram)) restartAuditorScan();
  algorithmTable.runEvent(2, hasVariants());
}

void EditTimeEngine::passStyled() { algorithmTable.pending.passStyled(); }

}  // namespace bkedittimecheck
