#pragma once

#include <tbb/concurrent_queue.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <unordered_set>
#include <string>
#include <utility>
#include <vector>

#include "src/constraints/bkeditblock.h"
#include "src/constraints/parametervalue.h"
#include "src/editbdrecords.h"
#include "src/graphscan.h"
#include "src/hostinterface.h"
#include "src/maskscopeindex.h"
#include "src/queueallocator.h"

namespace bkedittimecheck {

class BlockParameterConstraint;
class ViolationDatabase;

/// A lock-free queue filled on the main thread and drained on the worker.
template <typename T>
using EditQueue = tbb::concurrent_queue<T, QueueAllocator<T>>;

/// What the engine must still do on its side (styling, the comment path) after `bkEditBD` took
/// a block of a host batch into its queues.
struct BlockNoted {
  bool variantSubsystem = false;  ///< a variant subsystem came or went: clear errors and warnings
  bool commented = false;         ///< the block is commented: take the comment path
  bool deleted = false;           ///< the block's handle went on the deleted queue
};

/// The exchange record of one diagram between the main thread and the worker: seven queues that
/// the main thread fills from host events, and the worker-side state that the internal checks
/// fold them into. It alone decides what an added, changed, deleted, renamed or (un)commented
/// block means for the queues, and which snapshots outlive a pass.
///
/// Thread contract: the queues may be pushed on the main thread and popped on the worker at the
/// same time. Operations marked "Worker" touch only the worker-side fields, which have no lock
/// since the worker alone writes them; operations marked "Main thread" touch only the main-side
/// fields. Every host call runs on the main thread.
class bkEditBD {
 public:
  /// Main thread. `auditorMode` is the diagram's rule-auditor bit at construction.
  bkEditBD(std::wstring name, bool auditorMode);
  bkEditBD(const bkEditBD&) = delete;
  bkEditBD& operator=(const bkEditBD&) = delete;

  // ---- main thread: the blocks of host batches

  /// Main thread. An added (`EditTimeEvent::kBlocksAdded`) or changed block: records event
  /// listeners, subsystems and state owners, then snapshots it unless it is commented.
  BlockNoted noteChangedBlock(BKBlock* block, int kind);
  /// Main thread. A deleted block: `block` is null once the host dropped it, else the undo
  /// object whose facts are withdrawn. Pushes the handle unless the block is commented; a
  /// commented subsystem also leaves the commented set, and its handle is pushed.
  BlockNoted noteDeletedBlock(double handle, BKBlock* block);
  /// Main thread. A renamed or moved block. A block of a kind kept across passes that is no
  /// longer taken where it stands now (inside a chart) is queued as deleted.
  BlockNoted noteRenamedBlock(BKBlock* block);
  /// Main thread. A block whose comment status changed: records a subsystem that leaves or
  /// enters the commented set and snapshots the block. False when nothing concerns the checks
  /// (a commented block of another kind), and then nothing was queued.
  bool noteCommentChange(BKBlock* block);

  /// Main thread. Snapshots `block` onto `changedBlocks` when it matters: routing blocks always
  /// (up to the 1000th), others only when their graph is on view and not for blocks just added.
  /// Returns true when a snapshot was pushed. Host exceptions pass to the caller.
  bool noteBlock(BKBlock* block, int kind);

  /// Main thread. True for the blocks that cross-block checks need whatever is on view; counts
  /// Goto/From blocks and marks state accessors as a side effect.
  bool isRoutingBlock(BKBlock* block);

  /// Main thread. Records a subsystem's mask kind (rule-auditor mode) and its path change.
  void noteSubsystemRename(BKBlock* block);

  /// Main thread. Drops the event listener record of `handle` from `subsysProperties`.
  void dropSubsysProperties(double handle);
  /// Main thread. Keeps only the event listener records whose handle still resolves to an
  /// uncommented listener, each with the listener's path of now.
  void compactSubsysProperties();

  /// Main thread. Queues the mask kind of every known subsystem again.
  void requeueMasks();

  /// Main thread. The block parameter constraints of the loaded configuration by block type:
  /// a snapshot taken for the rule auditor captures the parameters they name.
  void setParameterDataByBlockType(
      std::map<std::string, std::vector<std::shared_ptr<BlockParameterConstraint>>> byType) {
    parameterDataByBlockType = std::move(byType);
  }

  /// Main thread sets, any thread reads: the diagram's "UniqueDataStoreMsg" level (0 none,
  /// 1 warning, 2 error). A plain atomic value: a stale read only defers the data store check's
  /// answer to its next run.
  void setUniqueDataStoreMsg(std::int32_t level) { uniqueDataStoreMsg.store(level); }
  std::int32_t getUniqueDataStoreMsg() const { return uniqueDataStoreMsg.load(); }

