#include "src/workerthread/threadeddataanalyzer.h"

#include <utility>

#include "src/bkeditbd.h"
#include "src/edittimecontroller.h"
#include "src/edittimeengine.h"
#include "src/hostinterface.h"
#include "src/profiler.h"
#include "src/violationdatabase.h"
#include "src/workerthread/asynctaskmanager.h"
#include "src/workerthread/checkfailures.h"

namespace bkedittimecheck {

ThreadedDataAnalyzer::ThreadedDataAnalyzer(std::shared_ptr<EditTimeAlgorithms> algorithm,
                                           std::uint32_t engineId)
    : algorithm(std::move(algorithm)), engineId(engineId) {}

void ThreadedDataAnalyzer::run(void* /*context*/) {
  Profiler profiler("ENGINE", "ParallelThreadTime");
  const std::wstring name = algorithm->getDiagramName();
  EditTimeController& controller = EditTimeController::instance();
  std::shared_ptr<EditTimeEngine> engine = controller.findEngine(name);
  // The main thread may close the engine meanwhile; its end then belongs to the main thread.
  struct Release {
    std::shared_ptr<EditTimeEngine>& engine;
    ~Release() {
      // This item still counts as outstanding: the last of the queue sends every reference
      // gathered meanwhile to the main thread, the others only hand theirs in.
      if (AsyncTaskManager::outstandingCount() <= 1) {
        releaseOnMainThread(std::move(engine));
      } else {
        holdForMainThread(std::move(engine));
      }
    }
  } release{engine};
  if (!engine || engine->engineId() != engineId) {
    controller.forgetClosingEngine(name, engineId);
    return;
  }
  const CheckContext context{engine->getData(), engine->getViolations(),
                             engine->getCheckSelector(), engine->getConfiguration()};
  if (!context.data) {
    try {
      requestStyling(nullptr, nullptr);
      return;
    } catch (...) {
    }
  }
  bool passEnded = false;
  if (context.data) {
    try {
      algorithm->runCheck(context);
      passEnded = engine->pendingWork().finishOne();
    } catch (const std::exception& error) {
      // A failing check is dropped; its pass stays counted, as nothing can tell how far it got.
      noteFailure(error.what());
    } catch (...) {
      noteFailure("unknown error");
    }
  }
  profiler.stop();
  // Asked when the count fell to zero, not read again afterwards: an edit queued in between
  // begins a new pass, and reading the count then would leave this pass unstyled for good.
  if (passEnded) {
    try {
      requestStyling(context.data.get(), context.violations.get());
    } catch (...) {
    }
  }
}

void ThreadedDataAnalyzer::noteFailure(const char* what) noexcept {
  try {
    noteCheckFailure(CheckFailure{algorithm->getCheckId(), algorithm->getDiagramName(), what});
  } catch (...) {
  }
}

void ThreadedDataAnalyzer::requestStyling(bkEditBD* data, ViolationDatabase* violations) {
  EditTimeAlgorithms::setInputParametersChanged(false);
  if (data) data->pruneAfterPass();
  if (violations) violations->settleForStyling();  // here, not on the main thread
  postApplyStyle(algorithm->getDiagramName(), engineId);
}

}  // namespace bkedittimecheck
