#include "src/edittimeengine.h"

#include <atomic>
#include <mutex>
#include <shared_mutex>

#include "host/model/bkglue.h"
#include "host/model/bkgraph.h"
#include "host/model/bkrootbd.h"
#include "host/signals/pluginchangereport.h"
#include "host/studio/studioapp.h"
#include "src/bkeditbd.h"
#include "src/configuration/edittimecheckselector.h"
#include "src/configuration/exclusionmanager.h"
#include "src/constraints/blockparamconstraintdata.h"
#include "src/editcodes.h"
#include "src/edittimetaskmanager.h"
#include "src/edittimetaskmanagerworkspace.h"
#include "src/features.h"
#include "src/hostinterface.h"
#include "src/presentation/edittimestyler.h"
#include "src/profiler.h"
#include "src/violationdatabase.h"

namespace bkedittimecheck {

namespace {

std::atomic<std::uint32_t> engineCounter{0};

// The engine's ordered session under the root, made afresh when missing or finished.
void ensureSession(
    std::shared_ptr<Performance::CooperativeTaskManager::OrderedTaskSession>& session) {
  using Performance::CooperativeTaskManager;
  if (session && !session->isFinished()) return;
  session = CooperativeTaskManager::instance().addOrderedSession();
  CooperativeTaskManager::TaskSession::queueForProcessing();
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
  data->setUniqueDataStoreMsg(uniqueDataStoreLevel(diagram));
  violations = std::make_shared<ViolationDatabase>();
  checkSelector = std::make_shared<EditTimeCheckSelector>();
  exclusions = std::make_shared<ExclusionManager>();
  styling = std::make_unique<EditTimeStyling>(
      *violations, *styler,
      [](double handle) { return BKGlue::getBlockFromHandle(handle) != nullptr; },
      [this](double handle, const EditTimeViolation& v) { return isExcluded(handle, v); },
      [this] { return viewRevision() + exclusions->getRevision(); });
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

bool EditTimeEngine::hasVariants() const { return data->hasVariants(); }

void EditTimeEngine::refreshVisibleGraphs() {
  // Asking every editor at every slice would cost the number of systems on view each time.
  const std::uint64_t revision = viewRevision();
  if (wantedGraphsRevision == revision) return;
  wantedGraphsRevision = revision;
  data->setWantedGraphs(visibleGraphsOf(diagram));
}

void EditTimeEngine::processChangedBlock(BKBlock* block, int kind) {
  if (!block) return;
  const BlockNoted noted = data->noteChangedBlock(block, kind);
  if (noted.variantSubsystem) clearErrorsAndWarnings();
  if (noted.commented) commentStatusChanged(block);
}

void EditTimeEngine::clearErrorsAndWarnings() {
  removeStyling(diagramName, EditTimeEvent::kErrorsOff);
  removeStyling(diagramName, EditTimeEvent::kWarningsOff);
}

void EditTimeEngine::processBatchOfEvents(const PluginChangeReport& report, int kind) {
  Profiler profiler("ENGINE", "PROCESSBATCHOFEVENTS");
  std::shared_ptr<bkEditBD> keep = data;
  refreshVisibleGraphs();
  noteRenamedSubsystemsFirst(report);
  switch (kind) {
    case EditTimeEvent::kBlocksAdded:
      for (double handle : report.added) processChangedBlock(handle2Block(handle), kind);
      break;
    case EditTimeEvent::kBlocksChanged:
      for (double handle : report.changed) processChangedBlock(handle2Block(handle), kind);
      break;
    case EditTimeEvent::kBlocksDeleted:
      for (double handle : report.deleted) {
        BKBlock* block = handle2Block(handle);
        const BlockNoted noted = data->noteDeletedBlock(handle, block);
        if (noted.variantSubsystem) clearErrorsAndWarnings();
        if (noted.commented) commentStatusChanged(block);
        if (noted.deleted && block) removeErrorAndWarnClasses(handle);
      }
      break;
    case EditTimeEvent::kBlocksRenamed:
      for (double handle : report.renamed) {
        BKBlock* block = handle2Block(handle);
        if (!block) continue;
        const BlockNoted noted = data->noteRenamedBlock(block);
        if (noted.variantSubsystem) clearErrorsAndWarnings();
        if (noted.commented) commentStatusChanged(block);
        if (noted.deleted) removeErrorAndWarnClasses(handle);
      }
      break;
    default:
      return;
  }
  algorithmTable.runEvent(kind, hasVariants());
}

void EditTimeEngine::noteRenamedSubsystemsFirst(const PluginChangeReport& report) {
  // Every snapshot of a batch is taken after all of its renames happened, but the host reports
  // the renames last, and the renamed blocks themselves in handle order. Noted only where they
  // are reported, a subsystem's rename would reach the worker after snapshots that already show
  // it and move them a second time (a block added at the subsystem's old path, or an older block
  // moved into it, would land under a wrong path). Noted first at every signal of the batch,
  // each later noting finds the path unchanged and queues the record of an unchanged path, which
  // the worker passes over.
  for (double handle : report.renamed) {
    BKBlock* block = handle2Block(handle);
    if (block && block->getTypeCode() == BlockKind::kSubSystem) data->noteSubsystemRename(block);
  }
}

void EditTimeEngine::commentStatusChanged(BKBlock* block) {
  if (!block) return;
  if (block->isCommented()) removeBlockResults(block->getHandle());
  if (!data->noteCommentChange(block)) return;
  algorithmTable.runEvent(EditTimeEvent::kCommentStatus, hasVariants());
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
  algorithmTable.runEvent(EditTimeEvent::kChecksOn, hasVariants());
}

void EditTimeEngine::warningsOn() {
  Profiler profiler("ENGINE", "WARNINGSON");
  algorithmTable.showWarnings = true;
  profiler.stop();
  scanDiagram();
  restartVisibleScan();
  algorithmTable.runEvent(EditTimeEvent::kChecksOn, hasVariants());
}

void EditTimeEngine::allOn() {
  algorithmTable.showErrors = true;
  algorithmTable.showWarnings = true;
  scanDiagram();
  restartVisibleScan();
  algorithmTable.runEvent(EditTimeEvent::kAllOn, hasVariants());
}

void EditTimeEngine::errorsOff() { algorithmTable.showErrors = false; }

void EditTimeEngine::warningsOff() { algorithmTable.showWarnings = false; }

void EditTimeEngine::enableAuditor() {
  Profiler profiler("ENGINE", "ENABLERA");
  populateBlockParamConstraintData(L"");
  requeueMasks();
  algorithmTable.runEvent(EditTimeEvent::kConfiguration, hasVariants());
}

void EditTimeEngine::disableAuditor() {
  algorithmTable.auditorChecksEnabled = false;
  data->forgetAuditorScan();
}

void EditTimeEngine::loadConfig(const std::wstring& path) {
  Profiler profiler("ENGINE", "LOADCONFIG");
  populateBlockParamConstraintData(path);
  requeueMasks();
  algorithmTable.runEvent(EditTimeEvent::kConfiguration, hasVariants());
}

void EditTimeEngine::loadDefaultConfig() {
  Profiler profiler("ENGINE", "LOADDEFAULTCONFIG");
  populateBlockParamConstraintData(L"");
  requeueMasks();
  algorithmTable.runEvent(EditTimeEvent::kConfiguration, hasVariants());
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
      if (isChartBasedSubsystem(state)) data->noteBlock(state, EditTimeEvent::kNone);
    }
  }
  algorithmTable.runEvent(EditTimeEvent::kChartRefresh, hasVariants());
}

void EditTimeEngine::refreshWorkspaceChecks(int code) {
  Profiler profiler("ENGINE", "REFRESH_WORKSPACE_CHECKS");
  std::shared_ptr<bkEditBD> keep = data;
  refreshVisibleGraphs();
  data->restartVisibleScan();
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
  algorithmTable.runEvent(EditTimeEvent::kViewChanged, hasVariants());
}

void EditTimeEngine::passStyled() { algorithmTable.pending.passStyled(); }

// ---- styling, studio connections, scans and clean-up

void EditTimeEngine::connectStudioListeners() {
  namespace connections = Blockara::connections;
  connections::ConnectionService& service = connections::ConnectionService::instance();
  for (Blockara::StudioApp* studio :
       Blockara::StudioApp::getAllStudioAppsFor(diagram->getHandle())) {
    std::shared_ptr<const connections::NamedThread> thread = service.getNamedThread("Numeria");
    auto& events = studio->activeEditorChangedEventService();
    std::unique_lock<std::shared_mutex> lock(service.globalWriteLock());
    // No test for an earlier connection: a studio reached twice delivers twice.
    StudioConnection* connection =
        events.connect(this, &EditTimeEngine::activeEditorChanged, thread);
    connection->enable();
    studioConnections.emplace_back(studio, connection);
  }
}

void EditTimeEngine::activeEditorChanged(const Blockara::ActiveEditorChangedEvent& /*event*/) {
  viewChanged();
}

void EditTimeEngine::removeStyling(const std::wstring& /*name*/, int code) {
  Profiler profiler("ENGINE", "REMOVESTYLING");
  styling->removeStyling(static_cast<std::uint32_t>(code));
}

void EditTimeEngine::applyStyling() {
  Profiler profiler("ENGINE", "Styling");
  styling->applyStyling();
}

std::vector<std::string> EditTimeEngine::getBlockViolationStrings(double blockHandle) const {
  return styling->getBlockViolationStrings(blockHandle);
}

void EditTimeEngine::cleanupOnModelClose() {
  Profiler profiler("ENGINE", "CLEANUPONMODELCLOSE");
  if (diagramTask) diagramTask->remove();
  for (Blockara::StudioApp* studio :
       Blockara::StudioApp::getAllStudioAppsFor(diagram->getHandle())) {
    for (const auto& [owner, connection] : studioConnections) {
      if (owner == studio) connection->disable();
    }
  }
  // Then whatever is left, such as connections of a studio that is no longer listed.
  disconnectAll();
  studioConnections.clear();
  callDiagramFunction("edittime.EditTimeCheckingSetup.cleanup", diagramName);
}

void EditTimeEngine::scheduleDiagramTask() {
  if (!auditorModeOn(diagram)) return;
  std::shared_ptr<bkEditBD> keep = data;
  if (!data->hasAuditorGraphsToScan()) return;
  ensureSession(taskSession);
  diagramTask = std::make_shared<EditTimeTaskManager>(diagramName);
  taskSession->add(diagramTask);
  Performance::CooperativeTaskManager::TaskSession::queueForProcessing();
}

void EditTimeEngine::scheduleWorkspaceTask() {
  std::shared_ptr<bkEditBD> keep = data;
  if (!data->hasVisibleGraphsToScan()) return;
  ensureSession(taskSession);
  workspaceTask = std::make_shared<EditTimeTaskManagerWorkspace>(diagramName);
  taskSession->add(workspaceTask);
  Performance::CooperativeTaskManager::TaskSession::queueForProcessing();
}

void EditTimeEngine::runDiagramSlice() {
  std::shared_ptr<bkEditBD> keep = data;
  refreshVisibleGraphs();
  data->scanNextAuditorGraph();
  algorithmTable.runEvent(EditTimeEvent::kChecksOn, hasVariants());
}

void EditTimeEngine::runWorkspaceSlice() {
  std::shared_ptr<bkEditBD> keep = data;
  refreshVisibleGraphs();
  data->scanNextVisibleGraph();
  algorithmTable.runEvent(EditTimeEvent::kChecksOn, hasVariants());
}

void EditTimeEngine::scanDiagram() {
  if (showEditTimeIssues()) data->scanDiagramOnce(diagram->getRootGraph());
}

void EditTimeEngine::restartVisibleScan() { data->restartVisibleScan(); }

void EditTimeEngine::restartAuditorScan() { data->restartAuditorScan(auditorModeOn(diagram)); }

void EditTimeEngine::requeueMasks() { data->requeueMasks(); }

std::shared_ptr<BlockParamConstraintData> EditTimeEngine::getConfiguration() const {
  std::lock_guard<std::mutex> lock(configurationGuard);
  return configuration;
}

void EditTimeEngine::setConfiguration(std::shared_ptr<BlockParamConstraintData> fresh) {
  std::lock_guard<std::mutex> lock(configurationGuard);
  configuration = std::move(fresh);
}

bool EditTimeEngine::modelParameterChanged(const std::string& name) {
  const std::shared_ptr<BlockParamConstraintData> current = getConfiguration();
  if (!current) return false;
  const auto constraints = current->getModelParameterConstraints(name);
  // The data store setting has its own road, through updateDiagnostic.
  if (constraints.empty() || name == "UniqueDataStoreMsg") return false;
  refreshVisibleGraphs();
  refreshChangedModelParameterConstraints(diagram, constraints);
  if (auditorModeOn(diagram)) restartAuditorScan();
  algorithmTable.runEvent(EditTimeEvent::kViewChanged, hasVariants());
  return true;
}

void EditTimeEngine::populateBlockParamConstraintData(const std::wstring& path) {
  algorithmTable.auditorChecksEnabled = true;
  // A file that does not parse throws here, through the caller, to the host language.
  EditTimeCheckSelector::loadCheckSelection(path);
  if (featureOn(BKFEAT_BlockConstraintCheckAuthoring)) {
    Profiler profiler("ENGINE", "populateBlockParamConstraintData");
    // A configuration without its cell array throws the property tree's error to the caller.
    auto fresh = std::make_shared<BlockParamConstraintData>(
        EditTimeCheckSelector::getConfigurationTree());
    setConfiguration(fresh);
    refreshModelParameterConstraints(diagram, fresh->getAllModelParameterConstraints());
    data->setParameterDataByBlockType(fresh->getAllBlockParameterConstraints());
    algorithmTable.constraintCheckIds = fresh->getConstraintCheckIds();
  }
  exclusions->loadExclusions(diagram);
  restartAuditorScan();
}

}  // namespace bkedittimecheck
