#include "host/model/bkdfile.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "host/model/bkrootbd.h"
#include "host/model/blocklibrary.h"
#include "host/model/diagramediting.h"
#include "tests/host/messageof.h"

namespace {

class BkdFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    blockara::setModelFileWarningHandler([this](const std::string& w) { warnings.push_back(w); });
  }
  void TearDown() override {
    blockara::setModelFileWarningHandler([](const std::string&) {});
    bkBlockDiagramSet::closeAll();
  }
  std::vector<std::string> warnings;
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

// Every property kind through a file comes back from the scenarios; here, what needs escaping
// or numbering.
TEST_F(BkdFileTest, SaveLoadRoundTripKeepsEverythingAndTheSidSequence) {
  BKRootBD* d = bkBlockDiagramSet::create(u"rt");
  auto& e = d->editing();
  e.addBlock(u"rt", "SubSystem", u"a/b & <c>",
             {{"StateData", BlockRecordList{{{"name", "x"}, {"scope", "Local"}}, {{"name", "y"}}}},
              {"MaskType", std::string("M\xc3\xa4sk")}, {"MaskParameters", 3.0},
              {"Position", std::vector<double>{1.5, -2, 30, 40}}, {"ShowName", false}});
  e.addBlock(u"rt/a//b & <c>", "Goto", u"go", {{"GotoTag", std::string(" spaced ")}});
  e.addBlock(u"rt", "Gain", u"g", {{"Gain", std::string("2.5")}});
  e.setCommentState(u"rt/g", 2);
  d->configSets().push_back(ConfigSet("Other"));
  const std::string before = dump(d);
  const std::string path = ::testing::TempDir() + "rt.bkd";
  blockara::saveBkd(*d, path);
  bkBlockDiagramSet::close(d);

  BKRootBD* back = blockara::loadBkd(path);
  std::remove(path.c_str());
  EXPECT_EQ(dump(back), before);
  EXPECT_EQ(back->getFilePath(), path);
  EXPECT_EQ(back->configSets().size(), 2u);
  EXPECT_EQ(back->activeConfigSetIndex(), std::optional<std::size_t>(0));
  // New blocks continue the SID sequence instead of reusing one.
  EXPECT_EQ(back->editing().addBlock(u"rt", "Gain", u"fresh")->getBlockId(), 4);
  // With no active set.
  back->removeConfigSet();
  const std::string xml = blockara::writeDiagramXml(*back);
  bkBlockDiagramSet::close(back);
  EXPECT_EQ(blockara::readDiagramXml(xml, "mem.bkd")->activeConfigSet(), nullptr);
}

TEST_F(BkdFileTest, MalformedFilesNameTheFileAndLineAndLeaveNothingOpen) {
  // Blocks start on line 3.
  const std::string head = "<BlockDiagram Name=\"bad\">\n<System>\n";
  const std::string tail = "</System></BlockDiagram>";
  const std::string gain = "<Block Type=\"Gain\" Name=\"x\" SID=\"1\"";
  const std::pair<std::string, std::string> cases[] = {  // the text and the message's start
      {"<BlockDiagram Name=\"bad\">\n<System>\n<Block", "f.bkd:3: "},
      {"<Other/>", "f.bkd: the root element is not <BlockDiagram>"},
      {"\n<BlockDiagram Name=\"a/b\"/>", "f.bkd:2: the diagram name"},
      {"<BlockDiagram Name=\"bad\" Suspended=\"yes\"/>", "f.bkd:1: Suspended \"yes\""},
      {head + "<Block Type=\"Nope\" Name=\"x\" SID=\"1\"/>" + tail,
       "f.bkd:3: block bad/x: unknown block type"},
      {head + gain + "/>\n<Block Type=\"Gain\" Name=\"x\" SID=\"2\"/>" + tail,
       "f.bkd:4: block bad/x: the name is used twice"},
      {head + gain + "/><Block Type=\"Gain\" Name=\"y\" SID=\"1\"/>" + tail,
       "f.bkd:3: block bad/y: SID 1"},
      {head + "<Block Type=\"Gain\" Name=\"x\" SID=\"z\"/>" + tail, "f.bkd:3: block bad/x SID"},
      {head + gain + ">\n<P Name=\"Orientation\">sideways</P></Block>" + tail,
       "f.bkd:4: bad/x: Orientation"},
      {head + gain + "><P Name=\"Position\">1 2 3</P></Block>" + tail, "f.bkd:3: bad/x: Position"},
      {head + gain + "><System/></Block>" + tail, "f.bkd:3: block bad/x: a Gain has no system"},
      {"<BlockDiagram Name=\"bad\"><ConfigSets Active=\"3\"/></BlockDiagram>",
       "f.bkd:1: ConfigSets Active 3"},
      {std::string(2000, '<'), "f.bkd:1: "},
      // What a reader could only drop or choose from is refused.
      {head + "<Block Type=\"SubSystem\" Name=\"s\" SID=\"1\"><System/>\n<System/></Block>" + tail,
       "f.bkd:4: a second <System> in <Block>"},
      {head + gain + " Name=\"y\"/>" + tail, "f.bkd:3: <Block> has the attribute Name twice"},
      {head + gain + "><P Name=\"Gain\">1</P>\n<P Name=\"Gain\">2</P></Block>" + tail,
       "f.bkd:4: block bad/x: the property Gain is given twice"},
      {"<BlockDiagram Name=\"bad\"/>\n<BlockDiagram Name=\"bad2\"/>",
       "f.bkd:2: a second <BlockDiagram>"},
      {head + gain + ">\n<P>1</P></Block>" + tail, "f.bkd:4: block bad/x: a <P> without a Name"},
      {"<BlockDiagram Name=\"bad\"><ConfigSets><ConfigSet Name=\"c\">\n<Param>1</Param>"
       "</ConfigSet></ConfigSets></BlockDiagram>",
       "f.bkd:2: configuration set c: a <Param> without a Name"},
  };
  for (const auto& [xml, expected] : cases) {
    try {
      blockara::readDiagramXml(xml, "f.bkd");
      ADD_FAILURE() << "accepted: " << xml;
    } catch (const blockara::ModelFileError& e) {
      EXPECT_EQ(std::string(e.what()).rfind(expected, 0), 0u) << e.what();
      EXPECT_EQ(e.file(), "f.bkd");
    }
    EXPECT_EQ(bkBlockDiagramSet::nameToBlockDiagram(u"bad"), nullptr);
  }
  bkBlockDiagramSet::create(u"bad");
  EXPECT_THROW(blockara::readDiagramXml("<BlockDiagram Name=\"bad\"/>", "f.bkd"),
               blockara::ModelFileError);
  EXPECT_THROW(blockara::loadBkd("/nonexistent/dir/x.bkd"), blockara::ModelFileError);
}