  /// Main thread. True while variant subsystems are known to be in the diagram.
  bool hasVariants() const { return variantSubsystemCount != 0; }

  // ---- main thread: the scans

  /// Main thread. Replaces both wanted lists of graphs; each scan forgets visits of graphs no
  /// longer wanted.
  void setWantedGraphs(const std::vector<bkGraph*>& graphs);

  /// Main thread. The one walk of the whole diagram from `root`: counts variant subsystems,
  /// records subsystems, event listeners and commented subsystems, and snapshots routing blocks.
  /// Does nothing once it ran.
  void scanDiagramOnce(bkGraph* root);

  /// Main thread. True while the rule-auditor scan has graphs left: it wants more graphs than
  /// it visited and `auditorMode` is set. Only the counts matter.
  bool hasAuditorGraphsToScan() const;
  /// Main thread. How far the rule-auditor scan is: system levels visited and wanted.
  std::pair<std::size_t, std::size_t> auditorScanProgress() const {
    return {auditorGraphs.visitedGraphs().size(), auditorGraphs.wantedGraphs().size()};
  }
  /// Main thread. True while the interactive scan wants more graphs than it visited.
  bool hasVisibleGraphsToScan() const;

  /// Main thread. Scans the first graph `auditorGraphs` wants and has not visited, if
  /// any: marks it done and, unless it is unusable or its owner was taken already (a chart, or
  /// a subsystem shown twice), notes its blocks for the rule-auditor checks. One graph a call.
  /// Host exceptions pass to the caller.
  void scanNextAuditorGraph();
  /// Main thread. The same on `visibleGraphs`: every block of the graph, commented ones
  /// included, is snapshotted onto `changedBlocks`.
  void scanNextVisibleGraph();

  /// Main thread. Forgets what the interactive scan visited and scans its first graph again.
  void restartVisibleScan();
  /// Main thread. Takes `auditorMode` afresh, forgets what the rule-auditor scan visited and
  /// scans its first graph again.
  void restartAuditorScan(bool auditorModeNow);
  /// Main thread. Forgets what the rule-auditor scan visited, scanning nothing.
  void forgetAuditorScan();

  /// Main thread. Mask kind of a subsystem block: 1 none, 4 initialization set, else 2 or 3.
  static std::int32_t maskKindOf(BKBlock* block);

  // ---- worker

  /// Worker. The snapshots of the current pass and the blocks kept across passes, by handle.
  const std::map<double, std::shared_ptr<bkEditBlock>>& blockMap() const { return blocks; }

  /// Worker. Calls `visit(handle, snapshot)` for every block of `blockMap()` that carries a
  /// rule-auditor part, in ascending handle order: the blocks the rule-auditor checks walk.
  /// Equal to walking the whole map and passing the others by, which the kept routing blocks
  /// (no rule-auditor part) would make cost a walk over all of them per check and edit.
  template <typename Visit>
  void forEachAuditedBlock(Visit visit) const;

  /// Any thread. True from the 1001st Goto/From block on, for the life of this record.
  bool hasTooManyRoutingBlocks() const { return tooManyRoutingBlocks.load(); }

  /// Worker. True when the queue `subsysProperties` holds an event listener record whose
  /// parent path is `path` (narrow): that system iterates. Pops the queue up to the first such
  /// record and pushes what it took back in its order; the main thread may see the queue short
  /// meanwhile.
  bool isIteratorSystem(const std::string& path);

  /// Worker. True when a check with these scope parameters must pass `block` by: a linked block
  /// when `skipLinkedBlocks` is 1, or a block under a mask that `lookUnderMasks` (1 to 3) excludes.
  bool isOutsideScope(const bkEditBlock& block, std::int32_t skipLinkedBlocks,
                      std::int32_t lookUnderMasks) const;

  /// Worker. Pops `deletedHandles`, dropping each block and its records from `violations`.
  /// Without a store the queue is left as it is. `processChanges` then passes over the
  /// snapshots of those blocks that were queued before their deletion.
  void processDeletions(ViolationDatabase* violations);

  /// Worker. Folds the subsystem, rename, mask, state owner and snapshot queues into the
  /// worker-side maps, in that order; comment changes of subsystems reach `violations`.
  void processChanges(ViolationDatabase* violations);

  /// Worker. After the last check of a pass: keeps only the blocks that cross-block checks
  /// read on every run, without their rule-auditor part.
  void pruneAfterPass();

  const std::wstring name;

 private:
  friend struct bkEditBDProbe;  // white-box access for the engine's tests

