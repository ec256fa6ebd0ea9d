// The engine's styling, scan and clean-up steps: the parts of EditTimeEngine that talk to the
// styling service, the cooperative tasks and the host language.
#include <mutex>
#include <shared_mutex>

#include "host/studio/studioapp.h"
#include "host/model/bkgraph.h"
#include "host/model/bkrootbd.h"
#include "src/bkeditbd.h"
#include "src/configuration/edittimecheckselector.h"
#include "src/configuration/exclusionmanager.h"
#include "src/edittimeengine.h"
#include "src/edittimetaskmanager.h"
#include "src/edittimetaskmanagerworkspace.h"
#include "src/features.h"
#include "src/hostinterface.h"
#include "src/presentation/edittimestyler.h"
#include "src/profiler.h"
#include "src/violationdatabase.h"

namespace bkedittimecheck {

namespace {

// The engine's ordered session under the root, made afresh when missing or finished.
void ensureSession(
    std::shared_ptr<Performance::CooperativeTaskManager::OrderedTaskSession>& session) {
  using Performance::CooperativeTaskManager;
  if (session && !session->isFinished()) return;
  session = CooperativeTaskManager::instance().addOrderedSession();
  CooperativeTaskManager::TaskSession::queueForProcessing();
}

}  // namespace

void EditTimeEngine::connectStudioListeners() {
  namespace connections = Blockara::connections;
  connections::ConnectionService& service = connections::ConnectionService::instance();
  for (Blockara::StudioApp* studio :
       Blockara::StudioApp::getAllStudioAppsFor(diagram->getHandle())) {
    std::shared_ptr<const connections::NamedThread> thread = service.getNamedThread("Numeria");
    auto& events = studio->activeEditorChangedEventService();
    std::unique_lock<std::shared_mutex> lock(service.globalWriteLock());
    // No test for an earlier connection: a studio reached twice delivers twice.
    StudioConnection* connection = events.connect(this, &EditTimeEngine::activeEditorChanged, thread);
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
  for (Blockara::StudioApp* studio : Blockara::StudioApp::getAllStudioAppsFor(diagram->getHandle())) {
    for (const auto& [owner, connection] : studioConnections) {
      if (owner == studio) connection->disable();
    }
  }
  // What is left belongs to studios that have closed, and went with their event services.
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
  algorithmTable.runEvent(1, hasVariants());
}

void EditTimeEngine::runWorkspaceSlice() {
  std::shared_ptr<bkEditBD> keep = data;
  refreshVisibleGraphs();
  data->scanNextVisibleGraph();
  algorithmTable.runEvent(1, hasVariants());
}

void EditTimeEngine::scanDiagram() {
  if (!showEditTimeIssues() || data->initialScanDone) return;
  GraphicalBlockIterator walk(diagram->getRootGraph());
  while (BKBlock* block = walk.advance()) {
    const int code = block->getTypeCode();
    if (isVariantSubsystem(block)) data->variantSubsystemCount += 1;
    if (code == 131) noteSubsystemRename(block);
    if (!block->isCommented()) {
      data->noteRoutingBlock(block);
      if (code == 62 || typeNameOf(block) == "EventListener") {
        data->subsysProperties.push(
            SubsysProperties{toWide(block->getFullPath(false)), block->getHandle(), code == 62});
      }
    } else if (code == 131) {
      data->blkProperties.push(
          Blkproperties{L"", toWide(block->getFullPath(false)) + L"/", block->getHandle(), true});
    }
  }
  data->initialScanDone = true;
}

void EditTimeEngine::restartVisibleScan() {
  data->visibleGraphsDone.clear();
  data->visiblePathsDone.clear();
  data->scanNextVisibleGraph();
}

void EditTimeEngine::restartAuditorScan() {
  data->auditorGraphsDone.clear();
  data->auditorPathsDone.clear();
  data->auditorMode = auditorModeOn(diagram);
  data->scanNextAuditorGraph();
}

void EditTimeEngine::requeueMasks() {
  for (const auto& [handle, path] : data->handleToSubsystem) {
    if (BKBlock* block = handle2Block(handle)) {
      data->maskedBlocks.push(MaskedBlock{path, bkEditBD::maskKindOf(block)});
    }
  }
}

void EditTimeEngine::populateBlockParamConstraintData(const std::wstring& path) {
  algorithmTable.auditorChecksEnabled = true;
  // A file that does not parse throws here, through the caller, to the host language.
  EditTimeCheckSelector::loadCheckSelection(path);
  if (featureOn(BKFEAT_BlockConstraintCheckAuthoring)) {
    // The constraint data of the configuration is built here once its reader exists.
    Profiler profiler("ENGINE", "populateBlockParamConstraintData");
  }
  exclusions->loadExclusions(diagram);
  restartAuditorScan();
}

}  // namespace bkedittimecheck