TEST_F(BkdFileTest, ContentPassedOverIsReportedOncePerKindWithItsFirstLine) {
  BKRootBD* d = blockara::readDiagramXml(
      "<BlockDiagram Name=\"w\" Color=\"red\"><!-- a comment is no content -->\n"
      "<Notes>n</Notes>\n"
      "<System>\n"
      "<Block Type=\"Gain\" Name=\"a\" SID=\"1\" Tint=\"1\"><Line/></Block>\n"
      "<Block Type=\"Gain\" Name=\"b\" SID=\"2\" Tint=\"2\">stray</Block>\n"
      "<Block Type=\"Gain\" Name=\"c\" SID=\"3\" Tint=\"3\"/>\n"
      "</System></BlockDiagram>",
      "w.bkd");
  EXPECT_NE(d->findBlock(u"w/c"), nullptr);
  EXPECT_EQ(warnings, (std::vector<std::string>{
                          "w.bkd:1: warning: unknown attribute Color of <BlockDiagram> passed over",
                          "w.bkd:2: warning: unknown element <Notes> in <BlockDiagram> passed over",
                          "w.bkd:4: warning: unknown attribute Tint of <Block> passed over "
                          "(and 2 more like it)",
                          "w.bkd:4: warning: unknown element <Line> in <Block> passed over",
                          "w.bkd:5: warning: text inside <Block> passed over",
                      }));
  // What the writer writes reads back without a warning.
  warnings.clear();
  const std::string saved = blockara::writeDiagramXml(*d);
  bkBlockDiagramSet::close(d);
  blockara::readDiagramXml(saved, "w.bkd");
  EXPECT_TRUE(warnings.empty()) << warnings.front();
}

// The batch check's refusals show that models are read under the reader's limits; a refused
// library names its file (and the fault) and leaves the types loaded before.
TEST_F(BkdFileTest, MalformedOrHostileLibrariesNameTheFileAndKeepTheTypes) {
  BlockLibrary lib;
  lib.loadFromString("<BlockLibrary><BlockType Name=\"A\" Code=\"1\"/></BlockLibrary>", "a.xml");
  std::string deep = "<BlockLibrary>\n";
  for (int i = 0; i < 100000; ++i) deep += "<BlockType>";
  const std::pair<std::string, std::string> cases[] = {  // the text and the message's start
      {"<BlockLibrary>\n<BlockType Name=\"B\" Code=\"x\"/></BlockLibrary>",
       "f.xml: block type B Code"},
      {"<BlockLibrary>\n<BlockType", "f.xml:2: "},
      {deep, "f.xml:2: elements nested deeper than 4096 levels"},
  };
  for (const auto& [xml, start] : cases) {
    const std::string what =
        messageOf<std::runtime_error>([&] { lib.loadFromString(xml, "f.xml"); });
    EXPECT_EQ(what.rfind(start, 0), 0u) << what;
  }
  EXPECT_NE(lib.find("A"), nullptr);
}

}  // namespace
