#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "host/runtime/cooperativetaskmanager.h"
#include "host/studio/connectionservice.h"
#include "src/algorithmtable.h"

class BKRootBD;
class BKBlock;
struct PluginChangeReport;
namespace Blockara {
struct ActiveEditorChangedEvent;
class StudioApp;
}  // namespace Blockara

namespace bkedittimecheck {

class BlockParamConstraintData;
class bkEditBD;
class EditTimeCheckSelector;
class EditTimeStyling;
class EditTimeTaskManager;
class EditTimeTaskManagerWorkspace;
class ExclusionManager;
struct EditTimeViolation;
class ViolationDatabase;

/// The checking engine of one open diagram. It turns each host event into snapshots on the
/// diagram's `bkEditBD`, a table of checks, and work for the worker, all on the main thread and
/// without waiting for anything.
///
/// Thread contract: every operation belongs to the main thread, except `engineId`,
/// `queuedCount`, `pendingWork`, `getData` and `getViolations`, which the worker may call on an
/// engine it holds. `data` and `violations` never change after construction. The engine is a
/// listener of the studios' connections, which the main thread alone may touch: it must be
/// destroyed on the main thread (the worker hands its last references to the main loop).
class EditTimeEngine : public Blockara::connections::Listener {
 public:
  /// Main thread. Sets the engine up for `diagram` (not owned), calls the host-language setup
  /// function (a failure there is dropped), takes the graphs on view and draws a fresh
  /// `engineId`. Host exceptions pass to the caller.
  explicit EditTimeEngine(BKRootBD* diagram);
  ~EditTimeEngine() override;
  EditTimeEngine(const EditTimeEngine&) = delete;
  EditTimeEngine& operator=(const EditTimeEngine&) = delete;

  /// Main thread. One host batch of kind 18 (added), 19 (deleted), 20 (renamed) or 21
  /// (changed): snapshots what matters and runs the table with that code.
  void processBatchOfEvents(const PluginChangeReport& report, int kind);

  /// Main thread. Routes one added or changed block (null allowed) to the queues.
  void processChangedBlock(BKBlock* block, int kind);

  /// Main thread. A block's comment status changed (null allowed).
  void commentStatusChanged(BKBlock* block);

  /// Main thread. The switches; each ends with at most one table run. Exceptions of the
  /// customization and exclusions readers pass to the caller (`checksOn` under the rule
  /// auditor, `enableAuditor`, `loadConfig`, `loadDefaultConfig`).
  void checksOn(int code);
  void errorsOn();
  void warningsOn();
  void errorsOff();
  void warningsOff();
  void allOn();
  void enableAuditor();
  void disableAuditor();
  void loadConfig(const std::wstring& path);
  void loadDefaultConfig();
  void refreshChartChecks(double blockHandle);
  void refreshWorkspaceChecks(int code);
  void refreshMissingVariables(int code);

  /// Main thread. Under the rule auditor only: reloads the exclusions the regular way, or from
  /// the file `path`. Throws what `ExclusionManager` throws; nothing is restyled here.
  void refreshExclusions();
  void refreshExclusionsWithPartFile(const std::wstring& path);

  /// Main thread. The view changed: refresh the graphs on view and run the table with code 2.
  void viewChanged();
  /// Main thread. Listens to the active-editor events of every studio showing the diagram: one
  /// new connection per studio and call, delivered on the thread "Numeria". Throws what the
  /// connection service throws.
  void connectStudioListeners();
  /// Main thread ("Numeria"). The target of the studio connections: the view changed.
  void activeEditorChanged(const Blockara::ActiveEditorChangedEvent& event);

  /// Main thread. Takes the style classes of `code` off the blocks.
  void removeStyling(const std::wstring& name, int code);
  /// Main thread. Forgets one block's results and takes its classes off.
  void removeBlockResults(double blockHandle);
  /// Main thread. Puts the classes of the store on the blocks.
  void applyStyling();
  /// Main thread. One pass was styled.
  void passStyled();
  /// Main thread. The three strings (type, check ID, category) of each violation of a block.
  std::vector<std::string> getBlockViolationStrings(double blockHandle) const;

  /// Main thread. Takes the rule-auditor task out of its session, stops listening to the
  /// studios and calls the host-language cleanup function (a failure there is dropped). The
  /// workspace task stays: its slice finds no engine and does nothing.
  void cleanupOnModelClose();

