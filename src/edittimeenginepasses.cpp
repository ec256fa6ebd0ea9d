// The engine's styling, scan and clean-up steps: the parts of EditTimeEngine that talk to the
// styling service, the cooperative tasks and the host language.
#include "src/bkeditbd.h"
#include "src/edittimeengine.h"
#include "src/hostinterface.h"
#include "src/profiler.h"
#include "src/violationdatabase.h"

namespace bkedittimecheck {

namespace {

const char* categoryWord(std::uint32_t severity) {
  switch (severity) {
    case 1:
      return "EDITTIME_ERROR";
    case 3:
      return "RAWARNING";
    case 4:
      return "RAERROR";
    default:
      return "EDITTIME_WARNING";
  }
}

}  // namespace

void EditTimeEngine::connectStudioListeners() {
  // Studio listeners are connected here once the host offers its active-editor event service.
}

void EditTimeEngine::removeStyling(const std::wstring& /*name*/, int /*code*/) {
  Profiler profiler("ENGINE", "REMOVESTYLING");
  violations->dropDeadBlocks([](double handle) { return handle2Block(handle) != nullptr; });
}

void EditTimeEngine::applyStyling() { Profiler profiler("ENGINE", "Styling"); }

std::vector<std::string> EditTimeEngine::getBlockViolationStrings(double blockHandle) const {
  std::vector<std::string> out;
  if (!handle2Block(blockHandle)) return out;
  for (const EditTimeViolation& v : violations->violationsOf(blockHandle)) {
    out.push_back(v.violationType);
    out.push_back(v.checkId);
    out.push_back(categoryWord(v.severity));
  }
  return out;
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
