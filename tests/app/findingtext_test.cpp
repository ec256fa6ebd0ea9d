#include "app/findingtext.h"

#include <gtest/gtest.h>

#include "host/language/messagecatalog.h"
#include "host/model/bkrootbd.h"
#include "host/model/diagramediting.h"
#include "src/algorithms/blocknameviolation.h"

namespace blockara::app {
namespace {

class FindingTextTest : public ::testing::Test {
 protected:
  void SetUp() override {
    bkmsg::MessageCatalog::instance().load(std::string(BKETC_RESOURCE_DIR) + "/messages.xml");
  }
  void TearDown() override { bkBlockDiagramSet::closeAll(); }
};

TEST_F(FindingTextTest, EveryTextOfTheCatalogueHasItsHintAndEveryRuleItsLongForm) {
  const auto& catalog = bkmsg::MessageCatalog::instance();
  int findings = 0, rules = 0;
  for (const std::string& id : catalog.identifiers()) {
    if (id.starts_with("blockara:finding:") && !id.ends_with(".hint")) {
      ++findings;
      EXPECT_TRUE(catalog.contains(id + ".hint")) << id;
    } else if (id.starts_with("blockara:rule:") && !id.ends_with(".full")) {
      ++rules;
      EXPECT_TRUE(catalog.contains(id + ".full")) << id;
      EXPECT_NE(describeRule(id.substr(14)).shortDescription.find('.'), std::string::npos);
    }
  }
  EXPECT_EQ(findings, 27);
  EXPECT_EQ(rules, 16);
}

// The constraint guide's worked example shows the sentence of a constraint violation.
TEST_F(FindingTextTest, SentencesNameTheBlockAndTheOffendingValue) {
  BKRootBD* d = bkBlockDiagramSet::create(u"m");
  auto& e = d->editing();
  bkedittimecheck::BlockNameViolation::prohibitedNamePattern = "[^a-z]";
  struct Case {
    BKBlock* block;
    std::string type, checkId, message, hint;
  };
  const Case cases[] = {
      {e.addBlock(u"m", "From", u"in", {{"GotoTag", std::string("speed")}}), "NoMatchingGoTO",
       "c", "From block 'in' reads tag 'speed', but no Goto block writes it.",
       "Add a Goto block with tag 'speed', or correct the From block's tag."},
      {e.addBlock(u"m", "Gain", u"g 1"), "BlockNameViolation", "c",
       "Block name 'g 1' contains text that the prohibited-name pattern '[^a-z]' matches.", ""},
  };
  for (const Case& c : cases) {
    const FindingText text = describeFinding(*c.block, c.type, c.checkId);
    EXPECT_EQ(text.message, c.message);
    if (!c.hint.empty()) {
      EXPECT_EQ(text.hint, c.hint);
    }
    EXPECT_FALSE(text.hint.empty()) << c.type;
  }
  EXPECT_EQ(describeRule("orvanta.blockara.StateAccessorPathViolation").level, "error");
}

}  // namespace
}  // namespace blockara::app
