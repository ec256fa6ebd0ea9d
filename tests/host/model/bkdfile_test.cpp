#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

#include "host/model/bkdfile.h"
#include "host/model/bkgraph.h"
#include "host/model/bkrootbd.h"
#include "host/model/diagramediting.h"

namespace {

class BkdFileTest : public ::testing::Test {
 protected:
  void TearDown() override { bkBlockDiagramSet::closeAll(); }
};

std::string dump(const BKRootBD* d) {
  std::string out;
  for (BKBlock* b : d->blocksInPathOrder()) {
    out += ConvertUStringToStdString(b->getFullPath(false)) + " " + b->getType().name + " sid=" +
           b->getSID() + " c=" + std::to_string(b->getCommentState());
    for (const auto& name : b->propertyNames()) {
      BlockValue v = b->getProperty(name);
      out += " " + name + "=";
      if (auto* s = std::get_if<std::string>(&v)) out += *s;
      if (auto* n = std::get_if<double>(&v)) out += std::to_string(*n);
      if (auto* ns = std::get_if<std::vector<double>>(&v))
        for (double x : *ns) out += std::to_string(x) + ",";
      if (std::holds_alternative<BlockRecordList>(v)) out += b->getParamText(name);
    }
    out += "\n";
  }
  return out;
}

TEST_F(BkdFileTest, SaveLoadRoundTripKeepsEverything) {
  BKRootBD* d = bkBlockDiagramSet::create(u"rt");
  auto& e = d->editing();
  e.addBlock(u"rt", "SubSystem", u"a/b & <c>",
             {{"StateData", BlockRecordList{{{"name", "x"}, {"scope", "Local"}}, {{"name", "y"}}}},
              {"MaskType", std::string("M\xc3\xa4sk")}, {"MaskInitialization", std::string("init")},
              {"MaskParameters", 3.0}, {"Position", std::vector<double>{1.5, -2, 30, 40}},
              {"Orientation", std::string("up")}, {"ShowName", false},
              {"NamePlacement", std::string("alternate")}, {"LinkStatus", std::string("implicit")},
              {"ReferenceBlock", std::string("lib/Blk")}});
  e.addBlock(u"rt/a//b & <c>", "Goto", u"go", {{"GotoTag", std::string(" spaced ")}});
  e.addBlock(u"rt", "Gain", u"g", {{"Gain", std::string("2.5")}});
  e.setCommentState(u"rt/g", 2);
  e.setModelParam("UniqueDataStoreMsg", std::string("warning"));
  d->configSets().push_back(ConfigSet("Other"));
  d->setAuditorMode(true);
  d->setExclusionFilePath(u"/tmp/excl.xml");
  const std::string before = dump(d);
  const std::string xml = blockara::writeDiagramXml(*d);
  bkBlockDiagramSet::close(d);

  BKRootBD* back = blockara::readDiagramXml(xml, "mem.bkd");
  EXPECT_EQ(dump(back), before);
  EXPECT_TRUE(back->auditorModeOn());
  EXPECT_EQ(back->getExclusionFilePath(), u"/tmp/excl.xml");
  EXPECT_EQ(back->configSets().size(), 2u);
  EXPECT_EQ(back->activeConfigSetIndex(), std::optional<std::size_t>(0));
  EXPECT_EQ(std::get<std::string>(*back->activeConfigSet()->getProp("UniqueDataStoreMsg")), "warning");
  // New blocks continue the SID sequence instead of reusing one.
  BKBlock* fresh = back->editing().addBlock(u"rt", "Gain", u"fresh");
  EXPECT_EQ(fresh->getBlockId(), 4);
  EXPECT_EQ(blockara::writeDiagramXml(*back).find("fresh") != std::string::npos, true);

  // Through a file, with no active set.
  back->removeConfigSet();
  std::string path = ::testing::TempDir() + "rt.bkd";
  blockara::saveBkd(*back, path);
  bkBlockDiagramSet::close(back);
  BKRootBD* file = blockara::loadBkd(path);
  EXPECT_EQ(file->activeConfigSet(), nullptr);
  EXPECT_EQ(file->getFilePath(), path);
  EXPECT_NE(file->findBlock(u"rt/fresh"), nullptr);
  std::remove(path.c_str());
}

TEST_F(BkdFileTest, MalformedFilesNameTheFileAndLineAndLeaveNothingOpen) {
  struct Case {
    std::string xml;
    std::string expected;  // the start of the message
  };
  const std::string head = "<BlockDiagram Name=\"bad\"><System>";
  const std::string tail = "</System></BlockDiagram>";
  const Case cases[] = {
      {"<BlockDiagram Name=\"bad\">\n<System>\n<Block", "f.bkd:3: "},
      {"<Other/>", "f.bkd: the root element is not <BlockDiagram>"},
      {"<BlockDiagram Name=\"a/b\"/>", "f.bkd: the diagram name"},
      {head + "<Block Type=\"Nope\" Name=\"x\" SID=\"1\"/>" + tail, "f.bkd: block bad/x: unknown block type"},
      {head + "<Block Type=\"Gain\" Name=\"x\" SID=\"1\"/><Block Type=\"Gain\" Name=\"x\" SID=\"2\"/>" + tail,
       "f.bkd: block bad/x: the name is used twice"},
      {head + "<Block Type=\"Gain\" Name=\"x\" SID=\"1\"/><Block Type=\"Gain\" Name=\"y\" SID=\"1\"/>" + tail,
       "f.bkd: block bad/y: SID 1"},
      {head + "<Block Type=\"Gain\" Name=\"x\" SID=\"z\"/>" + tail, "f.bkd: block bad/x SID"},
      {head + "<Block Type=\"Gain\" Name=\"x\" SID=\"1\"><P Name=\"Orientation\">sideways</P></Block>" + tail,
       "f.bkd: bad/x: Orientation"},
      {head + "<Block Type=\"Gain\" Name=\"x\" SID=\"1\"><P Name=\"Position\">1 2 3</P></Block>" + tail,
       "f.bkd: bad/x: Position"},
      {head + "<Block Type=\"Gain\" Name=\"x\" SID=\"1\"><System/></Block>" + tail,
       "f.bkd: block bad/x: a Gain has no system"},
      {"<BlockDiagram Name=\"bad\"><ConfigSets Active=\"3\"/></BlockDiagram>", "f.bkd: ConfigSets Active 3"},
      {std::string(2000, '<'), "f.bkd:1: "},
  };
  for (const auto& c : cases) {
    try {
      blockara::readDiagramXml(c.xml, "f.bkd");
      ADD_FAILURE() << "accepted: " << c.xml;
    } catch (const blockara::ModelFileError& e) {
      EXPECT_EQ(std::string(e.what()).rfind(c.expected, 0), 0u) << e.what();
      EXPECT_EQ(e.file(), "f.bkd");
    }
    EXPECT_EQ(bkBlockDiagramSet::nameToBlockDiagram(u"bad"), nullptr);
  }
  bkBlockDiagramSet::create(u"bad");
  EXPECT_THROW(blockara::readDiagramXml("<BlockDiagram Name=\"bad\"/>", "f.bkd"), blockara::ModelFileError);
  EXPECT_THROW(blockara::loadBkd("/nonexistent/dir/x.bkd"), blockara::ModelFileError);
}

}  // namespace
