#pragma once

#include <string>

#include "host/model/bkblock.h"

class BKRootBD;

/// Parameter reads by name, as the host offers them. Main thread only.
namespace bkobject {
namespace block {
/// The text of dialog parameter `name` of `block`. Throws bkHostException naming the block and
/// parameter for a null block or an unknown parameter.
std::string getParamAsStr(const BKBlock* block, const std::string& name);
/// The value of dialog parameter `name`, text or records. Throws as `getParamAsStr`.
BlockParamValue getParamValue(const BKBlock* block, const std::string& name);
}  // namespace block
namespace blockDiagram {
/// The text of parameter `name` of the diagram's active configuration set. Throws
/// NoActiveConfigSet with no active set and bkHostException for an unknown or non-text
/// parameter.
std::string getParamAsStr(BKRootBD* diagram, const std::string& name);
/// The value of parameter `name` of the active set. Throws as `getParamAsStr` (records allowed).
BlockParamValue getParamValue(BKRootBD* diagram, const std::string& name);
}  // namespace blockDiagram
}  // namespace bkobject

/// The support value of capability `capability` (8, 9, ...) of the block's type; 1 when the
/// library gives none, 0 for a null block. Main thread.
int bcstCapSupports(const BKBlock* block, int capability);
/// The comma-separated footnote tags of kind `kind` ("codegen", "production") of the block's
/// type; empty when none. Main thread.
std::string bcstGetFootNotes(const BKBlock* block, const std::string& kind);

/// Goto block queries. Main thread.
class GotoBlk {
 public:
  /// The tag visibility of a Goto block: 0 "local", 1 "scoped", 2 "global", -1 otherwise.
  static int sGetGotoBlockTagVisibilityFromBlockParam(const BKBlock* block);
};

/// From block queries. Main thread.
class FromBlk {
 public:
  /// The "GotoTag" of a From block; empty when it has none.
  static std::string GetTag(const BKBlock* block);
};

/// Goto tag visibility block queries. Main thread.
class GotoTagVBlk {
 public:
  /// The "GotoTag" of a tag visibility block; empty when it has none.
  static std::string sGetGotoTagVisibilityBlockTagNameParameter(const BKBlock* block);
};

namespace BlockAccess {
/// Path helpers of state accessor blocks. Main thread.
class AccessUtil {
 public:
  /// Resolves `relative` ("../x", "../../y/z") against the system that contains `block`: each
  /// "../" climbs one level from that system. A path that climbs above the diagram root is
  /// returned unchanged.
  static bksvString convertRelativePathToFullPath(const BKBlock* block, const bksvString& relative);
};

/// The owner relation of state accessor blocks (type codes 123 and 125). Main thread.
class AccessorInterface {
 public:
  /// The handle of the block that the accessor's "StateOwnerBlock" names (relative paths
  /// resolved); 0 when it names no live block or `block` is no accessor.
  static double getResourceOwnerBlockHandle(const BKBlock* block);
};
}  // namespace BlockAccess
