#include "src/edittimecontroller.h"

#include <algorithm>
#include <functional>
#include <iostream>
#include <memory>
#include <mutex>
#include <vector>

#include "host/runtime/eventloop.h"
#include "host/signals/pluginchangereport.h"
#include "src/bkeditbd.h"
#include "src/editcodes.h"
#include "src/edittimeengine.h"
#include "src/features.h"
#include "src/hostinterface.h"
#include "src/profiler.h"
#include "src/violationdatabase.h"
#include "src/workerthread/asynctaskmanager.h"

namespace bkedittimecheck {

namespace {

// The controller lives for the whole session; it is made on the main thread at first use.
EditTimeController* theController = nullptr;

// The event codes that may bring an engine into being.
bool createsEngine(int code) {
  return code == EditTimeEvent::kChecksOn || code == EditTimeEvent::kConfiguration ||
         code == EditTimeEvent::kErrorsOn || code == EditTimeEvent::kAllOn;
}

// The common form of the switches: an open, unsuspended diagram, and its engine when the code
// may create one or one exists.
template <typename Fn>
void withSwitchEngine(EditTimeController& c, const std::wstring& name, int code, Fn fn) {
  BKRootBD* diagram = diagramByName(name);
  if (!diagram || isSuspended(diagram)) return;
  if (auto engine = c.getOrCreateEngine(diagram, code)) fn(*engine);
}

}  // namespace

EditTimeController& EditTimeController::instance() {
  if (!theController) theController = new EditTimeController();
  return *theController;
}

EditTimeController::~EditTimeController() = default;

std::shared_ptr<EditTimeEngine> EditTimeController::findEngine(const std::wstring& name) const {
  std::lock_guard<std::mutex> lock(enginesMutex);
  const auto it = engines.find(name);
  return it == engines.end() ? nullptr : it->second;
}

std::shared_ptr<bkEditBD> EditTimeController::findEditBD(const std::wstring& name) const {
  auto engine = findEngine(name);
  return engine ? engine->getData() : nullptr;
}

std::shared_ptr<ViolationDatabase> EditTimeController::findViolationDatabase(
    const std::wstring& name) const {
  auto engine = findEngine(name);
  return engine ? engine->getViolations() : nullptr;
}

std::shared_ptr<EditTimeEngine> EditTimeController::getOrCreateEngine(BKRootBD* diagram, int code) {
  if (!diagram) return nullptr;
  const std::wstring key = diagramNameOf(diagram);
  // The main thread is the only writer of `engines`, so it may read without the lock.
  auto it = engines.lower_bound(key);
  if (it != engines.end() && it->first == key) return it->second;
  if (!createsEngine(code)) return nullptr;
  auto engine = std::make_shared<EditTimeEngine>(diagram);
  std::lock_guard<std::mutex> lock(enginesMutex);
  engines.emplace_hint(engines.lower_bound(key), key, engine);
  return engine;
}

void EditTimeController::closeEngine(const std::wstring& name) {
  Profiler profiler("ENGINE", "MODELCLOSE");
  auto it = engines.find(name);
  if (it == engines.end()) return;
  std::shared_ptr<EditTimeEngine> engine = it->second;
  engine->cleanupOnModelClose();
  if (engine->hasUnstyledPasses()) {
    std::lock_guard<std::mutex> lock(closingMutex);
    closingEngines[name].push_back(engine);
  }
  // The worker may be inside findEngine: the erase is guarded on both paths.
  std::lock_guard<std::mutex> lock(enginesMutex);
  engines.erase(it);
}

bool EditTimeController::hasClosingEngine(const std::wstring& name, std::uint32_t engineId) const {
  std::lock_guard<std::mutex> lock(closingMutex);
  auto it = closingEngines.find(name);
  if (it == closingEngines.end()) return false;
  return std::any_of(it->second.begin(), it->second.end(),
                     [&](const auto& e) { return e->engineId() == engineId; });
}

void EditTimeController::applyStyle(const std::wstring& name, std::uint32_t engineId) {
  if (!diagramByName(name) || hasClosingEngine(name, engineId)) {
    retireClosingEngine(name, engineId);
    return;
  }
  const auto it = engines.find(name);
  if (it != engines.end() && it->second->engineId() == engineId) {
    it->second->applyStyling();
    it->second->passStyled();
  }
  scheduleFollowUp(name);
}

std::shared_ptr<EditTimeEngine> EditTimeController::takeClosingEngine(
    const std::wstring& name, std::uint32_t engineId,
    const std::function<bool(EditTimeEngine&)>& done) {
  std::lock_guard<std::mutex> lock(closingMutex);
  auto it = closingEngines.find(name);
  if (it == closingEngines.end()) return nullptr;
  auto& list = it->second;
  std::shared_ptr<EditTimeEngine> taken;
  auto e = std::find_if(list.begin(), list.end(),
                        [&](const auto& x) { return x->engineId() == engineId; });
  if (e != list.end() && done(**e)) {
    taken = *e;
    list.erase(e);
  }
  if (list.empty()) closingEngines.erase(it);
  return taken;
}

void EditTimeController::retireClosingEngine(const std::wstring& name, std::uint32_t engineId) {
  // Main thread: the engine may end here, after the lock is released.
  takeClosingEngine(name, engineId, [](EditTimeEngine& engine) {
    engine.passStyled();
    return !engine.hasUnstyledPasses();
  });
}

void EditTimeController::forgetClosingEngine(const std::wstring& name, std::uint32_t engineId) {
  std::shared_ptr<EditTimeEngine> dying =
      takeClosingEngine(name, engineId, [](EditTimeEngine&) { return true; });
  // The worker calls this; the engine must end on the main thread.
  releaseOnMainThread(std::move(dying));
}

std::vector<std::shared_ptr<EditTimeEngine>> EditTimeController::closingEnginesOf(
    const std::wstring& name) const {
  std::lock_guard<std::mutex> lock(closingMutex);
  auto it = closingEngines.find(name);
  return it == closingEngines.end() ? std::vector<std::shared_ptr<EditTimeEngine>>{} : it->second;
}

bool EditTimeController::hasNoPendingWork() const {
  auto atRest = [](const std::shared_ptr<EditTimeEngine>& engine) {
    return engine->queuedCount() == 0 && !engine->hasUnstyledPasses();
  };
  {
    std::lock_guard<std::mutex> lock(enginesMutex);
    for (const auto& [name, engine] : engines) {
      if (!atRest(engine)) return false;
    }
  }
  std::lock_guard<std::mutex> lock(closingMutex);
  for (const auto& [name, list] : closingEngines) {
    if (!std::all_of(list.begin(), list.end(), atRest)) return false;
  }
  return true;
}

namespace {

// The references to engines that the worker handed back and the main thread has not dropped yet.
// Never destroyed: the process may end with references still held here.
struct HeldEngines {
  std::mutex mutex;
  std::vector<std::shared_ptr<EditTimeEngine>> engines;  // guarded by mutex
  bool dropPosted = false;                               // guarded by mutex
};

HeldEngines& heldEngines() {
  static HeldEngines* const held = new HeldEngines;
  return *held;
}

}  // namespace

void holdForMainThread(std::shared_ptr<EditTimeEngine> engine) {
  if (!engine) return;
  HeldEngines& held = heldEngines();
  std::lock_guard<std::mutex> lock(held.mutex);
  held.engines.push_back(std::move(engine));
}

void releaseOnMainThread(std::shared_ptr<EditTimeEngine> engine) {
  if (!engine) return;
  blockara::EventLoop& loop = blockara::EventLoop::instance();
  if (loop.isMainThread()) return;
  HeldEngines& held = heldEngines();
  {
    std::lock_guard<std::mutex> lock(held.mutex);
    held.engines.push_back(std::move(engine));
    // A command already posted and not yet run takes this one too.
    if (held.dropPosted) return;
    held.dropPosted = true;
  }
  loop.post([] {
    HeldEngines& held = heldEngines();
    std::vector<std::shared_ptr<EditTimeEngine>> last;
    {
      std::lock_guard<std::mutex> lock(held.mutex);
      last.swap(held.engines);
      held.dropPosted = false;
    }
  });
}

bool isQuiescent() {
  if (AsyncTaskManager::outstandingCount() != 0) return false;
  return theController == nullptr || theController->hasNoPendingWork();
}

void EditTimeController::scheduleFollowUp(const std::wstring& name) {
  if (auto engine = findEngine(name)) {
    engine->scheduleDiagramTask();
    engine->scheduleWorkspaceTask();
  }
}

void EditTimeController::removeStylingOf(const std::wstring& name, int code) {
  if (auto engine = findEngine(name)) engine->removeStyling(name, code);
}

// ---- what the host language binds

void EditTimeController::updateDiagnostic(const std::wstring& name) {
  if (auto engine = findEngine(name)) {
    engine->getData()->setUniqueDataStoreMsg(uniqueDataStoreLevel(engine->getDiagram()));
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
  withSwitchEngine(*this, name, EditTimeEvent::kChecksOn,
                   [](EditTimeEngine& e) { e.checksOn(EditTimeEvent::kChecksOn); });
}

void EditTimeController::off(const std::wstring& name) {
  withSwitchEngine(*this, name, EditTimeEvent::kChecksOff,
                   [&](EditTimeEngine&) { closeEngine(name); });
}

void EditTimeController::enableRA(const std::wstring& name) {
  withSwitchEngine(*this, name, EditTimeEvent::kConfiguration,
                   [](EditTimeEngine& e) { e.enableAuditor(); });
}

void EditTimeController::disableRA(const std::wstring& name) {
  withSwitchEngine(*this, name, EditTimeEvent::kAuditorOff,
                   [](EditTimeEngine& e) { e.disableAuditor(); });
  removeStylingOf(name, EditTimeEvent::kAuditorOff);
}

void EditTimeController::turnOffErrorsAndWarnings(const std::wstring& name) {
  turnOffErrors(name);
  turnOffWarnings(name);
}

void EditTimeController::turnOnErrorsAndWarnings(const std::wstring& name) {
  withSwitchEngine(*this, name, EditTimeEvent::kAllOn, [](EditTimeEngine& e) { e.allOn(); });
}

void EditTimeController::turnOnErrors(const std::wstring& name) {
  withSwitchEngine(*this, name, EditTimeEvent::kErrorsOn, [](EditTimeEngine& e) { e.errorsOn(); });
}

void EditTimeController::turnOffErrors(const std::wstring& name) {
  removeStylingOf(name, EditTimeEvent::kErrorsOff);
  withSwitchEngine(*this, name, EditTimeEvent::kErrorsOff,
                   [](EditTimeEngine& e) { e.errorsOff(); });
}

void EditTimeController::turnOffWarnings(const std::wstring& name) {
  withSwitchEngine(*this, name, EditTimeEvent::kWarningsOff,
                   [](EditTimeEngine& e) { e.warningsOff(); });
  removeStylingOf(name, EditTimeEvent::kWarningsOff);
}

void EditTimeController::turnOnWarnings(const std::wstring& name) {
  withSwitchEngine(*this, name, EditTimeEvent::kWarningsOn,
                   [](EditTimeEngine& e) { e.warningsOn(); });
}

void EditTimeController::postNameChange(const std::wstring& oldName, const std::wstring& newName) {
  Profiler profiler("ENGINE", "MODELRENAME");
  closeEngine(oldName);
  if (showEditTimeIssues()) onDiagramEvent(diagramByName(newName), EditTimeEvent::kChecksOn);
}

void EditTimeController::switchConfiguration(const std::wstring& file, const std::wstring& name) {
  if (auto engine = findEngine(name)) {
    engine->removeStyling(name, EditTimeEvent::kAuditorOff);
    engine->loadConfig(file);
  }
}

void EditTimeController::loadDefaultConfiguration(const std::wstring& name) {
  if (auto engine = findEngine(name)) {
    engine->removeStyling(name, EditTimeEvent::kAuditorOff);
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
  if (auto engine = findEngine(name))
    engine->refreshWorkspaceChecks(EditTimeEvent::kWorkspaceRefresh);
}

// ---- signals and tasks

void EditTimeController::onDiagramEvent(BKRootBD* diagram, int code) {
  if (!diagram || isSuspended(diagram)) return;
  auto engine = getOrCreateEngine(diagram, code);
  if (!engine || code < EditTimeEvent::kChecksOn || code > EditTimeEvent::kLastDiagramEvent) return;
  switch (code) {
    case EditTimeEvent::kChecksOn:
      engine->checksOn(EditTimeEvent::kChecksOn);
      break;
    case EditTimeEvent::kChecksOff:
      closeEngine(engine->getDiagramName());
      break;
    case EditTimeEvent::kConfiguration:
      engine->enableAuditor();
      break;
    case EditTimeEvent::kAuditorOff:
      engine->disableAuditor();
      break;
    case EditTimeEvent::kErrorsOn:
      engine->errorsOn();
      break;
    case EditTimeEvent::kErrorsOff:
      engine->errorsOff();
      break;
    case EditTimeEvent::kWarningsOn:
      engine->warningsOn();
      break;
    case EditTimeEvent::kWarningsOff:
      engine->warningsOff();
      break;
    case EditTimeEvent::kAllOn:
      engine->allOn();
      break;
    default:
      break;
  }
}

void EditTimeController::processBatch(BKRootBD* diagram, const PluginChangeReport& report,
                                      int kind) {
  auto engine = getOrCreateEngine(diagram, kind);
  if (!engine) return;
  switch (kind) {
    case EditTimeEvent::kBlocksAdded:
      // A host batch with additions also flushes its deletions.
      engine->processBatchOfEvents(report, EditTimeEvent::kBlocksDeleted);
      engine->processBatchOfEvents(report, EditTimeEvent::kBlocksAdded);
      break;
    case EditTimeEvent::kBlocksDeleted:
    case EditTimeEvent::kBlocksRenamed:
    case EditTimeEvent::kBlocksChanged:
      engine->processBatchOfEvents(report, kind);
      break;
    default:
      break;
  }
}

void EditTimeController::commentStatusChanged(BKRootBD* diagram, BKBlock* block) {
  if (auto engine = getOrCreateEngine(diagram, EditTimeEvent::kNone))
    engine->commentStatusChanged(block);
}

void EditTimeController::modelParameterChanged(BKRootBD* diagram, const std::string& name) {
  if (!featureOn(BKFEAT_BlockConstraintCheckAuthoring)) return;
  if (auto engine = getOrCreateEngine(diagram, EditTimeEvent::kNone)) {
    engine->modelParameterChanged(name);
  }
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
