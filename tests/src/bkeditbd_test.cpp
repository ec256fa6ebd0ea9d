// The worker-side block map of bkEditBD: the blocks the rule-auditor checks walk and those the
// prune keeps, both found from the list of arrivals, against the plain walk over the whole map.
#include "src/bkeditbd.h"

#include <gtest/gtest.h>

#include <random>

#include "host/model/bkrootbd.h"
#include "host/model/diagramediting.h"
#include "host/runtime/eventloop.h"
#include "src/editcodes.h"
#include "src/violationdatabase.h"
#include "tests/src/bkeditbdprobe.h"

namespace bkedittimecheck {
namespace {

using Visited = std::vector<std::pair<double, const bkEditBlock*>>;

Visited plainWalk(const bkEditBD& data) {
  Visited out;
  for (const auto& [handle, block] : data.blockMap()) {
    if (block && block->hasRaEditBlock()) out.emplace_back(handle, block.get());
  }
  return out;
}

Visited listedWalk(const bkEditBD& data) {
  Visited out;
  data.forEachAuditedBlock([&](double handle, const std::shared_ptr<bkEditBlock>& block) {
    out.emplace_back(handle, block.get());
  });
  return out;
}

TEST(bkEditBD, ArrivalsGiveThePlainWalksAnswersThroughSnapshotsDeletionsAndPrunes) {
  blockara::EventLoop::instance().adoptCurrentThread();
  BKRootBD* d = bkBlockDiagramSet::create(u"m", BKRootBD::Model);
  // Many kept routing blocks and few gains: a pass of a few snapshots takes the listed road,
  // a pass of many the walk over the map.
  std::vector<BKBlock*> blocks;
  for (int i = 0; i < 400; ++i) {
    const std::string tag = "T" + std::to_string(i % 7);
    blocks.push_back(d->editing().addBlock(u"m", i % 2 ? "Goto" : "From",
                                           u"r" + i18n::to_u16string(std::to_string(i)),
                                           {{"GotoTag", tag}}));
  }
  for (int i = 0; i < 30; ++i) {
    blocks.push_back(
        d->editing().addBlock(u"m", "Gain", u"g" + i18n::to_u16string(std::to_string(i))));
  }
  bkEditBD data(L"m", false);
  bkEditBDProbe probe(data);
  ViolationDatabase db;
  std::mt19937 random(20261124);
  auto pick = [&](std::size_t n) {
    return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
  };
  std::size_t listedRoad = 0, walkRoad = 0;
  for (int pass = 0; pass < 400; ++pass) {
    // A pass: some snapshots, with or without a rule-auditor part, some deletions, repeats.
    const std::size_t snapshots = pick(4) == 0 ? 20 + pick(60) : pick(4);
    for (std::size_t i = 0; i < snapshots; ++i) {
      probe.changedBlocks().push(
          QueuedSnapshot{std::make_shared<bkEditBlock>(blocks[pick(blocks.size())], pick(2) != 0)});
      if (pick(8) == 0) probe.deletedHandles().push(blocks[pick(blocks.size())]->getHandle());
    }
    data.processDeletions(&db);
    data.processChanges(&db);
    (probe.fewArrived() ? listedRoad : walkRoad) += 1;
    ASSERT_EQ(listedWalk(data), plainWalk(data)) << "pass " << pass;
    if (pick(2) != 0) {  // a pass may end without a prune when its last check failed
      // The prune keeps the routing and chart blocks, without their rule-auditor part.
      std::vector<double> kept;
      for (const auto& [handle, block] : data.blockMap()) {
        if (BlockKind::isKeptAcrossPasses(block->getBlockKind()) || block->hasChartData()) {
          kept.push_back(handle);
        }
      }
      data.pruneAfterPass();
      std::vector<double> left;
      for (const auto& [handle, block] : data.blockMap()) {
        left.push_back(handle);
        ASSERT_FALSE(block->hasRaEditBlock()) << "pass " << pass;
      }
      ASSERT_EQ(left, kept) << "pass " << pass;
    }
  }
  EXPECT_GT(listedRoad, 50u);
  EXPECT_GT(walkRoad, 20u);
  bkBlockDiagramSet::closeAll();
}

}  // namespace
}  // namespace bkedittimecheck
