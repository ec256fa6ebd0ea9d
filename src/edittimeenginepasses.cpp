// The engine's styling, scan and clean-up steps: the parts of EditTimeEngine that talk to the
// styling service, the cooperative tasks and the host language.
#include "src/bkeditbd.h"
#include "src/edittimeengine.h"
#include "src/hostinterface.h"
#include "src/presentation/edittimestyler.h"
#include "src/profiler.h"
#include "src/violationdatabase.h"

namespace bkedittimecheck {


void EditTimeEngine::connectStudioListeners() {
  // Studio listeners are connected here once the host offers its active-editor event service.
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

void EditTimeEngine::populateBlockParamConstraintData(const std::wstring& /*path*/) {
  algorithmTable.auditorChecksEnabled = true;
  restartAuditorScan();
}

}  // namespace bkedittimecheck
