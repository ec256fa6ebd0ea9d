// How each host batch reaches the queues of bkEditBD and the event codes of the table.
#include <gtest/gtest.h>

#include "host/model/bkblock.h"
#include "tests/src/bkeditbdprobe.h"
#include "tests/src/enginefixture.h"

namespace bkedittimecheck::testing {
namespace {

using Names = std::vector<std::string>;

class EngineBatchTest : public EngineFixture {
 protected:
  void SetUp() override {
    EngineFixture::SetUp();
    d = open(u"m");
    engine = engineOf(u"m");
    ASSERT_TRUE(engine);
    data = engine->getData().get();
    clear();  // the opening scan took routing blocks already
  }
  /// Empties the changed-block queue and the recorded events.
  void clear() {
    takeChanged(*data);
    takeEvents();
  }
  blockara::DiagramEditing& e() { return d->editing(); }
  bkEditBDProbe probe() { return bkEditBDProbe(*data); }

  BKRootBD* d = nullptr;
  std::shared_ptr<EditTimeEngine> engine;
  bkEditBD* data = nullptr;
};

TEST_F(EngineBatchTest, AddedBlocksOnlyRoutingBlocksAreTakenAndDeletionsRunFirst) {
  e().addBlock(u"m", "SubSystem", u"hidden");
  clear();
  {
    // g is on view but held back until scanned; routing blocks are taken though not on view; c
    // is neither.
    blockara::EditBatch batch(*d);
    addBlocks(d, {"g Gain", "hidden/go Goto", "hidden/ds DataStoreMemory", "hidden/c Constant"});
  }
  EXPECT_EQ(takeChanged(*data), (Names{"go", "ds"}));
  EXPECT_TRUE(takeDeleted(*data).empty());
  EXPECT_EQ(takeEvents(), (Events{{19, false}, {18, false}}));
}

TEST_F(EngineBatchTest, ChangedBlocksAreTakenWhenRoutingOrOnView) {
  addBlocks(d, {"hidden SubSystem", "onView Gain", "hidden/offView Gain", "hidden/from From"});
  clear();
  {
    blockara::EditBatch batch(*d);
    e().setProperties(u"m/onView", {{"Gain", std::string("2")}});
    e().setProperties(u"m/hidden/offView", {{"Gain", std::string("3")}});
    e().setProperties(u"m/hidden/from", {{"GotoTag", std::string("B")}});
  }
  EXPECT_EQ(takeChanged(*data), (Names{"onView", "from"}));
  EXPECT_EQ(takeEvents(), (Events{{21, false}}));
  // Opening an editor on the subsystem brings its blocks on view.
  Blockara::StudioApp::open(d)->openEditor(u"m/hidden");
  blockara::EventLoop::instance().runUntilIdle();
  clear();  // the view change rescanned the root
  e().setProperties(u"m/hidden/offView", {{"Gain", std::string("4")}});
  EXPECT_EQ(takeChanged(*data), (Names{"offView"}));
}

TEST_F(EngineBatchTest, DeletedBlocksAndVariantSubsystems) {
  const double gain = e().addBlock(u"m", "Gain", u"g")->getHandle();
  e().addBlock(u"m", "SubSystem", u"v", {{"Variant", std::string("on")}});
  EXPECT_EQ(probe().variantSubsystemCount(), 1u);
  EXPECT_EQ(takeEvents().back(), (Event{18, true}));
  // A change of a variant subsystem counts it again: only additions and deletions are balanced
  // by the host, changes are not.
  e().setProperties(u"m/v", {{"Variant", std::string("on")}});
  EXPECT_EQ(probe().variantSubsystemCount(), 2u);
  e().setProperties(u"m/v", {{"Variant", std::string("off")}});
  clear();
  e().deleteBlock(u"m/g");  // kept as an undo object: its handle still resolves
  EXPECT_EQ(takeDeleted(*data), (std::vector<double>{gain}));
  EXPECT_EQ(takeEvents(), (Events{{19, true}}));
  e().setProperties(u"m/v", {{"Variant", std::string("on")}});
  e().deleteBlock(u"m/v");
  EXPECT_EQ(probe().variantSubsystemCount(), 2u);  // three counted, one deleted

  // Without undo history the deleted block is gone at once: its handle is queued, the count
  // stays as it was.
  e().addBlock(u"m", "SubSystem", u"w", {{"Variant", std::string("on")}});
  e().setUndoDepth(0);
  takeDeleted(*data);
  e().deleteBlock(u"m/w");
  EXPECT_EQ(takeDeleted(*data).size(), 1u);
  EXPECT_EQ(probe().variantSubsystemCount(), 3u);
}

TEST_F(EngineBatchTest, CommentChangesRouteByKindAndRenamedSubsystemsQueueTheirPathChange) {
  addBlocks(d, {"go Goto", "g Gain", "s SubSystem", "s/go Goto"});
  clear();
  e().setCommentState(u"m/g", 1);  // not routing, not a subsystem: nothing to check
  EXPECT_TRUE(takeChanged(*data).empty() && takeEvents().empty());
  e().setCommentState(u"m/go", 1);
  EXPECT_EQ(takeChanged(*data), (Names{"go"}));
  EXPECT_EQ(takeEvents(), (Events{{3, false}}));

  e().setCommentState(u"m/s", 2);
  e().setCommentState(u"m/s", 0);
  const auto queued = takeAll(probe().blkProperties());
  ASSERT_EQ(queued.size(), 2u);
  EXPECT_TRUE(queued[0].isAdded);
  EXPECT_EQ(queued[0].pathWithSlash, L"m/s/");
  EXPECT_EQ(queued[0].handle, d->findBlock(u"m/s")->getHandle());
  EXPECT_FALSE(queued[1].isAdded);
  EXPECT_EQ(takeEvents().back(), (Event{3, false}));

  clear();
  takeAll(probe().subsysNameChanges());
  e().renameBlock(u"m/s", u"t");
  // Noted before the batch's snapshots; the rename signal's own noting queues the path unchanged.
  const auto changes = takeAll(probe().subsysNameChanges());
  ASSERT_EQ(changes.size(), 2u);
  EXPECT_EQ(changes[0].oldPath + L">" + changes[0].newPath, L"m/s>m/t");
  EXPECT_EQ(changes[1].oldPath + L">" + changes[1].newPath, L"m/t>m/t");
  EXPECT_EQ(takeEvents(), (Events{{20, false}}));
}

TEST_F(EngineBatchTest, StateAccessorSnapshotsResolveTheirOwnerAsTheHostDoes) {
  // The accessor sits in a system whose name holds a "/", written "//" in paths: one "../"
  // climbs that whole system, not half of its name.
  e().addBlock(u"m", "SubSystem", u"a/b");
  const int owner = e().addBlock(u"m", "Gain", u"owner")->getBlockId();
  e().addBlock(u"m/a//b", "Gain", u"owner");  // a decoy where a wrong climb would land
  takeChanged(*data);
  e().addBlock(u"m/a//b", "StateReader", u"r", {{"StateOwnerBlock", std::string("../owner")}});
  // An owner that does not resolve keeps the path as written and the id as it was.
  e().addBlock(u"m", "StateWriter", u"w", {{"StateOwnerBlock", std::string("m/gone")}});
  std::vector<std::string> snapshots;
  for (const auto& queued : takeAll(probe().changedBlocks())) {
    ASSERT_TRUE(queued.snapshot->getDefaultEditBlock());
    const auto& s = *queued.snapshot->getDefaultEditBlock();
    snapshots.push_back(s.stringParam0 + " " + std::to_string(s.ownerBlockId));
  }
  EXPECT_EQ(snapshots, (Names{"m/owner " + std::to_string(owner), "m/gone 0"}));
}

}  // namespace
}  // namespace bkedittimecheck::testing
