// The engine's ear: small stateless handlers on the host's signals. Each applies its gate and
// forwards to the controller; the slots capture nothing and find the engine by diagram name.
#include "host/signals/bkplugin.h"
#include "src/editcodes.h"
#include "src/edittimecontroller.h"
#include "src/edittimeengine.h"
#include "src/hostinterface.h"
#include "src/moduleentries.h"

namespace bkedittimecheck {
namespace {

EditTimeController& controller() { return EditTimeController::instance(); }

// A library takes part only under the rule auditor.
bool checkable(BKRootBD* d) { return (showEditTimeIssues() && !isLibrary(d)) || auditorModeOn(d); }

bool takingEdits(BKRootBD* d) { return controller().isTakingEdits(d); }

void onOpened(BKRootBD* d) {
  // A failing start of checking must not disturb the opening of a model.
  try {
    if (checkable(d) && takingEdits(d)) controller().onDiagramEvent(d, EditTimeEvent::kChecksOn);
  } catch (...) {
  }
}

void onClosing(BKRootBD* d) {
  if (takingEdits(d)) controller().onDiagramEvent(d, EditTimeEvent::kChecksOff);
}

template <int Kind>
void onBatch(BKRootBD* d, const PluginChangeReport& report) {
  if (checkable(d) && takingEdits(d)) controller().processBatch(d, report, Kind);
}

void onComment(BKRootBD* d, BKBlock* block) {
  if (showEditTimeIssues() && !isLibrary(d) && takingEdits(d)) {
    controller().commentStatusChanged(d, block);
  }
}

void onModelParameter(BKRootBD* d, const std::string& name) {
  if (!isLibrary(d) && auditorModeOn(d) && takingEdits(d)) {
    controller().modelParameterChanged(d, name);
  }
}

template <typename Fn>
void withEngine(BKRootBD* d, Fn fn) {
  if (!d) return;
  if (auto engine = controller().findEngine(diagramNameOf(d))) fn(*engine);
}

}  // namespace
}  // namespace bkedittimecheck

using namespace bkedittimecheck;

void RegisterEditBdEvents(BKRootBD* diagram) {
  bkplugin::addEditBdSignal(diagram, BKGE_DIAGRAM_OPENED, &onOpened);
  bkplugin::addEditBdSignal(diagram, BKGE_DIAGRAM_CLOSING, &onClosing);
  if (isLibrary(diagram)) return;
  bkplugin::addEditBdBatchSignal(diagram, BKGE_BLOCKS_ADDED, &onBatch<EditTimeEvent::kBlocksAdded>);
  bkplugin::addEditBdBatchSignal(diagram, BKGE_BLOCKS_CHANGED,
                                 &onBatch<EditTimeEvent::kBlocksChanged>);
  bkplugin::addEditBdBatchSignal(diagram, BKGE_BLOCKS_DELETED,
                                 &onBatch<EditTimeEvent::kBlocksDeleted>);
  bkplugin::addEditBdBatchSignal(diagram, BKGE_BLOCKS_RENAMED,
                                 &onBatch<EditTimeEvent::kBlocksRenamed>);
  bkplugin::addEditBdBlockCommentedStatusSignal(diagram, BKGE_BLOCK_COMMENTED_OUT, &onComment);
  bkplugin::addEditBdBlockCommentedStatusSignal(diagram, BKGE_BLOCK_COMMENTED_THROUGH, &onComment);
  bkplugin::addEditBdBlockCommentedStatusSignal(diagram, BKGE_BLOCK_UNCOMMENTED, &onComment);
  bkplugin::addEditBdModelParameterSignal(diagram, BKGE_MODEL_PARAMETER_CHANGED, &onModelParameter);
}

void RegisterCompBdEvents(BKCompBD* diagram) {
  bkplugin::addCompBdSignal(diagram, BKCE_COMPILE_BEGIN, [](BKCompBD* c) {
    withEngine(rootOfCompiled(c), [](EditTimeEngine& e) { e.setEditsEnabled(false); });
  });
  bkplugin::addCompBdSignal(diagram, BKCE_COMPILE_END, [](BKCompBD* c) {
    withEngine(rootOfCompiled(c), [](EditTimeEngine& e) { e.setEditsEnabled(true); });
  });
  bkplugin::addCompBdSignal(diagram, BKCE_VARIABLES_CHANGED, [](BKCompBD* c) {
    withEngine(rootOfCompiled(c), [](EditTimeEngine& e) {
      e.refreshMissingVariables(EditTimeEvent::kMissingVariableRefresh);
    });
  });
  bkplugin::addCompBdSignal(diagram, BKCE_WORKSPACE_CHANGED, [](BKCompBD* c) {
    withEngine(rootOfCompiled(c), [](EditTimeEngine& e) {
      e.refreshWorkspaceChecks(EditTimeEvent::kWorkspaceRefresh);
    });
  });
}

void RegisterExecPlugins(BKExecBD* diagram) {
  bkplugin::addExecBdSignal(diagram, BKEE_EXECUTION_BEGIN, [](BKExecBD* x) {
    withEngine(rootOfExecuting(x), [](EditTimeEngine& e) { e.setEditsEnabled(false); });
  });
  bkplugin::addExecBdSignal(diagram, BKEE_EXECUTION_END, [](BKExecBD* x) {
    withEngine(rootOfExecuting(x), [](EditTimeEngine& e) { e.setEditsEnabled(true); });
  });
}
