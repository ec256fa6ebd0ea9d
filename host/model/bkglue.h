#pragma once

#include <string>

#include "host/model/bkblock.h"

class bkGraph;
class BKRootBD;

/// Block lookups for the styling and engine paths. Main thread only.
class BKGlue {
 public:
  /// The live block with `handle`, or null; the same contract as `BKBlock::Handle2Block`.
  static BKBlock* getBlockFromHandle(double handle);
  /// The graph that contains `block`; null for a null or deleted block.
  static bkGraph* getBlockGraph(const BKBlock* block);
  /// True for a block that is a Chartelle chart (type "Chart"); false for null.
  static bool isChartelleBlock(const BKBlock* block);
};

/// Platform information of a block. Main thread only.
class BKRootBlockPlatformInfo {
 public:
  /// True when the block is a resolved library link.
  static bool getGrBlockIsLinked(const BKBlock* block);
  /// The library block path of a link (`element` is ignored; -1 in practice); empty otherwise.
  static bksvString getReferenceBlock(const BKBlock* block, int element);
  /// The comment state 0, 1 or 2.
  static int getCommentedState(const BKBlock* block);
};

/// True when the block is an implicit library link. Main thread.
bool BlockIsImplicitLink(const BKBlock* block);

/// SID lookups. Main thread only.
class SIDServiceBK {
 public:
  /// The live block of `diagram` with SID `sid` ("12", or "<diagram name>:12"); null when none
  /// or when `sid` is not a SID.
  static BKBlock* findBlock(const BKRootBD* diagram, const std::string& sid);
};
