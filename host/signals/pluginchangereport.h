#pragma once

#include <set>
#include <vector>

/// What one edit batch of a diagram changed, by block handle. The host raises one report per
/// batch with each batch signal (26 added, 27 changed, 28 deleted, 33 renamed or re-parented);
/// every signal of one batch carries the same report with all four containers.
///
/// A plain value: any thread may read a copy, but reports are made and raised on the main thread.
struct PluginChangeReport {
  /// Blocks that entered the diagram, in the order they were added (a subsystem before what it
  /// contains). A block added and deleted in the same batch is in no container.
  std::vector<double> added;
  /// Blocks whose dialog parameters or properties changed, in the order of their first change.
  /// Blocks added or deleted in the same batch are not repeated here.
  std::vector<double> changed;
  /// Blocks that left the diagram, each deleted block before the blocks it contained.
  std::vector<double> deleted;
  /// Blocks that were renamed or moved to another system (only the block edited, not what it
  /// contains), walked in ascending handle order.
  std::set<double> renamed;

  /// True when no container holds a handle.
  bool empty() const {
    return added.empty() && changed.empty() && deleted.empty() && renamed.empty();
  }
};
