#include <gtest/gtest.h>

#include "host/model/bkrootbd.h"
#include "host/model/blockqueries.h"
#include "host/model/diagramediting.h"
#include "tests/host/messageof.h"

namespace {

class ModelTest : public ::testing::Test {
 protected:
  void SetUp() override { d = bkBlockDiagramSet::create(u"m"); }
  void TearDown() override { bkBlockDiagramSet::closeAll(); }
  BKRootBD* d = nullptr;
};

TEST(BlockLibraryTest, MalformedLibraryNamesFileAndKeepsTypes) {
  BlockLibrary lib;
  lib.loadFromString("<BlockLibrary><BlockType Name=\"A\" Code=\"1\"/></BlockLibrary>", "a.xml");
  const std::string badCode = messageOf<std::runtime_error>([&] {
    lib.loadFromString("<BlockLibrary>\n<BlockType Name=\"B\" Code=\"x\"/></BlockLibrary>",
                       "b.xml");
  });
  EXPECT_NE(badCode.find("b.xml"), std::string::npos) << badCode;
  EXPECT_NE(badCode.find("Code"), std::string::npos) << badCode;
  EXPECT_EQ(messageOf<std::runtime_error>([&] {
              lib.loadFromString("<BlockLibrary>\n<BlockType", "c.xml");
            }).rfind("c.xml:", 0),
            0u);
  EXPECT_NE(lib.find("A"), nullptr);
}

TEST_F(ModelTest, DiagramNamesAndMissingConfigurationSetsAreRefused) {
  EXPECT_THROW(bkBlockDiagramSet::create(u"m"), std::invalid_argument);
  EXPECT_THROW(bkBlockDiagramSet::create(u""), std::invalid_argument);
  EXPECT_THROW(bkBlockDiagramSet::create(u"a/b"), std::invalid_argument);
  EXPECT_THROW(bkobject::blockDiagram::getParamAsStr(d, "NoSuchParam"), bkHostException);
  d->removeConfigSet();
  EXPECT_THROW(d->editing().setModelParam("X", std::string("1")), NoActiveConfigSet);
}

}  // namespace
