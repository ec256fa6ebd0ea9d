// The engine's styling, scan and clean-up steps: the parts of EditTimeEngine that talk to the
// styling service, the cooperative tasks and the host language.
#include <mutex>
#include <shared_mutex>

#include "host/studio/studioapp.h"
#include "src/bkeditbd.h"
#include "src/configuration/edittimecheckselector.h"
#include "src/edittimeengine.h"
#include "src/hostinterface.h"
#include "src/presentation/edittimestyler.h"
#include "src/profiler.h"
#include "src/violationdatabase.h"

namespace bkedittimecheck {

void EditTimeEngine::connectStudioListeners() {
  namespace connections = Blockara::connections;
  connections::ConnectionService& service = connections::ConnectionService::instance();
  for (Blockara::StudioApp* studio :
       Blockara::StudioApp::getAllStudioAppsFor(diagram->getHandle())) {
    std::shared_ptr<const connections::NamedThread> thread = service.getNamedThread("Numeria");
    auto& events = studio->activeEditorChangedEventService();
    std::unique_lock<std::shared_mutex> lock(service.globalWriteLock());
    // No test for an earlier connection: a studio reached twice delivers twice.
    events.connect(this, &EditTimeEngine::activeEditorChanged, thread)->enable();
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
  callDiagramFunction("edittime.EditTimeCheckingSetup.cleanup", diagramName);
}

void EditTimeEngine::scheduleDiagramTask() {}

void EditTimeEngine::scheduleWorkspaceTask() {}

void EditTimeEngine::runDiagramSlice() {
  refreshVisibleGraphs();
  algorithmTable.runEvent(1, hasVariants());
}

void EditTimeEngine::runWorkspaceSlice() {
  refreshVisibleGraphs();
  algorithmTable.runEvent(1, hasVariants());
}

void EditTimeEngine::scanDiagram() {
  if (!showEditTimeIssues() || data->initialScanDone) return;
  data->initialScanDone = true;
}

void EditTimeEngine::restartVisibleScan() {
  data->visibleGraphsDone.clear();
  data->visiblePathsDone.clear();
}

void EditTimeEngine::restartAuditorScan() {
  data->auditorGraphsDone.clear();
  data->auditorPathsDone.clear();
  data->auditorMode = auditorModeOn(diagram);
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
  restartAuditorScan();
}

}  // namespace bkedittimecheck
