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
  EXPECT_EQ(takeEvents(), (std::vector<Event>{{19, false}, {18, false}}));
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
  EXPECT_EQ(takeEvents(), (std::vector<Event>{{21, false}}));

  // Opening an editor on the subsystem brings its blocks on view.
  Blockara::StudioApp::open(d)->openEditor(u"m/hidden");
  blockara::EventLoop::instance().runUntilIdle();
  clear();  // the view change rescanned the root
  e().setProperties(u"m/hidden/offView", {{"Gain", std::string("4")}});
  EXPECT_EQ(takeChanged(*data), (Names{"offView"}));
}

TEST_F(EngineBatchTest, RoutingBlocksAreAlwaysTakenUpToTheThousandth) {
  {
    blockara::EditBatch batch(*d);
    for (int i = 0; i < 1001; ++i)
      e().addBlock(u"m", "Goto", i18n::to_u16string("g" + std::to_string(i)));
  }
  const Names taken = takeChanged(*data);
  ASSERT_EQ(taken.size(), 1000u);
  EXPECT_EQ(taken.back(), "g999");
  EXPECT_TRUE(bkEditBDProbe(*data).tooManyRoutingBlocks());
  // Past the limit a Goto is an ordinary block: taken on a change only when on view.
  e().setProperties(u"m/g1000", {{"GotoTag", std::string("Z")}});
  EXPECT_EQ(takeChanged(*data), (Names{"g1000"}));
}

TEST_F(EngineBatchTest, DeletedBlocksAndVariantSubsystems) {
  BKBlock* gain = e().addBlock(u"m", "Gain", u"g");
  const double gainHandle = gain->getHandle();
  e().addBlock(u"m", "SubSystem", u"v", {{"Variant", std::string("on")}});
  EXPECT_EQ(bkEditBDProbe(*data).variantSubsystemCount(), 1u);
  EXPECT_EQ(takeEvents().back(), (Event{18, true}));

  // A change of a variant subsystem counts it again: only additions and deletions are balanced
  // by the host, changes are not.
  e().setProperties(u"m/v", {{"Variant", std::string("on")}});
  EXPECT_EQ(bkEditBDProbe(*data).variantSubsystemCount(), 2u);
  e().setProperties(u"m/v", {{"Variant", std::string("off")}});
  clear();

  e().deleteBlock(u"m/g");  // kept as an undo object: its handle still resolves
  EXPECT_EQ(takeDeleted(*data), (std::vector<double>{gainHandle}));
  EXPECT_EQ(takeEvents(), (std::vector<Event>{{19, true}}));

  e().setProperties(u"m/v", {{"Variant", std::string("on")}});
  const unsigned before = bkEditBDProbe(*data).variantSubsystemCount();
  e().deleteBlock(u"m/v");
  EXPECT_EQ(bkEditBDProbe(*data).variantSubsystemCount(), before - 1);

  // Without undo history the deleted block is gone at once: its handle is queued, the count
  // stays as it was.
  e().addBlock(u"m", "SubSystem", u"w", {{"Variant", std::string("on")}});
  const unsigned withW = bkEditBDProbe(*data).variantSubsystemCount();
  e().setUndoDepth(0);
  takeDeleted(*data);
  e().deleteBlock(u"m/w");
  EXPECT_EQ(takeDeleted(*data).size(), 1u);
  EXPECT_EQ(bkEditBDProbe(*data).variantSubsystemCount(), withW);
}

TEST_F(EngineBatchTest, CommentChangesRouteByKind) {
  addBlocks(d, {"go Goto", "g Gain", "s SubSystem"});
  clear();

  e().setCommentState(u"m/g", 1);  // not routing, not a subsystem: nothing to check
  EXPECT_TRUE(takeChanged(*data).empty());
  EXPECT_TRUE(takeEvents().empty());

  e().setCommentState(u"m/go", 1);
  EXPECT_EQ(takeChanged(*data), (Names{"go"}));
  EXPECT_EQ(takeEvents(), (std::vector<Event>{{3, false}}));

  e().setCommentState(u"m/s", 2);
  auto added = takeAll(bkEditBDProbe(*data).blkProperties());
  ASSERT_EQ(added.size(), 1u);
  EXPECT_TRUE(added[0].isAdded);
  EXPECT_EQ(added[0].pathWithSlash, L"m/s/");
  EXPECT_EQ(added[0].handle, d->findBlock(u"m/s")->getHandle());

  e().setCommentState(u"m/s", 0);
  auto removed = takeAll(bkEditBDProbe(*data).blkProperties());
  ASSERT_EQ(removed.size(), 1u);
  EXPECT_FALSE(removed[0].isAdded);
  EXPECT_EQ(takeEvents().back(), (Event{3, false}));
}

TEST_F(EngineBatchTest, RenamedSubsystemsQueueTheirPathChange) {
  addBlocks(d, {"s SubSystem", "s/go Goto"});
  clear();
  takeAll(bkEditBDProbe(*data).subsysNameChanges());
  e().renameBlock(u"m/s", u"t");
  auto changes = takeAll(bkEditBDProbe(*data).subsysNameChanges());
  ASSERT_EQ(changes.size(), 1u);
  EXPECT_EQ(changes[0].oldPath, L"m/s");
  EXPECT_EQ(changes[0].newPath, L"m/t");
  EXPECT_EQ(takeEvents(), (std::vector<Event>{{20, false}}));
}

TEST_F(EngineBatchTest, StateAccessorSnapshotsResolveTheirOwnerAsTheHostDoes) {
  // The accessor sits in a system whose name holds a "/", written "//" in paths: one "../"
  // climbs that whole system, not half of its name.
  e().addBlock(u"m", "SubSystem", u"a/b");
  BKBlock* owner = e().addBlock(u"m", "Gain", u"owner");
  e().addBlock(u"m/a//b", "Gain", u"owner");  // a decoy where a wrong climb would land
  takeChanged(*data);
  e().addBlock(u"m/a//b", "StateReader", u"r", {{"StateOwnerBlock", std::string("../owner")}});
  e().addBlock(u"m", "StateWriter", u"w", {{"StateOwnerBlock", std::string("m/gone")}});
  const auto taken = takeAll(bkEditBDProbe(*data).changedBlocks());
  ASSERT_EQ(taken.size(), 2u);
  ASSERT_TRUE(taken[0]->getDefaultEditBlock());
  EXPECT_EQ(taken[0]->getDefaultEditBlock()->stringParam0, "m/owner");
  EXPECT_EQ(taken[0]->getDefaultEditBlock()->ownerBlockId, owner->getBlockId());
  // An owner that does not resolve keeps the path as written and the id as it was.
  ASSERT_TRUE(taken[1]->getDefaultEditBlock());
  EXPECT_EQ(taken[1]->getDefaultEditBlock()->stringParam0, "m/gone");
  EXPECT_EQ(taken[1]->getDefaultEditBlock()->ownerBlockId, 0);
}

}  // namespace
}  // namespace bkedittimecheck::testing
