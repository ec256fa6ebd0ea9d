// The two graph scans of bkEditBD: one system level at a time, for the rule-auditor checks and
// for the interactive checks.
#include <unordered_set>

#include "host/model/bkgraph.h"
#include "src/bkeditbd.h"

namespace bkedittimecheck {

namespace {

// The first wanted graph not in `done`, or null when all are.
bkGraph* nextUnscanned(const std::vector<bkGraph*>& wanted, const std::vector<bkGraph*>& done) {
  // Linear in the lists, so that a diagram with thousands of graphs on view stays cheap a slice.
  const std::unordered_set<const bkGraph*> seen(done.begin(), done.end());
  for (bkGraph* graph : wanted) {
    if (seen.count(graph) == 0) return graph;
  }
  return nullptr;
}

bool isEventListenerBlock(const BKBlock* block) {
  return block->getTypeCode() == 62 || typeNameOf(block) == "EventListener";
}

}  // namespace

bool bkEditBD::noteRoutingBlock(BKBlock* block) {
  if (!isRoutingBlock(block)) return false;
  changedBlocks.push(std::make_shared<bkEditBlock>(block, auditorMode));
  return true;
}

bool bkEditBD::hasAuditorGraphsToScan() const {
  return auditorGraphs.size() != auditorGraphsDone.size() && auditorMode;
}

bool bkEditBD::hasVisibleGraphsToScan() const {
  return visibleGraphs.size() != visibleGraphsDone.size();
}

bool bkEditBD::isOwnerTaken(const bkGraph* graph, std::set<std::wstring>& pathsDone) {
  const BKBlock* owner = graph->getOwner();
  if (!owner) {
    pathsDone.insert(name);
    return false;
  }
  if (owner->IsChartelleBased()) return true;
  return !pathsDone.insert(toWide(owner->getFullPath(false))).second;
}

void bkEditBD::scanNextAuditorGraph() {
  bkGraph* graph = nextUnscanned(auditorGraphs, auditorGraphsDone);
  if (!graph) return;
  auditorGraphsDone.push_back(graph);
  if (!isUsableGraph(graph) || isOwnerTaken(graph, auditorPathsDone)) return;
  for (BKBlock* block : bkgg::graphicalBlocksOf(graph, 1)) {
    const int code = block->getTypeCode();
    if (code == 131) noteSubsystemRename(block);
    if (!block->isCommented()) {
      if (isEventListenerBlock(block)) {
        subsysProperties.push(
            SubsysProperties{toWide(block->getFullPath(false)), block->getHandle(), code == 62});
      }
      noteBlock(block, 0);
    } else if (code == 131) {
      blkProperties.push(
          Blkproperties{L"", toWide(block->getFullPath(false)) + L"/", block->getHandle(), true});
    }
  }
}

void bkEditBD::scanNextVisibleGraph() {
  bkGraph* graph = nextUnscanned(visibleGraphs, visibleGraphsDone);
  if (!graph) return;
  visibleGraphsDone.push_back(graph);
  if (!isUsableGraph(graph) || isOwnerTaken(graph, visiblePathsDone)) return;
  // A graph on view gets every block checked; the snapshot carries the comment state.
  for (BKBlock* block : bkgg::graphicalBlocksOf(graph, 1)) {
    changedBlocks.push(std::make_shared<bkEditBlock>(block, auditorMode));
  }
}

}  // namespace bkedittimecheck
