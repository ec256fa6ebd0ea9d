#include "src/workerthread/threadeddataanalyzer.h"

#include <utility>

#include "src/bkeditbd.h"
#include "src/edittimecontroller.h"
#include "src/edittimeengine.h"
#include "src/hostinterface.h"
#include "src/profiler.h"

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
    ~Release() { releaseOnMainThread(std::move(engine)); }
  } release{engine};
  if (!engine || engine->engineId() != engineId) {
    controller.forgetClosingEngine(name, engineId);
    return;
  }
  std::shared_ptr<bkEditBD> data = engine->getData();
  if (!data) {
    try {
      requestStyling();
      return;
    } catch (...) {
    }
  } else {
    try {
      algorithm->runCheck();
      engine->pendingWork().finishOne();
    } catch (...) {
      // A failing check is dropped; its pass stays counted, as nothing can tell how far it got.
    }
  }
  profiler.stop();
  if (engine->queuedCount() == 0) {
    try {
      requestStyling();
    } catch (...) {
    }
  }
}

void ThreadedDataAnalyzer::requestStyling() {
  const std::wstring name = algorithm->getDiagramName();
  std::shared_ptr<bkEditBD> data = EditTimeController::instance().findEditBD(name);
  EditTimeAlgorithms::setInputParametersChanged(false);
  if (data) {
    for (auto it = data->blocks.begin(); it != data->blocks.end();) {
      const int kind = it->second->getBlockKind();
      // Cross-block checks need these between passes; everything else lives for one pass.
      const bool keep = kind == 22 || kind == 51 || kind == 56 || kind == 57 || kind == 123 ||
                        kind == 125 || it->second->hasChartData();
      if (keep) {
        it->second->dropRaEditBlock();
        ++it;
      } else {
        it = data->blocks.erase(it);
      }
    }
  }
  postApplyStyle(name, engineId);
}

}  // namespace bkedittimecheck
