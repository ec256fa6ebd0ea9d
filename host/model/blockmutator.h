#pragma once

// Internal to the model library: the one place that changes blocks, graphs and the diagram's
// indices, so that the path and SID indices cannot drift from the tree.

#include <cstddef>
#include <memory>
#include <string>

#include "host/model/bkblock.h"
#include "host/model/bkgraph.h"
#include "host/model/bkrootbd.h"

/// A new handle from the process-wide sequence shared by blocks and diagrams; never reused.
double issueHandle();

/// Text of a number as the model stores it: integers without a fraction, others shortest.
std::string formatNumber(double value);

class BlockMutator {
 public:
  /// A detached block of `type` (a `SubsystemBlock` when the type has a system).
  static std::unique_ptr<BKBlock> makeBlock(const BlockTypeInfo& type, const bksvString& name);

  /// Inserts `block` into `graph` of `diagram` at `position` (clamped to the end), gives it (and
  /// blocks inside it) a SID if it has none, and indexes it and its contents.
  static BKBlock* insert(BKRootBD& diagram, bkGraph& graph, std::unique_ptr<BKBlock> block,
                         std::size_t position);
  /// Removes `block` from its graph and the indices (with its contents) and hands it over; its
  /// cached paths stay as they were. Returns the block and its former position.
  static std::pair<std::unique_ptr<BKBlock>, std::size_t> detach(BKRootBD& diagram, BKBlock* block);

  /// Renames `block` and re-indexes it and its contents.
  static void rename(BKRootBD& diagram, BKBlock* block, const bksvString& newName);
  /// Recomputes every cached path and rebuilds the path index (after a diagram rename).
  static void reindexAll(BKRootBD& diagram);

  /// Throws std::invalid_argument naming the block when `name` is not a property or parameter of
  /// `block` or `value` does not fit it.
  static void validate(const BKBlock& block, const std::string& name, const BlockValue& value);
  /// Validates, then sets.
  static void set(BKBlock& block, const std::string& name, const BlockValue& value);

  /// Gives a detached block the path it is about to get, so that errors name it.
  static void setPendingPath(BKBlock& block, const bksvString& parentPath) {
    block.cachedPath = parentPath + u'/' + escapePathName(block.name);
  }
  static void setCommentState(BKBlock& block, int state) { block.commentState = state; }
  static void setSID(BKBlock& block, int sid) { block.sid = sid; }

 private:
  static void indexTree(BKRootBD& diagram, BKBlock* block, const bksvString& parentPath);
  static void unindexTree(BKRootBD& diagram, BKBlock* block);
  static void setGraphDiagram(BKBlock* block, BKRootBD* diagram);
};
