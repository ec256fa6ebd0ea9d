#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "host/model/bkblock.h"

/// One system level of a diagram: the root system, or the system inside a subsystem or chart.
///
/// Thread contract: main thread only. A graph owns the blocks it contains.
class bkGraph {
 public:
  /// State bits: a graph with either bit set is being built or torn down.
  enum StateBit : unsigned { BeingBuilt = 0x1, BeingDestroyed = 0x2 };

  /// A graph of `diagram` inside `owner` (null for the root system).
  bkGraph(BKRootBD* diagram, BKBlock* owner);
  ~bkGraph();
  bkGraph(const bkGraph&) = delete;
  bkGraph& operator=(const bkGraph&) = delete;

  /// The owning diagram, or null for a graph inside a deleted block.
  BKRootBD* getBlockDiagram() const;
  /// The subsystem or chart the graph belongs to; null for the root system.
  BKBlock* getOwner() const { return owner; }
  /// The two state bits (`StateBit`).
  unsigned getStateBits() const { return stateBits; }
  /// Sets the state bits; the host sets them while it builds or tears a level down.
  void setStateBits(unsigned bits);
  /// True when neither state bit is set.
  bool isUsable() const { return stateBits == 0; }
  /// The path of the system: the diagram name for the root, else the owner's full path.
  bksvString getFullPath() const;

  /// The blocks directly inside, in insertion order.
  std::size_t size() const { return blocks.size(); }
  /// The block at `index` (< size()).
  BKBlock* blockAt(std::size_t index) const { return blocks[index].get(); }

 private:
  friend class BlockMutator;

  BKRootBD* diagram;  // null once the owner has been deleted
  BKBlock* owner;
  unsigned stateBits = 0;
  std::vector<std::unique_ptr<BKBlock>> blocks;
};

/// An iterator over the blocks directly inside one graph.
class BKBlockIterator {
 public:
  BKBlockIterator(const bkGraph* graph, std::size_t index) : graph(graph), index(index) {}
  BKBlock* operator*() const { return graph->blockAt(index); }
  BKBlockIterator& operator++() {
    ++index;
    return *this;
  }
  bool operator==(const BKBlockIterator& other) const { return index == other.index; }
  bool operator!=(const BKBlockIterator& other) const { return index != other.index; }

 private:
  const bkGraph* graph;
  std::size_t index;
};

/// The graphical blocks of one graph level, as a range. Invalidated by an edit of that level.
class BKBlockContainer {
 public:
  explicit BKBlockContainer(const bkGraph* graph) : graph(graph) {}
  BKBlockIterator begin() const { return {graph, 0}; }
  BKBlockIterator end() const { return {graph, graph ? graph->size() : 0}; }

 private:
  const bkGraph* graph;
};

namespace bkgg {
/// The blocks of `graph`'s own level (`depth` must be 1; other depths are treated as 1). A null
/// graph gives an empty range. Main thread.
BKBlockContainer graphicalBlocksOf(const bkGraph* graph, int depth);

/// Main thread. A count that moves whenever a block is made or destroyed, a block tree joins or
/// leaves a diagram, a block's mask type or library link changes, or a graph's state bits change
/// or it is torn down: what a caller derived about which graphs and blocks exist and how they are
/// linked holds while the count stays the same. A rename does not move it: graphs and blocks are
/// known by identity, not by path.
std::uint64_t structureRevision();
void noteStructureChange();
}  // namespace bkgg

/// Walks every block of a graph tree, depth first, a subsystem before its contents.
/// Main thread; invalidated by any edit of the tree.
class GraphicalBlockIterator {
 public:
  explicit GraphicalBlockIterator(const bkGraph* root);
  /// The next block, or null when the walk is done.
  BKBlock* advance();

 private:
  std::vector<std::pair<const bkGraph*, std::size_t>> stack;
};
