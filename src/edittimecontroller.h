#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "host/language/cosinterface.h"

class BKRootBD;
class BKBlock;
struct PluginChangeReport;

namespace bkedittimecheck {

class EditTimeEngine;
class bkEditBD;
class ViolationDatabase;

/// The process-wide front of the engine: maps diagram names to engines, keeps engines that are
/// closing with work in flight, and offers what the host language binds.
///
/// The host language reaches it as "bkedittimecheck.EditTimeController".
///
/// Thread contract: everything belongs to the main thread except `findEngine`, `findEditBD`,
/// `findViolationDatabase` and `forgetClosingEngine`, which the worker calls. `enginesMutex`
/// guards `engines` against the worker: the main thread, its only writer, takes it for every
/// change and reads without it. `closingMutex` guards `closingEngines`. The two are never held
/// together.
class EditTimeController : public ncos::Wrappable {
 public:
  /// Main thread on first call. The singleton, made on first use.
  static EditTimeController& instance();

  EditTimeController(const EditTimeController&) = delete;
  EditTimeController& operator=(const EditTimeController&) = delete;
  ~EditTimeController() override;

  // ---- lookups
  /// Any thread. The engine of that name, or null.
  std::shared_ptr<EditTimeEngine> findEngine(const std::wstring& name) const;
  /// Any thread. The engine's exchange record, or null.
  std::shared_ptr<bkEditBD> findEditBD(const std::wstring& name) const;
  /// Any thread. The engine's violation store, or null.
  std::shared_ptr<ViolationDatabase> findViolationDatabase(const std::wstring& name) const;
  /// Main thread. The engine of the diagram; a missing one is made only for codes 1, 7, 10 and
  /// 15. Null for a null diagram.
  std::shared_ptr<EditTimeEngine> getOrCreateEngine(BKRootBD* diagram, int code);

  // ---- what the host language binds (main thread)
  void applyStyle(const std::wstring& name, std::uint32_t engineId);
  void updateDiagnostic(const std::wstring& name);
  void refreshExclusions(const std::wstring& name);
  void refreshExclusionsWithPartFile(const std::wstring& name, const std::wstring& file);
  /// Writes "bdName = " and the name to standard output; nothing else.
  void getViolations(const std::string& name);
  /// The three strings of each violation of the block; empty without an engine.
  std::vector<std::string> getViolations(const std::wstring& name, double blockHandle);
  void on(const std::wstring& name);
  void off(const std::wstring& name);
  void enableRA(const std::wstring& name);
  void disableRA(const std::wstring& name);
  void turnOffErrorsAndWarnings(const std::wstring& name);
  void turnOnErrorsAndWarnings(const std::wstring& name);
  void turnOnErrors(const std::wstring& name);
  void turnOffErrors(const std::wstring& name);
  void turnOffWarnings(const std::wstring& name);
  void turnOnWarnings(const std::wstring& name);
  void postNameChange(const std::wstring& oldName, const std::wstring& newName);
  void switchConfiguration(const std::wstring& file, const std::wstring& name);
  void loadDefaultConfiguration(const std::wstring& name);
  void handleNewWindowOpen(const std::wstring& name);
  void refreshBlockaraStatePortChecks(const std::wstring& name, double blockHandle);
  void refreshWorkspaceChecks(const std::wstring& name);

  // ---- what the signals, tasks and worker call
  /// Main thread. Closes the engine of that name: at once without unstyled passes, else it
  /// waits in `closingEngines` until its passes are styled.
  void closeEngine(const std::wstring& name);
  /// Main thread. The diagram-level events 1 to 15 that create or switch engines.
  void onDiagramEvent(BKRootBD* diagram, int code);
  /// Main thread. A host batch; kind 18 flushes deletions (19) first.
  void processBatch(BKRootBD* diagram, const PluginChangeReport& report, int kind);
  void commentStatusChanged(BKRootBD* diagram, BKBlock* block);
  void modelParameterChanged(BKRootBD* diagram, const std::string& name);
  /// Main thread. True without an engine, otherwise the engine's `editsEnabled`.
  bool isTakingEdits(BKRootBD* diagram) const;
  void runDiagramSlice(const std::wstring& name);
  void runWorkspaceSlice(const std::wstring& name);
  /// Worker or main thread. Drops a closing engine of that id, whatever its passes.
  void forgetClosingEngine(const std::wstring& name, std::uint32_t engineId);

  /// Main thread. True when no engine, live or closing, has checks queued or passes unstyled.
  bool hasNoPendingWork() const;

  /// Main thread. The engines awaiting teardown under a name (for diagnostics and tests).
  std::vector<std::shared_ptr<EditTimeEngine>> closingEnginesOf(const std::wstring& name) const;

 private:
  EditTimeController() = default;

  void removeStylingOf(const std::wstring& name, int code);
  void retireClosingEngine(const std::wstring& name, std::uint32_t engineId);
  // Under closingMutex: the closing engine `engineId` of `name`, removed and returned when
  // `done` says so (null otherwise); drops the name once its list is empty.
  std::shared_ptr<EditTimeEngine> takeClosingEngine(
      const std::wstring& name, std::uint32_t engineId,
      const std::function<bool(EditTimeEngine&)>& done);
  void scheduleFollowUp(const std::wstring& name);
  bool hasClosingEngine(const std::wstring& name, std::uint32_t engineId) const;

  mutable std::mutex enginesMutex;
  mutable std::mutex closingMutex;
  std::map<std::wstring, std::shared_ptr<EditTimeEngine>> engines;  // guarded by enginesMutex
  std::map<std::wstring, std::vector<std::shared_ptr<EditTimeEngine>>>
      closingEngines;  // guarded by closingMutex
};

/// Any thread. Drops a reference to an engine on the main thread: at once there, otherwise
/// through the main loop, so that an engine is never destroyed on the worker. The posted command
/// also drops the references held by `holdForMainThread` and any handed back before it runs.
void releaseOnMainThread(std::shared_ptr<EditTimeEngine> engine);

/// Any thread but the main one. Keeps a reference to an engine until the next
/// `releaseOnMainThread`, so that the checks of a pass wake the main thread once, not once each.
void holdForMainThread(std::shared_ptr<EditTimeEngine> engine);

/// Main thread. True when the engine is at rest: no engine, live or closing, has checks queued or
/// passes unstyled, and the worker has no item queued or running. Makes nothing that does not
/// exist yet. A check that threw keeps its engine's count raised, so that engine never rests.
bool isQuiescent();

}  // namespace bkedittimecheck
