#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "src/algorithms/edittimealgorithms.h"
#include "src/pendingwork.h"
#include "src/workerthread/workerqueuefunc.h"

namespace bkedittimecheck {

/// The per-diagram switches of the checks and the builder of the list of checks for one event.
/// Each event builds a fresh list, hands it to the worker and forgets it.
///
/// Thread contract: main thread only, except `pending`, whose counter the worker decrements.
class AlgorithmTable {
 public:
  /// Observer of the events that reach `runEvent`: code, `hasVariants`, and how many entries the
  /// table held before the two-entry rule. Used by diagnostics and tests.
  using EventObserver = std::function<void(int code, bool hasVariants, std::size_t entries)>;

  /// Main thread. `showEditTimeIssues` seeds both display switches.
  AlgorithmTable(std::wstring diagramName, bool isLibrary, bool showEditTimeIssues);
  AlgorithmTable(const AlgorithmTable&) = delete;
  AlgorithmTable& operator=(const AlgorithmTable&) = delete;

  /// Main thread. Builds the table for event `code`: `RemoveBlock`, `Setup`, then the checks
  /// that apply. A table of only those two entries is dropped and queues nothing; otherwise
  /// `pending` counts the entries and each goes to the worker in order. Never throws beyond
  /// allocation.
  void runEvent(int code, bool hasVariants);

  /// Main thread. Queues the one check `id` on its own, without the two internal entries:
  /// "orvanta.blockara.DataStoreUsage" with the severity the switches give (5 both, 0 warnings
  /// only, 1 errors only, nothing with neither), or a selected constraint check under the rule
  /// auditor. Nothing when the check does not apply.
  void runCheckById(const std::string& id);

  /// Main thread. Replaces the event observer (empty: none).
  void setEventObserver(EventObserver observer) { eventObserver = std::move(observer); }

  const std::wstring diagramName;
  const bool isLibrary;
  std::vector<std::shared_ptr<EditTimeAlgorithms>> pendingAlgorithms;  // empty between events
  bool auditorChecksEnabled = false;
  bool showErrors;
  bool showWarnings;
  PendingWork pending;
  std::uint32_t engineId = 0;
  std::vector<std::string> constraintCheckIds;

 private:
  bool interactiveChecksApply(bool hasVariants) const;
  void appendMissingVariableCheck(int code, bool hasVariants);
  void appendSelectedChecks(int code);
  void appendInteractiveChecks(bool hasVariants);
  // Appends a `Check` of the diagram when `selection` maps its ID to true.
  template <typename Check>
  void appendIfSelected(const std::map<std::string, bool>& selection);
  void startPending();

  EventObserver eventObserver;
  std::vector<std::unique_ptr<WorkerQueueFunc>> starting;  // empty between events; keeps its room
};

}  // namespace bkedittimecheck
