#pragma once

#include "src/bkeditbd.h"

namespace bkedittimecheck {

/// White-box access to the fields of a `bkEditBD`, for tests and benchmarks that look at what
/// the engine queued or scanned.
struct bkEditBDProbe {
  explicit bkEditBDProbe(bkEditBD& data) : d(data) {}

  // Writes here pass the list of arrivals by: fine for snapshots without a rule-auditor part
  // that no prune sees; `replaceBlocks` lists what it puts in.
  auto& blocks() { return d.blocks; }
  bool fewArrived() const { return d.fewArrived(); }
  // Puts `snapshots` in place of the block map, all of them as if they had just arrived.
  void replaceBlocks(std::map<double, std::shared_ptr<bkEditBlock>> snapshots) {
    d.blocks = std::move(snapshots);
    d.arrivedHandles.clear();
    for (const auto& [handle, block] : d.blocks) d.arrivedHandles.push_back(handle);
  }
  auto& changedBlocks() { return d.changedBlocks; }
  auto& deletedHandles() { return d.deletedHandles; }
  auto& blkProperties() { return d.blkProperties; }
  auto& subsysProperties() { return d.subsysProperties; }
  auto& subsysNameChanges() { return d.subsysNameChanges; }
  auto& maskedBlocks() { return d.maskedBlocks; }
  auto& visibleGraphs() { return d.visibleGraphs.wantedGraphs(); }
  auto& visibleGraphsDone() { return d.visibleGraphs.visitedGraphs(); }
  auto& auditorGraphsDone() { return d.auditorGraphs.visitedGraphs(); }
  auto& auditorPathsDone() { return d.auditorPathsDone; }
  auto& handleToSubsystem() { return d.handleToSubsystem; }
  bool initialScanDone() const { return d.initialScanDone; }
  // Forgets the routing blocks counted so far, so that the Goto/From check runs again.
  void resetRoutingCount() {
    d.routingBlockCount = 0;
    d.tooManyRoutingBlocks = false;
  }
  std::uint32_t variantSubsystemCount() const { return d.variantSubsystemCount; }

  bkEditBD& d;
};

}  // namespace bkedittimecheck
