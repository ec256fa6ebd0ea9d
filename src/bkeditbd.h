#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <tbb/concurrent_queue.h>

#include "src/queueallocator.h"

#include "src/constraints/bkeditblock.h"
#include "src/constraints/parametervalue.h"
#include "src/editbdrecords.h"
#include "src/hostinterface.h"

namespace bkedittimecheck {

class BlockParameterConstraint;

/// A lock-free queue filled on the main thread and drained on the worker.
template <typename T>
using EditQueue = tbb::concurrent_queue<T, QueueAllocator<T>>;

/// The exchange record of one diagram between the main thread and the worker: seven queues that
/// the main thread fills from host events, and the worker-side state that the internal checks
/// fold them into.
///
/// Thread contract: the queues may be pushed on the main thread and popped on the worker at the
/// same time. Fields marked "worker" are written by the worker alone and have no lock; fields
/// marked "main" belong to the main thread. Every host call runs on the main thread.
class bkEditBD {
 public:
  /// Main thread. `auditorMode` is the diagram's rule-auditor bit at construction.
  bkEditBD(std::wstring name, bool auditorMode);
  bkEditBD(const bkEditBD&) = delete;
  bkEditBD& operator=(const bkEditBD&) = delete;

  /// Main thread. Snapshots `block` onto `changedBlocks` when it matters: routing blocks always
  /// (up to the 1000th), others only when their graph is on view and not for kind 18. Returns
  /// true when a snapshot was pushed. Host exceptions pass to the caller.
  bool noteBlock(BKBlock* block, int kind);

  /// Main thread. True for the blocks that cross-block checks need whatever is on view; counts
  /// Goto/From blocks and marks state accessors as a side effect.
  bool isRoutingBlock(BKBlock* block);

  /// Main thread. Records a subsystem's mask kind (rule-auditor mode) and its path change.
  void noteSubsystemRename(BKBlock* block);

  /// Main thread. Drops the event listener record of `block` from `subsysProperties`.
  void dropSubsysProperties(double handle);

  /// Main thread. Keeps only the event listener records whose handle still resolves to one.
  void compactSubsysProperties();

  /// Main thread. Replaces both wanted lists of graphs; each done list keeps only wanted graphs.
  void setWantedGraphs(const std::vector<bkGraph*>& graphs);

  /// Main thread. Snapshots `block` onto `changedBlocks` only when it is a routing block (the
  /// whole-diagram walk). Returns true when a snapshot was pushed.
  bool noteRoutingBlock(BKBlock* block);

  /// Main thread. True while the rule-auditor scan has graphs left: the wanted and done lists
  /// differ in length and `auditorMode` is set. Only lengths count.
  bool hasAuditorGraphsToScan() const;
  /// Main thread. True while the interactive scan's wanted and done lists differ in length.
  bool hasVisibleGraphsToScan() const;

  /// Main thread. Scans the first graph of `auditorGraphs` not yet in `auditorGraphsDone`, if
  /// any: marks it done and, unless it is unusable or its owner was taken already (a chart, or
  /// a subsystem shown twice), notes its blocks for the rule-auditor checks. One graph a call.
  /// Host exceptions pass to the caller.
  void scanNextAuditorGraph();
  /// Main thread. The same on `visibleGraphs`: every block of the graph, commented ones
  /// included, is snapshotted onto `changedBlocks`.
  void scanNextVisibleGraph();

  /// Main thread. Mask kind of a subsystem block: 1 none, 4 initialization set, else 2 or 3.
  static std::int32_t maskKindOf(BKBlock* block);

  /// Worker. True when a check with these scope parameters must pass `block` by: a linked block
  /// when `skipLinkedBlocks` is 1, or a block under a mask that `lookUnderMasks` (1 to 3) excludes.
  bool isOutsideScope(const bkEditBlock& block, std::int32_t skipLinkedBlocks,
                      std::int32_t lookUnderMasks) const;

  /// Worker. Pops `deletedHandles`, dropping each block and its records. Without a store for this
  /// diagram the queue is left as it is.
  void processDeletions();

  /// Worker. Folds the subsystem, rename, mask, state owner and snapshot queues into the
  /// worker-side maps, in that order.
  void processChanges();

  /// Worker. Rewrites the paths of the blocks that lie under `oldPath`.
  void renameBlocks(const std::wstring& oldPath, const std::wstring& newPath);

  /// Worker. Carries the commented state of the subsystems in `subsysMap` into the store and the
  /// block map; `renamed` moves paths instead. Drops entries that are no longer commented.
  void syncCommentedSubsystems(bool renamed);

  // ---- identity (set at construction)
  const std::wstring name;

  // ---- worker
  std::map<double, std::shared_ptr<bkEditBlock>> blocks;
  std::map<std::wstring, std::int32_t> maskKinds;
  std::map<double, Blkproperties> subsysMap;

  /// Worker. True when the queue `subsysProperties` holds an event listener record whose
  /// parent path is `path` (narrow): that system iterates. Pops the queue up to the first such
  /// record and pushes what it took back in its order; the main thread may see the queue short
  /// meanwhile.
  bool isIteratorSystem(const std::string& path);

  // ---- main writes, worker reads: the diagram's "UniqueDataStoreMsg" level (0 none,
  // 1 warning, 2 error), copied at construction and again by "updateDiagnostic"
  std::atomic<std::int32_t> uniqueDataStoreMsg{0};
  std::map<std::string, ParameterValue> modelParameterData;

  // ---- queues (main pushes, worker pops)
  EditQueue<double> deletedHandles;
  EditQueue<std::shared_ptr<bkEditBlock>> changedBlocks;
  EditQueue<Blkproperties> blkProperties;
  EditQueue<SubsysProperties> subsysProperties;
  EditQueue<SubsysNameChange> subsysNameChanges;
  EditQueue<MaskedBlock> maskedBlocks;
  EditQueue<StateRWOwnerPathChange> stateRWOwnerPathChanges;

  // ---- main
  bool auditorMode;
  bool initialScanDone = false;
  std::vector<bkGraph*> auditorGraphs;
  std::vector<bkGraph*> auditorGraphsDone;
  std::set<std::wstring> auditorPathsDone;
  std::vector<bkGraph*> visibleGraphs;
  std::vector<bkGraph*> visibleGraphsDone;
  std::set<std::wstring> visiblePathsDone;
  std::uint32_t variantSubsystemCount = 0;
  std::atomic<bool> tooManyRoutingBlocks{false};  // main writes, the Goto/From check reads
  std::uint32_t routingBlockCount = 0;
  std::map<double, std::wstring> handleToSubsystem;
  bool hasStateAccessBlocks = false;
  std::map<std::string, std::vector<std::shared_ptr<BlockParameterConstraint>>>
      parameterDataByBlockType;

 private:
  // True when the owner of `graph` was walked already in this scan (recorded in `pathsDone`)
  // or is a chart, whose inside is never walked.
  bool isOwnerTaken(const bkGraph* graph, std::set<std::wstring>& pathsDone);
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

}  // namespace bkedittimecheck
