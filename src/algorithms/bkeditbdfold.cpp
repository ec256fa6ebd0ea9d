// The worker-side half of bkEditBD: folding the queues that the main thread fills into the block
// map and the other worker-side maps, and the scope rule that the checks ask of it. Only the
// worker thread runs any of this, first in its pass, so nothing else writes the maps meanwhile.
#include <memory>
#include <string>

#include "src/bkeditbd.h"
#include "src/constraints/bkeditblock.h"
#include "src/edittimecontroller.h"
#include "src/hostinterface.h"
#include "src/violationdatabase.h"

namespace bkedittimecheck {
namespace {

bool contains(const std::wstring& text, const std::wstring& part) {
  return text.find(part) != std::wstring::npos;  // an empty part is contained
}

}  // namespace

bool bkEditBD::isOutsideScope(const bkEditBlock& block, std::int32_t skipLinkedBlocks,
                              std::int32_t lookUnderMasks) const {
  if (lookUnderMasks != 0) {
    const std::wstring& path = block.getFullPath();
    for (const auto& [maskPath, kind] : maskKinds) {
      // Under the entry: the entry occurs, differs, and a separator follows its length.
      const bool under = contains(path, maskPath) && path != maskPath &&
                         path.size() > maskPath.size() && path[maskPath.size()] == L'/';
      if (!under) continue;
      if (lookUnderMasks == 1 && kind != 1) return true;
      if (lookUnderMasks == 2 && (kind == 3 || kind == 4)) return true;
      if (lookUnderMasks == 3 && kind == 4) return true;
    }
  }
  return skipLinkedBlocks == 1 && block.getIsLinked();
}

void bkEditBD::processDeletions() {
  const std::shared_ptr<ViolationDatabase> database =
      EditTimeController::instance().findViolationDatabase(name);
  if (!database) return;  // the queue stays as it is
  double handle = 0;
  while (deletedHandles.try_pop(handle)) {
    blocks.erase(handle);
    database->removeAll(handle);
  }
}

void bkEditBD::processChanges() {
  Blkproperties properties;
  while (blkProperties.try_pop(properties)) {
    auto entry = subsysMap.find(properties.handle);
    if (properties.isAdded) {
      if (entry == subsysMap.end()) {
        subsysMap.emplace(properties.handle, properties);
        syncCommentedSubsystems(false);
      } else if (entry->second.pathWithSlash != properties.pathWithSlash) {
        entry->second.oldPath = entry->second.pathWithSlash;
        entry->second.pathWithSlash = properties.pathWithSlash;
        syncCommentedSubsystems(true);
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
      syncCommentedSubsystems(false);
    }
  }

  SubsysNameChange nameChange;
  while (subsysNameChanges.try_pop(nameChange))
    renameBlocks(nameChange.oldPath, nameChange.newPath);

  MaskedBlock masked;
  while (maskedBlocks.try_pop(masked)) {
    if (contains(masked.path, name)) maskKinds[masked.path] = masked.maskKind;
  }

  StateRWOwnerPathChange ownerChange;
  while (stateRWOwnerPathChanges.try_pop(ownerChange)) {
    for (auto& [handle, block] : blocks) {
      if ((block->getBlockKind() != 123 && block->getBlockKind() != 125) ||
          !block->getDefaultEditBlock())
        continue;
      if (block->getDefaultEditBlock()->ownerBlockId != ownerChange.blockId) continue;
      block->getDefaultEditBlock()->stringParam0 =
          ownerChange.isAdded ? toNarrow(ownerChange.path) : "NoOwner";
    }
  }

  std::shared_ptr<bkEditBlock> changed;
  while (changedBlocks.try_pop(changed)) {
    if (!changed) continue;
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
    blocks[changed->getBlockHandle()] = changed;
  }
}

void bkEditBD::renameBlocks(const std::wstring& oldPath, const std::wstring& newPath) {
  if (oldPath == newPath) return;
  for (auto& [handle, block] : blocks) {
    // The replacement counts from index 0, not from where the match lay, on purpose.
    if (!contains(block->getFullPath(), oldPath)) continue;
    std::wstring path = block->getFullPath();
    block->setFullPath(path.replace(0, oldPath.size(), newPath));
  }
}

void bkEditBD::syncCommentedSubsystems(bool renamed) {
  const std::shared_ptr<ViolationDatabase> database =
      EditTimeController::instance().findViolationDatabase(name);
  if (!database || subsysMap.empty()) return;
  for (auto it = subsysMap.begin(); it != subsysMap.end();) {
    const Blkproperties& entry = it->second;
    if (renamed) {
      database->markCommentedUnder(entry.oldPath, entry.isAdded);
      database->renamePaths(entry.oldPath, entry.pathWithSlash);
    } else {
      database->markCommentedUnder(entry.pathWithSlash, entry.isAdded);
      for (auto& [handle, block] : blocks) {
        if (contains(block->getFullPath(), entry.pathWithSlash))
          block->setIsCommented(entry.isAdded);
      }
    }
    it = entry.isAdded ? std::next(it) : subsysMap.erase(it);
  }
}

}  // namespace bkedittimecheck
