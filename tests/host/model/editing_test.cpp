#include <gtest/gtest.h>

#include <sstream>

#include "host/model/bkgraph.h"
#include "host/model/bkrootbd.h"
#include "host/model/diagramediting.h"
#include "host/signals/bkplugin.h"
#include "tests/host/messageof.h"

namespace {

// Records every edit-side signal of a diagram as a line, with handles shown as block names.
class Recorder {
 public:
  explicit Recorder(BKRootBD* d) : d(d) {
    for (auto event : {BKGE_BLOCKS_ADDED, BKGE_BLOCKS_CHANGED, BKGE_BLOCKS_DELETED, BKGE_BLOCKS_RENAMED})
      bkplugin::addEditBdBatchSignal(d, event, [this, event](BKRootBD*, const PluginChangeReport& r) {
        std::ostringstream line;
        line << event << " a[" << names(r.added) << "] c[" << names(r.changed) << "] d["
             << names(r.deleted) << "] r[" << names(std::vector<double>(r.renamed.begin(), r.renamed.end()))
             << "]";
        lines.push_back(line.str());
      });
    for (auto event : {BKGE_BLOCK_COMMENTED_OUT, BKGE_BLOCK_COMMENTED_THROUGH, BKGE_BLOCK_UNCOMMENTED})
      bkplugin::addEditBdBlockCommentedStatusSignal(d, event, [this, event](BKRootBD*, BKBlock* b) {
        lines.push_back(std::to_string(event) + " " + b->getGrNameNonUnicode());
      });
  }
  std::string names(const std::vector<double>& handles) {
    std::string out;
    for (double h : handles) {
      if (!out.empty()) out += ',';
      BKBlock* b = BKBlock::Handle2Block(h);
      out += b ? b->getGrNameNonUnicode() : "?";
    }
    return out;
  }
  std::vector<std::string> take() { return std::exchange(lines, {}); }

 private:
  BKRootBD* d;
  std::vector<std::string> lines;
};

class EditingTest : public ::testing::Test {
 protected:
  void SetUp() override {
    d = bkBlockDiagramSet::create(u"m");
    rec = std::make_unique<Recorder>(d);
  }
  void TearDown() override {
    rec.reset();
    bkBlockDiagramSet::closeAll();
  }
  blockara::DiagramEditing& e() { return d->editing(); }
  BKRootBD* d = nullptr;
  std::unique_ptr<Recorder> rec;
};

using Lines = std::vector<std::string>;

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
  rec->take();
  EXPECT_TRUE(e().undo());
  EXPECT_EQ(rec->take(), Lines{"27 a[] c[g] d[] r[]"});
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
  EXPECT_NE(BKBlock::Handle2Block(h), nullptr);
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
  rec->take();
  std::size_t undo = e().undoCount();
  EXPECT_THROW(e().addBlock(u"m", "Gain", u""), std::invalid_argument);
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
  EXPECT_TRUE(rec->take().empty());
  EXPECT_FALSE(e().inBatch());
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
  d = nullptr;
}

}  // namespace
