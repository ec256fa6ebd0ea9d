#include "src/bkeditbd.h"

#include <algorithm>
#include <unordered_set>
#include <vector>

#include "host/model/bkgraph.h"
#include "src/constraints/blockparameterconstraint.h"
#include "src/editcodes.h"
#include "src/features.h"
#include "src/violationdatabase.h"

namespace bkedittimecheck {

namespace {

// Beyond this many Goto/From blocks the always-taken route would cost too much on the main
// thread; later ones are treated like any other block.
constexpr std::uint32_t kRoutingBlockLimit = 1000;

bool isEventListenerBlock(const BKBlock* block) {
  return block->getTypeCode() == BlockKind::kEventListener || typeNameOf(block) == "EventListener";
}

bool contains(const std::wstring& text, const std::wstring& part) {
  return text.find(part) != std::wstring::npos;  // an empty part is contained
}

std::wstring pathOf(const BKBlock* block) { return toWide(block->getFullPath(false)); }

}  // namespace

bkEditBD::bkEditBD(std::wstring name, bool auditorMode)
    : name(std::move(name)), auditorMode(auditorMode) {}

// ---- main thread: the blocks of host batches

BlockNoted bkEditBD::noteChangedBlock(BKBlock* block, int kind) {
  BlockNoted noted;
  const int code = block->getTypeCode();
  if (isEventListenerBlock(block)) noteEventListener(block);
  if (code == BlockKind::kSubSystem) {
    if (isVariantSubsystem(block)) {
      variantSubsystemCount += 1;
      noted.variantSubsystem = true;
    }
    noteSubsystemRename(block);
  }
  if (hasStateAccessBlocks && BlockKind::isStateOwner(code)) {
    stateRWOwnerPathChanges.push(StateRWOwnerPathChange{block->getBlockId(), pathOf(block), true});
  }
  if (block->isCommented()) {
    noted.commented = true;
    return noted;
  }
  if (BlockKind::isStateAccessor(code)) hasStateAccessBlocks = true;
  noteBlock(block, kind);
  return noted;
}

BlockNoted bkEditBD::noteDeletedBlock(double handle, BKBlock* block) {
  BlockNoted noted;
  if (!block) {
    handleToSubsystem.erase(handle);
    queueDeletion(handle);
    noted.deleted = true;
    return noted;
  }
  // The block survives as an undo object: its facts are still there to be withdrawn.
  const int code = block->getTypeCode();
  if (typeNameOf(block) == "EventListener") dropEventListener(handle);
  if (BlockKind::isStateOwner(code) && hasStateAccessBlocks) {
    stateRWOwnerPathChanges.push(StateRWOwnerPathChange{block->getBlockId(), pathOf(block), false});
  } else if (code == BlockKind::kEventListener) {
    dropEventListener(handle);
  } else if (code == BlockKind::kSubSystem) {
    if (isVariantSubsystem(block)) {
      // A delete whose block is already gone never decrements: the count stays up until the
      // engine is replaced.
      variantSubsystemCount -= 1;
      noted.variantSubsystem = true;
    }
    handleToSubsystem.erase(handle);
  }
  if (block->isCommented() && code != BlockKind::kSubSystem) {
    noted.commented = true;
  } else {
    // A commented subsystem leaves the commented set with its deletion: noted as commented
    // again, it would comment whatever later stands at its path.
    if (block->isCommented()) noteCommentedSubsystem(block, false);
    queueDeletion(handle);
    noted.deleted = true;
  }
  return noted;
}

BlockNoted bkEditBD::noteRenamedBlock(BKBlock* block) {
  BlockNoted noted;
  // A listener's record names its system by path: a listener moved, or a subsystem above it
  // renamed, must name the system it stands in now.
  if (isEventListenerBlock(block) || block->getTypeCode() == BlockKind::kSubSystem) {
    compactSubsysProperties();
  }
  if (block->getTypeCode() == BlockKind::kSubSystem) {
    noteSubsystemRename(block);
    noted.variantSubsystem = isVariantSubsystem(block);
  }
  if (block->isCommented()) {
    noted.commented = true;
  } else if (!noteBlock(block, EditTimeEvent::kNone)) {
    noted.deleted = dropIfInChart(block);
  }
  return noted;
}

bool bkEditBD::dropIfInChart(BKBlock* block) {
  // A kept block moved into a chart is no longer taken: its last snapshot would otherwise stay in
  // the block map for good, under its old path.
  // A block with no graph (one deleted, kept for undo) is not in a chart: deleting a commented
  // block takes nothing away.
  const bool inChart = block->getGraph() && !graphOwnerIsNotChart(block);
  if (!BlockKind::isKeptAcrossPasses(block->getTypeCode()) || !inChart) return false;
  queueDeletion(block->getHandle());
  return true;
}

bool bkEditBD::noteCommentChange(BKBlock* block) {
  const int code = block->getTypeCode();
  const bool listener = isEventListenerBlock(block);
  if (listener) {
    // A commented listener makes its system iterate no more, as the whole-diagram walk, which
    // passes commented blocks over, would find.
    dropEventListener(block->getHandle());
    if (!block->isCommented()) noteEventListener(block);
  }
  if (!block->isCommented()) {
    if (code == BlockKind::kSubSystem) noteCommentedSubsystem(block, false);
  } else if (code == BlockKind::kSubSystem) {
    noteCommentedSubsystem(block, true);
  } else if (!listener && !BlockKind::isDataStoreOrRouting(code)) {
    return false;
  }
  // Moved into a chart while commented, it leaves the map when its comment changes.
  if (!noteBlock(block, EditTimeEvent::kNone)) dropIfInChart(block);
  return true;
}

bool bkEditBD::isRoutingBlock(BKBlock* block) {
  const int code = block->getTypeCode();
  if (BlockKind::isStateAccessor(code)) hasStateAccessBlocks = true;
  if (BlockKind::isGotoFrom(code)) {
    routingBlockCount += 1;
    if (routingBlockCount > kRoutingBlockLimit) {
      tooManyRoutingBlocks = true;
      return false;
    }
  }
  const bool routingCode = BlockKind::isKeptAcrossPasses(code);
  if (routingCode && graphOwnerIsNotChart(block)) return true;
  if (featureOn(BKFEAT_BlockaraEditTimeChecksForBlockaraBasedStates)) {
    if (isBlockaraStatePort(block)) return true;
    if (isChartBasedSubsystem(block)) return true;
  }
  return false;
}

bool bkEditBD::noteBlock(BKBlock* block, int kind) {
  if (isRoutingBlock(block)) {
    queueSnapshot(std::make_shared<bkEditBlock>(block, auditorMode));
    return true;
  }
  // An added block that nothing else needs waits for its graph to be scanned.
  if (kind == EditTimeEvent::kBlocksAdded) return false;
  if (!featureOn(BKFEAT_BlockParamEditTimeCheckOnCanvas) && !auditorMode) return false;
  bkGraph* graph = block->getGraph();
  if (!isUsableGraph(graph) || onView.count(graph) == 0) return false;
  auto snapshot = std::make_shared<bkEditBlock>(block, auditorMode);
  if (auditorMode && featureOn(BKFEAT_BlockConstraintCheckAuthoring)) {
    const auto found = parameterDataByBlockType.find(typeNameOf(block));
    if (found != parameterDataByBlockType.end()) {
      snapshot->captureConstraintParameters(block, found->second);
    }
  }
  queueSnapshot(std::move(snapshot));
  return true;
}

std::int32_t bkEditBD::maskKindOf(BKBlock* block) {
  const BKMask* mask = block->getMask();
  if (!mask) return MaskKind::kNone;
  if (!mask->initialization.empty()) return MaskKind::kWithInitialization;
  return mask->parameterCount > 0 ? MaskKind::kWithParameters : MaskKind::kWithoutParameters;
}

void bkEditBD::noteSubsystemRename(BKBlock* block) {
  const std::wstring path = pathOf(block);
  if (auditorMode) maskedBlocks.push(MaskedBlock{path, maskKindOf(block)});
  const double handle = block->getHandle();
  auto it = handleToSubsystem.find(handle);
  if (it == handleToSubsystem.end()) {
    if (path.find(name) != std::wstring::npos) handleToSubsystem.emplace(handle, path);
    return;
  }
  subsysNameChanges.push(SubsysNameChange{it->second, path});
  ++renamesQueued;
  it->second = path;
}

void bkEditBD::noteEventListener(BKBlock* block) {
  subsysProperties.push(SubsysProperties{pathOf(block), block->getHandle(),
                                         block->getTypeCode() == BlockKind::kEventListener});
}

void bkEditBD::noteCommentedSubsystem(BKBlock* block, bool isAdded) {
  blkProperties.push(Blkproperties{L"", pathOf(block) + L"/", block->getHandle(), isAdded});
}

void bkEditBD::dropEventListener(double handle) {
  dropSubsysProperties(handle);
  compactSubsysProperties();
}

void bkEditBD::dropSubsysProperties(double handle) {
  // The worker may pop concurrently; a record it takes in between is simply not seen here.
  std::vector<SubsysProperties> kept;
  SubsysProperties record;
  while (subsysProperties.try_pop(record)) {
    if (record.handle != handle) kept.push_back(std::move(record));
  }
  for (auto& r : kept) subsysProperties.push(std::move(r));
}

void bkEditBD::compactSubsysProperties() {
  std::vector<SubsysProperties> kept;
  SubsysProperties record;
  while (subsysProperties.try_pop(record)) {
    BKBlock* block = handle2Block(record.handle);
    if (!block || !isEventListenerBlock(block) || block->isCommented()) continue;
    record.path = pathOf(block);
    kept.push_back(std::move(record));
  }
  for (auto& r : kept) subsysProperties.push(std::move(r));
}

void bkEditBD::requeueMasks() {
  for (const auto& [handle, path] : handleToSubsystem) {
    if (BKBlock* block = handle2Block(handle))
      maskedBlocks.push(MaskedBlock{path, maskKindOf(block)});
  }
}

// ---- main thread: the scans

void bkEditBD::setWantedGraphs(const std::vector<bkGraph*>& graphs) {
  if (graphs == visibleGraphs.wantedGraphs() && graphs == auditorGraphs.wantedGraphs()) return;
  auditorGraphs.setWanted(graphs);
  visibleGraphs.setWanted(graphs);
  onView = std::unordered_set<const bkGraph*>(graphs.begin(), graphs.end());
}

void bkEditBD::scanDiagramOnce(bkGraph* root) {
  if (initialScanDone) return;
  GraphicalBlockIterator walk(root);
  while (BKBlock* block = walk.advance()) {
    const int code = block->getTypeCode();
    if (isVariantSubsystem(block)) variantSubsystemCount += 1;
    if (code == BlockKind::kSubSystem) noteSubsystemRename(block);
    if (!block->isCommented()) {
      if (isRoutingBlock(block)) {
        queueSnapshot(std::make_shared<bkEditBlock>(block, auditorMode));
      }
      if (isEventListenerBlock(block)) noteEventListener(block);
    } else if (code == BlockKind::kSubSystem) {
      noteCommentedSubsystem(block, true);
    }
  }
  initialScanDone = true;
}

bool bkEditBD::hasAuditorGraphsToScan() const {
  return auditorGraphs.hasMore() && auditorMode;
}

bool bkEditBD::hasVisibleGraphsToScan() const {
  return visibleGraphs.hasMore();
}

bool bkEditBD::isOwnerTaken(const bkGraph* graph, std::set<std::wstring>& pathsDone) {
  const BKBlock* owner = graph->getOwner();
  if (!owner) {
    pathsDone.insert(name);
    return false;
  }
  if (owner->IsChartelleBased()) return true;
  return !pathsDone.insert(pathOf(owner)).second;
}

void bkEditBD::scanNextAuditorGraph() {
  bkGraph* graph = auditorGraphs.takeNext();
  if (!graph) return;
  if (!isUsableGraph(graph) || isOwnerTaken(graph, auditorPathsDone)) return;
  for (BKBlock* block : bkgg::graphicalBlocksOf(graph, 1)) {
    const int code = block->getTypeCode();
    if (code == BlockKind::kSubSystem) noteSubsystemRename(block);
    if (!block->isCommented()) {
      if (isEventListenerBlock(block)) noteEventListener(block);
      noteBlock(block, EditTimeEvent::kNone);
    } else if (code == BlockKind::kSubSystem) {
      noteCommentedSubsystem(block, true);
    }
  }
}

void bkEditBD::scanNextVisibleGraph() {
  bkGraph* graph = visibleGraphs.takeNext();
  if (!graph) return;
  if (!isUsableGraph(graph) || isOwnerTaken(graph, visiblePathsDone)) return;
  // A graph on view gets every block checked; the snapshot carries the comment state.
  for (BKBlock* block : bkgg::graphicalBlocksOf(graph, 1)) {
    queueSnapshot(std::make_shared<bkEditBlock>(block, auditorMode));
  }
}

void bkEditBD::restartVisibleScan() {
  visibleGraphs.forget();
  visiblePathsDone.clear();
  scanNextVisibleGraph();
}

void bkEditBD::restartAuditorScan(bool auditorModeNow) {
  forgetAuditorScan();
  auditorMode = auditorModeNow;
  scanNextAuditorGraph();
}

void bkEditBD::forgetAuditorScan() {
  auditorGraphs.forget();
  auditorPathsDone.clear();
}

// ---- worker: folding the queues into the block map and the other worker-side maps. Only the
// worker runs any of this, first in its pass, so nothing else writes the maps meanwhile.

bool bkEditBD::isOutsideScope(const bkEditBlock& block, std::int32_t skipLinkedBlocks,
                              std::int32_t lookUnderMasks) const {
  if (lookUnderMasks != LookUnderMasks::kAll) {
    if (maskIndexStale) {
      maskIndex.rebuild(maskKinds);
      maskIndexStale = false;
    }
    if (maskIndex.isUnderExcludingMask(block.getFullPath(), lookUnderMasks)) return true;
  }
  return skipLinkedBlocks == 1 && block.getIsLinked();
}

void bkEditBD::queueDeletion(double handle) {
  deletedHandles.push(handle);
  ++deletionsQueued;
}

void bkEditBD::queueSnapshot(std::shared_ptr<bkEditBlock> snapshot) {
  changedBlocks.push(QueuedSnapshot{std::move(snapshot), deletionsQueued, renamesQueued});
}

void bkEditBD::processDeletions(ViolationDatabase* violations) {
  if (!violations) return;  // the queue stays as it is
  double handle = 0;
  while (deletedHandles.try_pop(handle)) {
    blocks.erase(handle);
    violations->removeAll(handle);
    deletedAt[handle] = ++deletionsTaken;
  }
}

void bkEditBD::processChanges(ViolationDatabase* violations) {
  Blkproperties properties;
  while (blkProperties.try_pop(properties)) {
    auto entry = subsysMap.find(properties.handle);
    if (properties.isAdded) {
      if (entry == subsysMap.end()) {
        subsysMap.emplace(properties.handle, properties);
        if (violations) syncCommentedSubsystems(*violations, false);
      } else if (entry->second.pathWithSlash != properties.pathWithSlash) {
        entry->second.oldPath = entry->second.pathWithSlash;
        entry->second.pathWithSlash = properties.pathWithSlash;
        if (violations) syncCommentedSubsystems(*violations, true);
      }
      continue;
    }
    bool stillCovered = false;
    for (const auto& [handle, other] : subsysMap) {
      if (handle == properties.handle) continue;
      if (other.pathWithSlash.empty() || contains(properties.pathWithSlash, other.pathWithSlash)) {
        stillCovered = true;
      }
    }
    if (entry == subsysMap.end()) continue;
    if (stillCovered) {
      subsysMap.erase(entry);  // its blocks stay commented under the covering subsystem
    } else {
      entry->second.isAdded = false;
      if (violations) syncCommentedSubsystems(*violations, false);
    }
  }

  std::vector<SubsysNameChange> renames;  // this drain's, in order
  SubsysNameChange nameChange;
  while (subsysNameChanges.try_pop(nameChange)) {
    renameBlocks(nameChange.oldPath, nameChange.newPath);
    renames.push_back(std::move(nameChange));
  }
  renamesTaken += renames.size();

  MaskedBlock masked;
  while (maskedBlocks.try_pop(masked)) {
    if (contains(masked.path, name)) {
      maskKinds[masked.path] = masked.maskKind;
      maskIndexStale = true;
    }
  }

  StateRWOwnerPathChange ownerChange;
  while (stateRWOwnerPathChanges.try_pop(ownerChange)) {
    for (auto& [handle, block] : blocks) {
      if (!BlockKind::isStateAccessor(block->getBlockKind()) || !block->getDefaultEditBlock())
        continue;
      if (block->getDefaultEditBlock()->ownerBlockId != ownerChange.blockId) continue;
      block->getDefaultEditBlock()->stringParam0 =
          ownerChange.isAdded ? toNarrow(ownerChange.path) : "NoOwner";
    }
  }

  QueuedSnapshot queued;
  while (changedBlocks.try_pop(queued)) {
    std::shared_ptr<bkEditBlock> changed = std::move(queued.snapshot);
    if (!changed) continue;
    // A snapshot queued before its block's deletion was taken would bring a deleted block back
    // for good (routing blocks stay across passes); one queued after it (an undo) is the block.
    const auto deleted = deletedAt.find(changed->getBlockHandle());
    if (deleted != deletedAt.end() && queued.deletionsBefore < deleted->second) continue;
    // A snapshot pushed after this pass drained the renames shows renames this pass has not
    // taken: they are taken now, or the next pass would apply them to it a second time.
    while (renamesTaken < queued.renamesBefore && subsysNameChanges.try_pop(nameChange)) {
      renameBlocks(nameChange.oldPath, nameChange.newPath);
      renames.push_back(std::move(nameChange));
      ++renamesTaken;
    }
    // Likewise a snapshot queued before a subsystem above it was renamed takes the new path.
    for (std::size_t i = 0; i < renames.size(); ++i) {
      if (renamesTaken - renames.size() + i < queued.renamesBefore) continue;
      changed->setFullPath(renamedPath(changed->getFullPath(), renames[i].oldPath, renames[i].newPath));
    }
    for (const auto& [handle, subsystem] : subsysMap) {
      if (contains(changed->getFullPath(), subsystem.pathWithSlash)) {
        changed->setIsCommented(true);
        break;
      }
    }
    if (changed->getIsLinked()) {
      // A link that the host recreated under a new handle replaces its forerunner by path.
      for (auto it = blocks.begin(); it != blocks.end(); ++it) {
        if (it->second->getFullPath() == changed->getFullPath()) {
          blocks.erase(it);
          break;
        }
      }
    } else {
      blocks.erase(changed->getBlockHandle());
    }
    arrivedHandles.push_back(changed->getBlockHandle());
    arrivedHandlesSorted = false;
    blocks[changed->getBlockHandle()] = changed;
  }
  // Every snapshot queued before the deletions taken so far has now been seen.
  deletedAt.clear();
}

std::wstring bkEditBD::renamedPath(std::wstring path, const std::wstring& oldPath,
                                  const std::wstring& newPath) {
  // The replacement counts from index 0, not from where the match lay, on purpose.
  if (oldPath == newPath || !contains(path, oldPath)) return path;
  return path.replace(0, oldPath.size(), newPath);
}

void bkEditBD::renameBlocks(const std::wstring& oldPath, const std::wstring& newPath) {
  if (oldPath == newPath) return;
  for (auto& [handle, block] : blocks) {
    block->setFullPath(renamedPath(block->getFullPath(), oldPath, newPath));
  }
}

void bkEditBD::syncCommentedSubsystems(ViolationDatabase& violations, bool renamed) {
  if (subsysMap.empty()) return;
  for (auto it = subsysMap.begin(); it != subsysMap.end();) {
    const Blkproperties& entry = it->second;
    if (renamed) {
      violations.markCommentedUnder(entry.oldPath, entry.isAdded);
      violations.renamePaths(entry.oldPath, entry.pathWithSlash);
    } else {
      violations.markCommentedUnder(entry.pathWithSlash, entry.isAdded);
      for (auto& [handle, block] : blocks) {
        if (contains(block->getFullPath(), entry.pathWithSlash))
          block->setIsCommented(entry.isAdded);
      }
    }
    it = entry.isAdded ? std::next(it) : subsysMap.erase(it);
  }
}

bool bkEditBD::fewArrived() const {
  if (!arrivedHandlesSorted) {
    std::sort(arrivedHandles.begin(), arrivedHandles.end());
    arrivedHandles.erase(std::unique(arrivedHandles.begin(), arrivedHandles.end()),
                         arrivedHandles.end());
    arrivedHandlesSorted = true;
  }
  // A look-up costs about one step per level of the map; the initial scan's passes bring
  // nearly every block of the map.
  std::size_t depth = 1;
  while ((std::size_t{1} << depth) < blocks.size()) ++depth;
  return arrivedHandles.size() * depth < blocks.size();
}

void bkEditBD::pruneAfterPass() {
  // Cross-block checks need these between passes; everything else lives for one pass.
  const auto keep = [](bkEditBlock& block) {
    if (!BlockKind::isKeptAcrossPasses(block.getBlockKind()) && !block.hasChartData()) return false;
    block.dropRaEditBlock();
    return true;
  };
  if (fewArrived()) {
    for (double handle : arrivedHandles) {
      const auto entry = blocks.find(handle);
      if (entry != blocks.end() && !keep(*entry->second)) blocks.erase(entry);
    }
  } else {
    std::erase_if(blocks, [&](auto& entry) { return !keep(*entry.second); });
  }
  // The room of a scan's pass (every block of a system) is not kept between passes.
  if (arrivedHandles.capacity() > 1024) {
    std::vector<double>().swap(arrivedHandles);
  } else {
    arrivedHandles.clear();
  }
  arrivedHandlesSorted = true;
}

}  // namespace bkedittimecheck
