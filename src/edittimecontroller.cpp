#include "src/edittimecontroller.h"

#include <algorithm>
#include <functional>
#include <iostream>

#include "host/signals/pluginchangereport.h"
#include "host/runtime/eventloop.h"
#include "src/bkeditbd.h"
#include "src/edittimeengine.h"
#include "src/hostinterface.h"
#include "src/profiler.h"
#include "src/violationdatabase.h"
#include "src/workerthread/asynctaskmanager.h"

namespace bkedittimecheck {

namespace {

// The controller lives for the whole session; it is made on the main thread at first use.
EditTimeController* theController = nullptr;

// The event codes that may bring an engine into being: 1, 7, 10 and 15.
constexpr unsigned kCreatingCodes = 0x8482;

}  // namespace

EditTimeController& EditTimeController::instance() {
  if (!theController) theController = new EditTimeController();
  return *theController;
}

EditTimeController::~EditTimeController() = default;

std::shared_ptr<EditTimeEngine> EditTimeController::findEngine(const std::wstring& name) const {
  std::lock_guard<std::mutex> lock(enginesMutex);
  for (const auto& [key, engine] : engines) {
    if (toWide(key) == name) return engine;
  }
  return nullptr;
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

std::shared_ptr<EditTimeEngine> EditTimeController::getOrCreateEngine(BKRootBD* diagram,
                                                                      int code) {
  if (!diagram) return nullptr;
  const bksvString key = toBksv(diagramNameOf(diagram));
  // The main thread is the only writer of `engines`, so it may read without the lock.
  auto it = engines.lower_bound(key);
  if (it != engines.end() && it->first == key) return it->second;
  if (code < 0 || code >= 16 || ((kCreatingCodes >> code) & 1u) == 0) return nullptr;
  auto engine = std::make_shared<EditTimeEngine>(diagram);
  std::lock_guard<std::mutex> lock(enginesMutex);
  engines.emplace_hint(engines.lower_bound(key), key, engine);
  return engine;
}

void EditTimeController::closeEngine(const std::wstring& name) {
  Profiler profiler("ENGINE", "MODELCLOSE");
  const bksvString key = toBksv(name);
  auto it = engines.find(key);
  if (it == engines.end()) return;
  std::shared_ptr<EditTimeEngine> engine = it->second;
  engine->cleanupOnModelClose();
  if (engine->hasUnstyledPasses()) {
    std::lock_guard<std::mutex> lock(closingMutex);
    closingEngines[name].push_back(engine);
  }
  // The worker may be inside findEngine: the erase is guarded on both paths.
  std::lock_guard<std::mutex> lock(enginesMutex);
  engines.erase(key);
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
  const bksvString key = toBksv(name);
  for (const auto& [engineName, engine] : engines) {
    if (engineName == key && engine->engineId() == engineId) {
      engine->applyStyling();
      engine->passStyled();
    }
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

void releaseOnMainThread(std::shared_ptr<EditTimeEngine> engine) {
  if (!engine) return;
  blockara::EventLoop& loop = blockara::EventLoop::instance();
  if (loop.isMainThread()) return;
  loop.post([last = std::move(engine)] {});
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

}  // namespace bkedittimecheck
