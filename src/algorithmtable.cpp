#include "src/algorithmtable.h"

#include <utility>

#include "src/algorithms/removeblock.h"
#include "src/algorithms/setup.h"
#include "src/features.h"
#include "src/hostinterface.h"
#include "src/workerthread/asynctaskmanager.h"
#include "src/workerthread/threadeddataanalyzer.h"

namespace bkedittimecheck {

AlgorithmTable::AlgorithmTable(std::wstring diagramName, bool isLibrary, bool showEditTimeIssues)
    : diagramName(std::move(diagramName)),
      isLibrary(isLibrary),
      showErrors(showEditTimeIssues),
      showWarnings(showEditTimeIssues) {}

void AlgorithmTable::runEvent(int code, bool hasVariants) {
  pendingAlgorithms.push_back(std::make_shared<RemoveBlock>(diagramName, 5));
  pendingAlgorithms.push_back(std::make_shared<Setup>(diagramName));
  appendInteractiveChecks(code, hasVariants);
  if (auditorChecksEnabled) {
    appendSelectedChecks(code);
    if (code == 7) EditTimeAlgorithms::setInputParametersChanged(true);
  }
  if (eventObserver) eventObserver(code, hasVariants, pendingAlgorithms.size());
  // Only the two internal entries: nothing to check. The queues of bkEditBD keep what they hold
  // until a later table runs.
  if (pendingAlgorithms.size() == 2) {
    pendingAlgorithms.clear();
    return;
  }
  startPending();
}

void AlgorithmTable::runCheckById(const std::string& id) {
  // The single checks (the data store usage check, the constraint checks) join the table with
  // their own classes; until one is built here there is nothing to start.
  (void)id;
  if (!pendingAlgorithms.empty()) startPending();
}

void AlgorithmTable::appendInteractiveChecks(int code, bool hasVariants) {
  // The missing-variable check and the cross-block checks of the edit-time preference are
  // appended here, in table order, as their classes arrive.
  (void)code;
  (void)hasVariants;
}

void AlgorithmTable::appendSelectedChecks(int code) {
  // The rule-auditor checks that the check selector has on are appended here, in table order.
  (void)code;
}

void AlgorithmTable::startPending() {
  pending.addQueued(static_cast<std::int64_t>(pendingAlgorithms.size()));
  for (auto& algorithm : pendingAlgorithms) {
    AsyncTaskManager::instance().enqueue(
        std::make_unique<ThreadedDataAnalyzer>(std::move(algorithm), engineId), false);
  }
  pendingAlgorithms.clear();
}

}  // namespace bkedittimecheck
