// The controller's named entries, as the host language and the host signals reach them.
#include <iostream>

#include "host/signals/pluginchangereport.h"
#include "src/bkeditbd.h"
#include "src/edittimecontroller.h"
#include "src/edittimeengine.h"
#include "src/features.h"
#include "src/hostinterface.h"
#include "src/profiler.h"

namespace bkedittimecheck {

namespace {

// The common form of the switches: an open, unsuspended diagram, and its engine when the code
// may create one or one exists.
template <typename Fn>
void withSwitchEngine(EditTimeController& c, const std::wstring& name, int code, Fn fn) {
  BKRootBD* diagram = diagramByName(name);
  if (!diagram || isSuspended(diagram)) return;
  if (auto engine = c.getOrCreateEngine(diagram, code)) fn(*engine);
}

}  // namespace

void EditTimeController::updateDiagnostic(const std::wstring& name) {
  if (auto engine = findEngine(name)) {
    engine->getData()->uniqueDataStoreMsg = uniqueDataStoreLevel(engine->getDiagram());
    engine->getAlgorithmTable().runCheckById("orvanta.blockara.DataStoreUsage");
  }
}

void EditTimeController::refreshExclusions(const std::wstring& name) {
  if (auto engine = findEngine(name)) {
    engine->refreshExclusions();
    engine->applyStyling();
  }
}

void EditTimeController::refreshExclusionsWithPartFile(const std::wstring& name,
                                                       const std::wstring& file) {
  if (auto engine = findEngine(name)) {
    engine->refreshExclusionsWithPartFile(file);
    engine->applyStyling();
  }
}

void EditTimeController::getViolations(const std::string& name) {
  std::cout << "bdName = " << name << std::endl;
}

std::vector<std::string> EditTimeController::getViolations(const std::wstring& name,
                                                           double blockHandle) {
  if (auto engine = findEngine(name)) return engine->getBlockViolationStrings(blockHandle);
  return {};
}

void EditTimeController::on(const std::wstring& name) {
  withSwitchEngine(*this, name, 1, [](EditTimeEngine& e) { e.checksOn(1); });
}

void EditTimeController::off(const std::wstring& name) {
  withSwitchEngine(*this, name, 5, [&](EditTimeEngine&) { closeEngine(name); });
}

void EditTimeController::enableRA(const std::wstring& name) {
  withSwitchEngine(*this, name, 7, [](EditTimeEngine& e) { e.enableAuditor(); });
}

void EditTimeController::disableRA(const std::wstring& name) {
  withSwitchEngine(*this, name, 8, [](EditTimeEngine& e) { e.disableAuditor(); });
  removeStylingOf(name, 8);
}

void EditTimeController::turnOffErrorsAndWarnings(const std::wstring& name) {
  turnOffErrors(name);
  turnOffWarnings(name);
}

void EditTimeController::turnOnErrorsAndWarnings(const std::wstring& name) {
  withSwitchEngine(*this, name, 15, [](EditTimeEngine& e) { e.allOn(); });
}

void EditTimeController::turnOnErrors(const std::wstring& name) {
  withSwitchEngine(*this, name, 10, [](EditTimeEngine& e) { e.errorsOn(); });
}

void EditTimeController::turnOffErrors(const std::wstring& name) {
  removeStylingOf(name, 11);
  withSwitchEngine(*this, name, 11, [](EditTimeEngine& e) { e.errorsOff(); });
}

void EditTimeController::turnOffWarnings(const std::wstring& name) {
  withSwitchEngine(*this, name, 13, [](EditTimeEngine& e) { e.warningsOff(); });
  removeStylingOf(name, 13);
}

void EditTimeController::turnOnWarnings(const std::wstring& name) {
  withSwitchEngine(*this, name, 12, [](EditTimeEngine& e) { e.warningsOn(); });
}

void EditTimeController::postNameChange(const std::wstring& oldName, const std::wstring& newName) {
  Profiler profiler("ENGINE", "MODELRENAME");
  closeEngine(oldName);
  if (showEditTimeIssues()) onDiagramEvent(diagramByName(newName), 1);
}

void EditTimeController::switchConfiguration(const std::wstring& file, const std::wstring& name) {
  if (auto engine = findEngine(name)) {
    engine->removeStyling(name, 8);
    engine->loadConfig(file);
  }
}

void EditTimeController::loadDefaultConfiguration(const std::wstring& name) {
  if (auto engine = findEngine(name)) {
    engine->removeStyling(name, 8);
    engine->loadDefaultConfig();
  }
}

void EditTimeController::handleNewWindowOpen(const std::wstring& name) {
  if (auto engine = findEngine(name)) {
    engine->viewChanged();
    engine->connectStudioListeners();
  }
}

void EditTimeController::refreshBlockaraStatePortChecks(const std::wstring& name,
                                                        double blockHandle) {
  if (auto engine = findEngine(name)) engine->refreshChartChecks(blockHandle);
}

void EditTimeController::refreshWorkspaceChecks(const std::wstring& name) {
  if (auto engine = findEngine(name)) engine->refreshWorkspaceChecks(16);
}

// ---- signals and tasks

void EditTimeController::onDiagramEvent(BKRootBD* diagram, int code) {
  if (!diagram || isSuspended(diagram)) return;
  auto engine = getOrCreateEngine(diagram, code);
  if (!engine || code < 1 || code > 15) return;
  switch (code) {
    case 1: engine->checksOn(1); break;
    case 5: closeEngine(engine->getDiagramName()); break;
    case 7: engine->enableAuditor(); break;
    case 8: engine->disableAuditor(); break;
    case 10: engine->errorsOn(); break;
    case 11: engine->errorsOff(); break;
    case 12: engine->warningsOn(); break;
    case 13: engine->warningsOff(); break;
    case 15: engine->allOn(); break;
    default: break;
  }
}

void EditTimeController::processBatch(BKRootBD* diagram, const PluginChangeReport& report,
                                      int kind) {
  auto engine = getOrCreateEngine(diagram, kind);
  if (!engine) return;
  switch (kind) {
    case 18:
      engine->processBatchOfEvents(report, 19);
      engine->processBatchOfEvents(report, 18);
      break;
    case 19:
    case 20:
    case 21:
      engine->processBatchOfEvents(report, kind);
      break;
    default:
      break;
  }
}

void EditTimeController::commentStatusChanged(BKRootBD* diagram, BKBlock* block) {
  if (auto engine = getOrCreateEngine(diagram, 0)) engine->commentStatusChanged(block);
}

void EditTimeController::modelParameterChanged(BKRootBD* diagram, const std::string& name) {
  if (!featureOn(BKFEAT_BlockConstraintCheckAuthoring)) return;
  auto engine = getOrCreateEngine(diagram, 0);
  if (!engine) return;
  // Model parameter constraints come with the configuration; without them no parameter has any,
  // and a parameter without constraints starts no pass.
  (void)name;
}

bool EditTimeController::isTakingEdits(BKRootBD* diagram) const {
  auto engine = findEngine(diagramNameOf(diagram));
  return !engine || engine->editsEnabled();
}

void EditTimeController::runDiagramSlice(const std::wstring& name) {
  if (auto engine = findEngine(name)) engine->runDiagramSlice();
}

void EditTimeController::runWorkspaceSlice(const std::wstring& name) {
  if (auto engine = findEngine(name)) engine->runWorkspaceSlice();
}

}  // namespace bkedittimecheck