  /// Main thread. Appends a task for the next slice of the rule-auditor scan (only under the
  /// rule auditor) or of the interactive scan, when that scan has graphs left; a finished or
  /// missing session of this engine is replaced by a new ordered one. Tasks are not
  /// deduplicated.
  void scheduleDiagramTask();
  void scheduleWorkspaceTask();
  /// Main thread. One slice: refresh the graphs on view, scan the next graph of the scan, run
  /// the table with code 1.
  void runDiagramSlice();
  void runWorkspaceSlice();
  /// Main thread. The engine's task session and latest tasks; null before the first.
  const std::shared_ptr<Performance::CooperativeTaskManager::OrderedTaskSession>& getTaskSession()
      const {
    return taskSession;
  }
  const std::shared_ptr<EditTimeTaskManager>& getDiagramTask() const { return diagramTask; }
  const std::shared_ptr<EditTimeTaskManagerWorkspace>& getWorkspaceTask() const {
    return workspaceTask;
  }

  /// Main thread. Takes the graphs behind the visible editors into both wanted lists.
  void refreshVisibleGraphs();

  /// Main thread. Whether the engine takes edits (false while the diagram compiles or runs).
  void setEditsEnabled(bool enabled) { editsOn = enabled; }
  bool editsEnabled() const { return editsOn; }

  /// Any thread. The engine's id: distinct for every engine of the process.
  std::uint32_t engineId() const { return id; }
  /// Main thread. True while a pass was begun and not styled.
  bool hasUnstyledPasses() const { return algorithmTable.pending.passCount() > 0; }
  /// Any thread. Checks queued and not finished.
  std::int64_t queuedCount() const { return algorithmTable.pending.queuedCount(); }
  /// Any thread. The counter of queued checks, for the worker's `finishOne`.
  PendingWork& pendingWork() { return algorithmTable.pending; }

  /// Any thread. The diagram's exchange record and store.
  const std::shared_ptr<bkEditBD>& getData() const { return data; }
  const std::shared_ptr<ViolationDatabase>& getViolations() const { return violations; }
  /// Main thread. The diagram (not owned) and its name at construction.
  BKRootBD* getDiagram() const { return diagram; }
  const std::wstring& getDiagramName() const { return diagramName; }
  /// Main thread. The table of checks and its switches.
  AlgorithmTable& getAlgorithmTable() { return algorithmTable; }
  /// Main thread. Copy of the rule-auditor bit at construction.
  bool getAuditorMode() const { return auditorMode; }
  /// Any thread. The selection of configurable checks; never changes after construction.
  const std::shared_ptr<EditTimeCheckSelector>& getCheckSelector() const { return checkSelector; }
  /// Any thread. The constraint data of the configuration last loaded; null before.
  std::shared_ptr<BlockParamConstraintData> getConfiguration() const;

  /// Main thread. A model parameter changed: when the configuration has constraints on it (and
  /// it is not the data store setting), reads their value again, restarts the rule-auditor scan
  /// and runs the table with code 2. Returns whether it did.
  bool modelParameterChanged(const std::string& name);

  /// Main thread. The diagram's exclusions.
  const std::shared_ptr<ExclusionManager>& getExclusions() const { return exclusions; }

 private:
  bool hasVariants() const;
  // Notes the subsystem renames of `report` before the batch's snapshots are taken.
  void noteRenamedSubsystemsFirst(const PluginChangeReport& report);
  // Takes every "Error" and "Warn" off: a variant subsystem came or went.
  void clearErrorsAndWarnings();
  void scanDiagram();
  void restartVisibleScan();
  void restartAuditorScan();
  void requeueMasks();
  void populateBlockParamConstraintData(const std::wstring& path);
  void setConfiguration(std::shared_ptr<BlockParamConstraintData> fresh);
  bool isExcluded(double handle, const EditTimeViolation& violation) const;

  using StudioConnection =
      Blockara::connections::TypedConnection<EditTimeEngine, Blockara::ActiveEditorChangedEvent>;

  AlgorithmTable algorithmTable;
  std::shared_ptr<Performance::CooperativeTaskManager::OrderedTaskSession> taskSession;  // main
  std::shared_ptr<EditTimeTaskManager> diagramTask;                                      // main
  std::shared_ptr<EditTimeTaskManagerWorkspace> workspaceTask;                           // main
  BKRootBD* diagram;
  std::wstring diagramName;
  std::shared_ptr<EditTimeCheckSelector> checkSelector;
  std::shared_ptr<ExclusionManager> exclusions;  // main
  // Replaced on the main thread while the worker's items read it: guarded by configurationGuard.
  std::shared_ptr<BlockParamConstraintData> configuration;
  mutable std::mutex configurationGuard;
  bool editsOn = true;
  std::uint32_t id;
  std::shared_ptr<ViolationDatabase> violations;
  std::shared_ptr<bkEditBD> data;
  // The host's view revision when `data` last took the visible graphs (main thread).
  std::optional<std::uint64_t> wantedGraphsRevision;
  std::unique_ptr<EditTimeStyling> styling;  // main thread; refers to `violations`
  bool auditorMode;
  // The connections made to the studios' active-editor events (owned by the studios' services);
  // main thread.
  std::vector<std::pair<Blockara::StudioApp*, StudioConnection*>> studioConnections;
};

}  // namespace bkedittimecheck
