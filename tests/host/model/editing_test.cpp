#include <gtest/gtest.h>

#include "host/model/bkgraph.h"
#include "host/model/bkrootbd.h"
#include "host/model/blockqueries.h"
#include "host/model/diagramediting.h"
#include "host/signals/bkplugin.h"
#include "tests/host/messageof.h"

namespace {

// The scenarios show which signals each edit raises; here, undo and failed edits.
class EditingTest : public ::testing::Test {
 protected:
  void SetUp() override {
    d = bkBlockDiagramSet::create(u"m");
    // Each batch signal as "<event> <changed blocks>", each comment signal as "<event> <block>".
    for (auto event : {BKGE_BLOCKS_ADDED, BKGE_BLOCKS_CHANGED, BKGE_BLOCKS_DELETED, BKGE_BLOCKS_RENAMED})
      bkplugin::addEditBdBatchSignal(d, event, [this, event](BKRootBD*, const PluginChangeReport& r) {
        std::string line = std::to_string(event);
        for (double h : r.changed) line += " " + BKBlock::Handle2Block(h)->getGrNameNonUnicode();
        signals.push_back(line);
      });
    for (auto event : {BKGE_BLOCK_COMMENTED_OUT, BKGE_BLOCK_COMMENTED_THROUGH, BKGE_BLOCK_UNCOMMENTED})
      bkplugin::addEditBdBlockCommentedStatusSignal(d, event, [this, event](BKRootBD*, BKBlock* b) {
        signals.push_back(std::to_string(event) + " " + b->getGrNameNonUnicode());
      });
  }
  void TearDown() override { bkBlockDiagramSet::closeAll(); }
  blockara::DiagramEditing& e() { return d->editing(); }
  std::vector<std::string> take() { return std::exchange(signals, {}); }
  BKRootBD* d = nullptr;
  std::vector<std::string> signals;
};

TEST_F(EditingTest, UndoRestoresStateAndIsRefusedInsideABatch) {
  e().addBlock(u"m", "SubSystem", u"s");
  BKBlock* g = e().addBlock(u"m/s", "Gain", u"g", {{"Gain", 4.0}});
  e().deleteBlock(u"m/s");
  // The deleted block survives as an undo object outside any diagram.
  ASSERT_EQ(BKBlock::Handle2Block(g->getHandle()), g);
  EXPECT_EQ(g->getBlockDiagram(), nullptr);
  EXPECT_TRUE(e().undo());

  e().renameBlock(u"m/s", u"t");
  e().setProperties(u"m/t/g", {{"Gain", 9.0}, {"Position", std::vector<double>{1, 2, 3, 4}}});
  take();
  EXPECT_TRUE(e().undo());
  EXPECT_EQ(take(), std::vector<std::string>{"27 g"});
  EXPECT_EQ(g->getParamText("Gain"), "4");
  EXPECT_EQ(g->getPosition()[0], 0);
  EXPECT_TRUE(e().undo());
  EXPECT_EQ(d->findBlock(u"m/s/g"), g);
  EXPECT_EQ(e().redoCount(), 2u);
  e().beginBatch();
  EXPECT_THROW(e().undo(), std::logic_error);
  EXPECT_THROW(e().redo(), std::logic_error);
  e().endBatch();
  EXPECT_THROW(e().endBatch(), std::logic_error);
}

TEST_F(EditingTest, DroppedHistoryDestroysDeletedBlocks) {
  e().setUndoDepth(2);
  double h = e().addBlock(u"m", "Gain", u"g")->getHandle();
  e().deleteBlock(u"m/g");
  e().addBlock(u"m", "Gain", u"x");
  EXPECT_NE(BKBlock::Handle2Block(h), nullptr);  // delete entry still held (depth 2)
  e().addBlock(u"m", "Gain", u"y");
  EXPECT_EQ(BKBlock::Handle2Block(h), nullptr);  // fell off the history

  // An undone add lives on the redo stack until a new edit drops it.
  double z = e().addBlock(u"m", "Gain", u"z")->getHandle();
  e().undo();
  EXPECT_NE(BKBlock::Handle2Block(z), nullptr);
  e().addBlock(u"m", "Gain", u"w");
  EXPECT_EQ(BKBlock::Handle2Block(z), nullptr);

  double w = d->findBlock(u"m/w")->getHandle();
  e().deleteBlock(u"m/w");
  e().clearUndoHistory();
  EXPECT_EQ(BKBlock::Handle2Block(w), nullptr);
  EXPECT_FALSE(e().undo());
  // A new block never takes an old handle.
  EXPECT_NE(e().addBlock(u"m", "Gain", u"v")->getHandle(), w);
}

TEST_F(EditingTest, InvalidEditsThrowAndChangeNothing) {
  e().addBlock(u"m", "SubSystem", u"s");
  e().addBlock(u"m/s", "Gain", u"g");
  take();
  std::size_t undo = e().undoCount();
  EXPECT_THROW(e().addBlock(u"m", "Gain", u""), std::invalid_argument);
  EXPECT_THROW(e().addBlock(u"m/nowhere", "Gain", u"x"), std::invalid_argument);
  EXPECT_THROW(e().addBlock(u"m", "NoSuchType", u"x"), std::invalid_argument);
  EXPECT_THROW(e().addBlock(u"m/s", "Gain", u"g"), std::invalid_argument);  // the name is taken
  EXPECT_THROW(e().addBlock(u"m", "Gain", u"x", {{"Bogus", 1.0}}), std::invalid_argument);
  EXPECT_THROW(e().addBlock(u"m", "Goto", u"x", {{"TagVisibility", std::string("wide")}}),
               std::invalid_argument);
  EXPECT_THROW(e().moveBlock(u"m/s", u"m/s"), std::invalid_argument);
  EXPECT_THROW(e().renameBlock(u"m/missing", u"y"), std::invalid_argument);
  EXPECT_THROW(e().setCommentState(u"m/s", 3), std::invalid_argument);
  const std::string what = messageOf<std::invalid_argument>([&] {
    e().setProperties(u"m/s/g", {{"Gain", 2.0}, {"Orientation", std::string("sideways")}});
  });
  EXPECT_NE(what.find("m/s/g"), std::string::npos);
  EXPECT_NE(what.find("Orientation"), std::string::npos);
  EXPECT_EQ(d->findBlock(u"m/s/g")->getParamText("Gain"), "1");
  EXPECT_EQ(d->blockCount(), 2u);
  EXPECT_EQ(e().undoCount(), undo);
  EXPECT_TRUE(take().empty());
  EXPECT_FALSE(e().inBatch());
  // Diagram names, missing parameters and a missing configuration set.
  EXPECT_THROW(bkBlockDiagramSet::create(u"m"), std::invalid_argument);
  EXPECT_THROW(bkBlockDiagramSet::create(u""), std::invalid_argument);
  EXPECT_THROW(bkBlockDiagramSet::create(u"a/b"), std::invalid_argument);
  EXPECT_THROW(bkobject::blockDiagram::getParamAsStr(d, "NoSuchParam"), bkHostException);
  d->removeConfigSet();
  EXPECT_THROW(e().setModelParam("X", std::string("1")), NoActiveConfigSet);
}

TEST_F(EditingTest, ClosingTheDiagramRaisesCloseAndInvalidatesHandles) {
  int closes = 0;
  bkplugin::addEditBdSignal(d, BKGE_DIAGRAM_CLOSING, [&](BKRootBD* bd) {
    EXPECT_EQ(bd, d);
    ++closes;
    throw std::runtime_error("a failing listener does not stop a close");
  });
  double h = e().addBlock(u"m", "Gain", u"g")->getHandle();
  e().deleteBlock(u"m/g");
  double live = e().addBlock(u"m", "Gain", u"k")->getHandle();
  bkBlockDiagramSet::close(d);
  EXPECT_EQ(closes, 1);
  EXPECT_EQ(BKBlock::Handle2Block(h), nullptr);
  EXPECT_EQ(BKBlock::Handle2Block(live), nullptr);
  EXPECT_EQ(bkBlockDiagramSet::nameToBlockDiagram(u"m"), nullptr);
}

}  // namespace
