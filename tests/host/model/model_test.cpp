#include <gtest/gtest.h>

#include "host/model/bkglue.h"
#include "host/model/bkgraph.h"
#include "host/model/bkrootbd.h"
#include "host/model/blockqueries.h"
#include "host/model/diagramediting.h"
#include "host/model/subsystemblock.h"

namespace {

class ModelTest : public ::testing::Test {
 protected:
  void SetUp() override { d = bkBlockDiagramSet::create(u"m"); }
  void TearDown() override { bkBlockDiagramSet::closeAll(); }
  BKBlock* add(const bksvString& sys, const std::string& type, const bksvString& name,
               const blockara::PropertyMap& props = {}) {
    return d->editing().addBlock(sys, type, name, props);
  }
  BKRootBD* d = nullptr;
};

TEST(BlockLibraryTest, BuiltInTypesCarryCodesParametersAndCapabilities) {
  auto& lib = BlockLibrary::instance();
  const std::pair<const char*, int> codes[] = {
      {"SubSystem", 131}, {"Inport", 66}, {"Outport", 88}, {"InportShadow", 67}, {"Goto", 56},
      {"From", 51}, {"GotoTagVisibility", 57}, {"DataStoreMemory", 22}, {"DataStoreRead", 23},
      {"DataStoreWrite", 24}, {"EventListener", 62}, {"StateReader", 123}, {"StateWriter", 125},
      {"UnitDelay", 31}, {"Integrator", 33}, {"Memory", 36}, {"DiscreteIntegrator", 68},
      {"Delay", 116}, {"DiscreteStateSpace", 156}};
  for (auto [name, code] : codes) {
    const BlockTypeInfo* type = lib.find(std::string("built-in/") + name);
    ASSERT_NE(type, nullptr) << name;
    EXPECT_EQ(type->code, code) << name;
  }
  for (const char* name : {"Chart", "Gain", "Constant", "Sum", "Product", "Scope", "Display",
                           "Terminator", "Ground", "Reference"})
    EXPECT_NE(lib.find(name), nullptr) << name;
  EXPECT_EQ(lib.find("built-in/NoSuchBlock"), nullptr);
  EXPECT_EQ(lib.find("Scope")->capability(8), 0);
  EXPECT_EQ(lib.find("Scope")->footnote("codegen"), "FnIgnoredCodeGen");
  EXPECT_EQ(lib.find("Gain")->capability(8), 1);
  EXPECT_EQ(lib.find("Inport")->params.at(6).name, "IconDisplay");
  EXPECT_EQ(lib.find("Outport")->params.at(10).name, "IconDisplay");
  EXPECT_EQ(lib.find("InportShadow")->params.at(6).name, "IconDisplay");
}

TEST(BlockLibraryTest, MalformedLibraryNamesFileAndKeepsTypes) {
  BlockLibrary lib;
  lib.loadFromString("<BlockLibrary><BlockType Name=\"A\" Code=\"1\"/></BlockLibrary>", "a.xml");
  try {
    lib.loadFromString("<BlockLibrary>\n<BlockType Name=\"B\" Code=\"x\"/></BlockLibrary>", "b.xml");
    FAIL();
  } catch (const std::runtime_error& e) {
    EXPECT_NE(std::string(e.what()).find("b.xml"), std::string::npos);
    EXPECT_NE(std::string(e.what()).find("Code"), std::string::npos);
  }
  try {
    lib.loadFromString("<BlockLibrary>\n<BlockType", "c.xml");
    FAIL();
  } catch (const std::runtime_error& e) {
    EXPECT_EQ(std::string(e.what()).rfind("c.xml:", 0), 0u) << e.what();
  }
  EXPECT_NE(lib.find("A"), nullptr);
}

TEST_F(ModelTest, PathsEscapeSlashesAndLookupsResolve) {
  BKBlock* sub = add(u"m", "SubSystem", u"a/b");
  BKBlock* gain = add(u"m/a//b", "Gain", u"g");
  EXPECT_EQ(sub->getFullPath(false), u"m/a//b");
  EXPECT_EQ(gain->getFullPath(false), u"m/a//b/g");
  EXPECT_EQ(d->findBlock(u"m/a//b/g"), gain);
  EXPECT_EQ(BKBlock::Handle2Block(gain->getHandle()), gain);
  EXPECT_EQ(BKGlue::getBlockFromHandle(gain->getHandle()), gain);
  EXPECT_EQ(BKGlue::getBlockGraph(gain), sub->getSubGraph());
  EXPECT_EQ(sub->getSubGraph()->getOwner(), sub);
  EXPECT_EQ(BKGlue::getBlockGraph(gain)->getBlockDiagram(), d);
  EXPECT_EQ(d->getRootGraph()->getOwner(), nullptr);
  EXPECT_EQ(bkBlockDiagramSet::nameToBlockDiagram(u"m"), d);
  EXPECT_EQ(bkBlockDiagramSet::nameToBlockDiagram(u"other"), nullptr);
  EXPECT_NE(gain->getHandle(), sub->getHandle());
  EXPECT_NE(gain->getHandle(), static_cast<double>(static_cast<long long>(gain->getHandle())));
  EXPECT_EQ(SIDServiceBK::findBlock(d, gain->getSID()), gain);
  EXPECT_EQ(SIDServiceBK::findBlock(d, "m:" + gain->getSID()), gain);
  EXPECT_EQ(SIDServiceBK::findBlock(d, "x"), nullptr);

  bkBlockDiagramSet::rename(d, u"n");
  EXPECT_EQ(gain->getFullPath(false), u"n/a//b/g");
  EXPECT_EQ(d->findBlock(u"n/a//b/g"), gain);
  EXPECT_EQ(d->findBlock(u"m/a//b/g"), nullptr);
}

TEST_F(ModelTest, IteratorsWalkLevelAndTreeInOrder) {
  add(u"m", "SubSystem", u"s");
  add(u"m/s", "Gain", u"g1");
  add(u"m/s", "Chart", u"c");
  add(u"m/s/c", "SubSystem", u"state", {{"SubsystemType", 8.0}});
  add(u"m", "Constant", u"k");
  std::vector<bksvString> level;
  for (BKBlock* b : bkgg::graphicalBlocksOf(d->getRootGraph(), 1)) level.push_back(b->getName());
  EXPECT_EQ(level, (std::vector<bksvString>{u"s", u"k"}));
  std::vector<bksvString> tree;
  GraphicalBlockIterator it(d->getRootGraph());
  while (BKBlock* b = it.advance()) tree.push_back(b->getFullPath(false));
  EXPECT_EQ(tree, (std::vector<bksvString>{u"m/s", u"m/s/g1", u"m/s/c", u"m/s/c/state", u"m/k"}));
  BKBlock* state = d->findBlock(u"m/s/c/state");
  EXPECT_TRUE(BKGlue::isChartelleBlock(d->findBlock(u"m/s/c")));
  EXPECT_FALSE(BKGlue::isChartelleBlock(state));
  EXPECT_TRUE(state->IsChartelleBased());
  EXPECT_EQ(SubsystemBlock::getSubsystemType(state), 8);
  EXPECT_TRUE(BKGlue::isChartelleBlock(BKGlue::getBlockGraph(state)->getOwner()));
}

TEST_F(ModelTest, HostQueriesReadParametersAndProperties) {
  BKBlock* in = add(u"m", "Inport", u"in", {{"IconDisplay", std::string("Signal name")}});
  BKBlock* out = add(u"m", "Outport", u"out");
  BKBlock* go = add(u"m", "Goto", u"go", {{"GotoTag", std::string("T")}, {"TagVisibility", std::string("scoped")}});
  BKBlock* from = add(u"m", "From", u"from", {{"GotoTag", std::string("T")}});
  BKBlock* sub = add(u"m", "SubSystem", u"s",
                     {{"Variant", true}, {"TreatAsAtomicUnit", std::string("on")},
                      {"FunctionPackaging", std::string("Reusable function")},
                      {"MaskType", std::string("MyMask")}, {"MaskParameters", 2.0},
                      {"ShowName", false}, {"Orientation", std::string("left")},
                      {"LinkStatus", std::string("resolved")}, {"ReferenceBlock", std::string("lib/x")},
                      {"StateData", BlockRecordList{{{"name", "x"}, {"scope", "Local"}}}}});
  BKBlock* delay = add(u"m/s", "UnitDelay", u"d");
  BKBlock* reader = add(u"m/s", "StateReader", u"r", {{"StateOwnerBlock", std::string("../s/d")}});
  EXPECT_EQ(in->getGrEnumPrmValue(6), 1);
  EXPECT_EQ(out->getGrEnumPrmValue(10), 0);
  EXPECT_EQ(in->getGrEnumPrmValue(0), -1);
  EXPECT_EQ(GotoBlk::sGetGotoBlockTagVisibilityFromBlockParam(go), 1);
  EXPECT_EQ(BKBlock::getGrParamValue(go, 0, 0), "T");
  EXPECT_EQ(FromBlk::GetTag(from), "T");
  EXPECT_TRUE(SubsystemBlock::IsVariantSubsystem(sub));
  EXPECT_TRUE(SubsystemBlock::determineIsAtomicUnit(sub));
  EXPECT_TRUE(SubsystemBlock::IsSetAsReusableFunction(sub));
  EXPECT_FALSE(SubsystemBlock::IsCodeAuto(sub));
  ASSERT_NE(sub->getMask(), nullptr);
  EXPECT_EQ(sub->getMask()->type, u"MyMask");
  EXPECT_EQ(sub->getMask()->parameterCount, 2);
  EXPECT_EQ(in->getMask(), nullptr);
  EXPECT_EQ(sub->getPlatformFlags() & 0x2u, 0u);
  EXPECT_EQ(in->getPlatformFlags() & 0x2u, 0x2u);
  EXPECT_EQ(sub->getGrOrientation(), 2);
  EXPECT_TRUE(BKRootBlockPlatformInfo::getGrBlockIsLinked(sub));
  EXPECT_EQ(BKRootBlockPlatformInfo::getReferenceBlock(sub, -1), u"lib/x");
  EXPECT_EQ(BKRootBlockPlatformInfo::getReferenceBlock(in, -1), u"");
  EXPECT_EQ(bkobject::block::getParamAsStr(sub, "StateData"), "name=x,scope=Local");
  EXPECT_THROW(bkobject::block::getParamAsStr(in, "Nope"), bkHostException);
  EXPECT_EQ(BlockAccess::AccessUtil::convertRelativePathToFullPath(reader, u"../s/d"), u"m/s/d");
  EXPECT_EQ(BlockAccess::AccessorInterface::getResourceOwnerBlockHandle(reader), delay->getHandle());
  EXPECT_EQ(bcstCapSupports(in, 9), 1);
  const BKPrmDesc* desc = sub->getGrPrmDesc("StateData");
  ASSERT_NE(desc, nullptr);
  EXPECT_EQ(desc->typeCode, BKPRM_RECORDS);
  EXPECT_EQ(sub->getGrPrmDesc("Missing"), nullptr);
}

TEST_F(ModelTest, EditParamsAndConfigurationSets) {
  EXPECT_FALSE(d->auditorModeOn());
  d->setAuditorMode(true);
  EXPECT_EQ(bkBlockDiagramEditParams::get(d).flags & 0x80000u, 0x80000u);
  EXPECT_EQ(bkobject::blockDiagram::getParamAsStr(d, "UniqueDataStoreMsg"), "none");
  EXPECT_TRUE(BDConfigSetInfo::get(d).getActiveSetObject()->hasProp("UniqueDataStoreMsg"));
  EXPECT_THROW(bkobject::blockDiagram::getParamAsStr(d, "NoSuchParam"), bkHostException);
  d->removeConfigSet();
  EXPECT_THROW(BDConfigSetInfo::get(d).getActiveSetObject(), NoActiveConfigSet);
  EXPECT_THROW(d->editing().setModelParam("X", std::string("1")), NoActiveConfigSet);
}

TEST_F(ModelTest, DiagramNamesAreValidated) {
  EXPECT_THROW(bkBlockDiagramSet::create(u"m"), std::invalid_argument);
  EXPECT_THROW(bkBlockDiagramSet::create(u""), std::invalid_argument);
  EXPECT_THROW(bkBlockDiagramSet::create(u"a/b"), std::invalid_argument);
  BKRootBD* lib = bkBlockDiagramSet::create(u"lib", BKRootBD::Library);
  EXPECT_TRUE(lib->isLibrary());
  EXPECT_EQ(bkBlockDiagramSet::all().size(), 2u);
}

}  // namespace
