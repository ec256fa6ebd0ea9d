#include "host/model/bkgraph.h"

#include "host/model/bkrootbd.h"

bkGraph::bkGraph(BKRootBD* diagram, BKBlock* owner) : diagram(diagram), owner(owner) {}

bkGraph::~bkGraph() {
  bkgg::noteStructureChange();
  // Contents go before the graph, innermost first, so that no block outlives its container.
  stateBits = BeingDestroyed;
  while (!blocks.empty()) blocks.pop_back();
}

BKRootBD* bkGraph::getBlockDiagram() const { return diagram; }

void bkGraph::setStateBits(unsigned bits) {
  stateBits = bits & (BeingBuilt | BeingDestroyed);
  bkgg::noteStructureChange();
}

bksvString bkGraph::getFullPath() const {
  if (owner) return owner->getFullPath(false);
  return diagram ? diagram->getName() : bksvString();
}

namespace bkgg {
namespace {
std::uint64_t& revision() {
  static std::uint64_t count = 0;
  return count;
}
}  // namespace

std::uint64_t structureRevision() { return revision(); }
void noteStructureChange() { ++revision(); }

BKBlockContainer graphicalBlocksOf(const bkGraph* graph, int) { return BKBlockContainer(graph); }
}  // namespace bkgg

GraphicalBlockIterator::GraphicalBlockIterator(const bkGraph* root) {
  if (root) stack.emplace_back(root, 0);
}

BKBlock* GraphicalBlockIterator::advance() {
  while (!stack.empty()) {
    auto& [graph, index] = stack.back();
    if (index >= graph->size()) {
      stack.pop_back();
      continue;
    }
    BKBlock* block = graph->blockAt(index++);
    if (bkGraph* inside = block->getSubGraph()) stack.emplace_back(inside, 0);
    return block;
  }
  return nullptr;
}