  // True when the owner of `graph` was walked already in this scan (recorded in `pathsDone`)
  // or is a chart, whose inside is never walked.
  bool isOwnerTaken(const bkGraph* graph, std::set<std::wstring>& pathsDone);
  // Records an event listener block.
  void noteEventListener(BKBlock* block);
  // Pushes a commented subsystem entering (`isAdded`) or leaving the commented set.
  void noteCommentedSubsystem(BKBlock* block, bool isAdded);
  // Main thread. The pushes that order snapshots after deletions and subsystem renames: each
  // of those counts, and each snapshot carries the counts queued before it.
  void queueDeletion(double handle);
  // Queues the deletion of a kept block that stands in a chart, where it is not taken; true if so.
  bool dropIfInChart(BKBlock* block);
  void queueSnapshot(std::shared_ptr<bkEditBlock> snapshot);
  // Both drain steps for an event listener that left.
  void dropEventListener(double handle);
  void renameBlocks(const std::wstring& oldPath, const std::wstring& newPath);
  static std::wstring renamedPath(std::wstring path, const std::wstring& oldPath,
                                  const std::wstring& newPath);
  void syncCommentedSubsystems(ViolationDatabase& violations, bool renamed);

  // ---- worker
  std::map<double, std::shared_ptr<bkEditBlock>> blocks;
  // Handles of the snapshots put into `blocks` since the last prune; may repeat and may name
  // blocks gone or replaced since. Every other block was kept by that prune, so it is a routing
  // or chart block without a rule-auditor part. Sorted and thinned out at the first walk that
  // finds it unsorted.
  mutable std::vector<double> arrivedHandles;
  mutable bool arrivedHandlesSorted = true;
  // Sorts and thins out `arrivedHandles`; true when looking each of them up costs less than a
  // walk over the whole map.
  bool fewArrived() const;
  std::map<std::wstring, std::int32_t> maskKinds;
  // The scope rule's index over `maskKinds`, rebuilt at the first scope test after a change.
  mutable MaskScopeIndex maskIndex;
  mutable bool maskIndexStale = false;
  std::map<double, Blkproperties> subsysMap;
  std::uint64_t deletionsTaken = 0;            // deletions popped so far
  std::uint64_t renamesTaken = 0;              // subsystem renames popped so far
  std::map<double, std::uint64_t> deletedAt;  // handle -> its deletion's number, until drained

  // ---- main writes, worker reads (copied at construction and by the setting's refresh)
  std::atomic<std::int32_t> uniqueDataStoreMsg{0};
  std::map<std::string, ParameterValue> modelParameterData;

  // ---- queues (main pushes, worker pops)
  EditQueue<double> deletedHandles;
  EditQueue<QueuedSnapshot> changedBlocks;
  EditQueue<Blkproperties> blkProperties;
  EditQueue<SubsysProperties> subsysProperties;
  EditQueue<SubsysNameChange> subsysNameChanges;
  EditQueue<MaskedBlock> maskedBlocks;
  EditQueue<StateRWOwnerPathChange> stateRWOwnerPathChanges;

  // ---- main
  bool auditorMode;
  bool initialScanDone = false;
  std::uint64_t deletionsQueued = 0;
  std::uint64_t renamesQueued = 0;
  GraphScan auditorGraphs;
  std::set<std::wstring> auditorPathsDone;
  GraphScan visibleGraphs;
  std::unordered_set<const bkGraph*> onView;  // the graphs `visibleGraphs` wants
  std::set<std::wstring> visiblePathsDone;
  std::uint32_t variantSubsystemCount = 0;
  std::atomic<bool> tooManyRoutingBlocks{false};  // main writes, the Goto/From check reads
  std::uint32_t routingBlockCount = 0;
  std::map<double, std::wstring> handleToSubsystem;
  bool hasStateAccessBlocks = false;
  std::map<std::string, std::vector<std::shared_ptr<BlockParameterConstraint>>>
      parameterDataByBlockType;
};

/// Any thread. Narrow paths as the state accessor check reads them. True for a path without
/// "/", or whose only "/" is an escaped one at its end.
bool isRootPath(const std::string& path);
/// Any thread. True when the last "/" of the path is its final character: the host writes a "/"
/// ending a block name as "//".
bool hasEscapedSeparator(const std::string& path);
/// Any thread. The path up to its last "/" (that "/" excluded), a trailing escaped "/" set aside
/// first; empty for a root path.
std::string parentPath(const std::string& path);

template <typename Visit>
void bkEditBD::forEachAuditedBlock(Visit visit) const {
  if (fewArrived()) {
    for (double handle : arrivedHandles) {
      const auto entry = blocks.find(handle);
      if (entry != blocks.end() && entry->second && entry->second->hasRaEditBlock()) {
        visit(handle, entry->second);
      }
    }
    return;
  }
  for (const auto& [handle, block] : blocks) {
    if (block && block->hasRaEditBlock()) visit(handle, block);
  }
}

}  // namespace bkedittimecheck
