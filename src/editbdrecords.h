#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace bkedittimecheck {

class bkEditBlock;

/// A snapshot on its way to the worker, with the number of deletions and of subsystem renames
/// queued before it: the worker passes a snapshot by that is older than its block's deletion,
/// and gives it the paths of the renames that came after it.
struct QueuedSnapshot {
  std::shared_ptr<bkEditBlock> snapshot;
  std::uint64_t deletionsBefore = 0;
  std::uint64_t renamesBefore = 0;
};

/// A subsystem that enters (`isAdded` true) or leaves or is uncommented (false); pushed on the
/// main thread, folded into `bkEditBD::subsysMap` on the worker.
struct Blkproperties {
  std::wstring oldPath;        // empty when pushed
  std::wstring pathWithSlash;  // the block's full path with the separator added
  double handle = 0;
  bool isAdded = false;
};

/// An event listener block (type code 62) or the subsystem that holds one.
struct SubsysProperties {
  std::wstring path;
  double handle = 0;
  bool isEventListener = false;
};

/// A subsystem's path before and after a rename or a move; pushed even when both are equal.
struct SubsysNameChange {
  std::wstring oldPath;
  std::wstring newPath;
};

/// A subsystem's mask kind: 1 no mask, 2 a mask with parameters, 3 one without, 4 a mask whose
/// initialization is set.
struct MaskedBlock {
  std::wstring path;
  std::int32_t maskKind = 1;
};

/// A block with state that a chart state accessor may own, added or removed.
struct StateRWOwnerPathChange {
  std::int32_t blockId = 0;
  std::wstring path;
  bool isAdded = false;
};

}  // namespace bkedittimecheck
