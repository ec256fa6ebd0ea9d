#include "src/bkeditbd.h"

#include <algorithm>
#include <unordered_set>
#include <vector>

#include "src/features.h"

namespace bkedittimecheck {

namespace {

// Beyond this many Goto/From blocks the always-taken route would cost too much on the main
// thread; later ones are treated like any other block.
constexpr std::uint32_t kRoutingBlockLimit = 1000;

// A hash set, since a diagram may show thousands of graphs and this runs at every slice.
void keepWanted(const std::vector<bkGraph*>& wanted, std::vector<bkGraph*>& done) {
  const std::unordered_set<const bkGraph*> keep(wanted.begin(), wanted.end());
  std::erase_if(done, [&](bkGraph* g) { return keep.count(g) == 0; });
}

}  // namespace

bkEditBD::bkEditBD(std::wstring name, bool auditorMode)
    : name(std::move(name)), auditorMode(auditorMode) {}

bool bkEditBD::isRoutingBlock(BKBlock* block) {
  const int code = block->getTypeCode();
  if (code == 123 || code == 125) hasStateAccessBlocks = true;
  if (code == 51 || code == 56 || code == 57) {
    routingBlockCount += 1;
    if (routingBlockCount > kRoutingBlockLimit) {
      tooManyRoutingBlocks = true;
      return false;
    }
  }
  const bool routingCode =
      code == 51 || code == 56 || code == 57 || code == 22 || code == 123 || code == 125;
  if (routingCode && graphOwnerIsNotChart(block)) return true;
  if (featureOn(BKFEAT_BlockaraEditTimeChecksForBlockaraBasedStates)) {
    if (isBlockaraStatePort(block)) return true;
    if (isChartBasedSubsystem(block)) return true;
  }
  return false;
}

bool bkEditBD::noteBlock(BKBlock* block, int kind) {
  if (isRoutingBlock(block)) {
    changedBlocks.push(std::make_shared<bkEditBlock>(block, auditorMode));
    return true;
  }
  // An added block that nothing else needs waits for its graph to be scanned.
  if (kind == 18) return false;
  if (!featureOn(BKFEAT_BlockParamEditTimeCheckOnCanvas) && !auditorMode) return false;
  bkGraph* graph = block->getGraph();
  bool onView = false;
  for (bkGraph* entry : visibleGraphs) {
    if (!isUsableGraph(entry)) continue;
    if (!isUsableGraph(graph)) return false;
    if (graph == entry) {
      onView = true;
      break;
    }
  }
  if (!onView) return false;
  // Constraint parameters are captured here once the constraint data exists for the diagram.
  changedBlocks.push(std::make_shared<bkEditBlock>(block, auditorMode));
  return true;
}

std::int32_t bkEditBD::maskKindOf(BKBlock* block) {
  const BKMask* mask = block->getMask();
  if (!mask) return 1;
  if (!mask->initialization.empty()) return 4;
  return mask->parameterCount > 0 ? 2 : 3;
}

void bkEditBD::noteSubsystemRename(BKBlock* block) {
  const std::wstring path = toWide(block->getFullPath(false));
  if (auditorMode) maskedBlocks.push(MaskedBlock{path, maskKindOf(block)});
  const double handle = block->getHandle();
  auto it = handleToSubsystem.find(handle);
  if (it == handleToSubsystem.end()) {
    if (path.find(name) != std::wstring::npos) handleToSubsystem.emplace(handle, path);
    return;
  }
  subsysNameChanges.push(SubsysNameChange{it->second, path});
  it->second = path;
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
    if (block && (block->getTypeCode() == 62 || typeNameOf(block) == "EventListener")) {
      kept.push_back(std::move(record));
    }
  }
  for (auto& r : kept) subsysProperties.push(std::move(r));
}

void bkEditBD::setWantedGraphs(const std::vector<bkGraph*>& graphs) {
  auditorGraphs = graphs;
  keepWanted(auditorGraphs, auditorGraphsDone);
  visibleGraphs = graphs;
  keepWanted(visibleGraphs, visibleGraphsDone);
}

}  // namespace bkedittimecheck
