// The four name checks on small diagrams in the reference host: exactly the records each adds
// and removes under its pattern, its scope, and the blocks it leaves alone.
#include <gtest/gtest.h>

#include <functional>

#include "tests/src/roadfixture.h"

namespace bkedittimecheck::testing {
namespace {

using Lines = std::vector<std::string>;
using Edit = std::function<void(BKRootBD*)>;

const char* const kPattern = "Regular expression for prohibited names:";

class NameChecksTest : public RoadFixture {
 protected:
  struct Case {
    std::string what;
    std::string checks;  // the customization's Check elements
    Edit edit;
    Lines expected;
  };

  // Each case on a diagram of its own, "m<n>", so that no case sees another's blocks.
  void runCases(const std::vector<Case>& cases) {
    int n = 0;
    for (const Case& c : cases) {
      writeCustomization(c.checks);
      const std::u16string name = u"m" + i18n::to_u16string(std::to_string(++n));
      BKRootBD* d = openAuditor(name);
      ASSERT_TRUE(settle());
      c.edit(d);
      ASSERT_TRUE(settle()) << c.what;
      Lines expected;
      for (const std::string& line : c.expected) expected.push_back("m" + std::to_string(n) + line);
      EXPECT_EQ(records(name), expected) << c.what;
    }
  }

  static std::string nameCheck(const std::string& id, const std::string& pattern,
                               const std::string& masks = "graphical",
                               const std::string& links = "on") {
    return check(id, {{kPattern, {pattern}}, {"Look under masks", {masks}}, {"Follow links", {links}}});
  }
};

TEST_F(NameChecksTest, BlockNameViolationTakesShownNamesLineByLine) {
  const std::string kb0402 = "orvanta.kabe.kb_0402";
  runCases({
      {"a name with a blank", nameCheck(kb0402, "[ ]"),
       [](BKRootBD* d) {
         place(d, u"m1", "Gain", u"bad name");
         place(d, u"m1", "Gain", u"good");
       },
       {"/bad name|orvanta.kabe.kb_0402|BlockNameViolation|3"}},
      {"a hidden name is removed, not checked", nameCheck(kb0402, "[ ]"),
       [](BKRootBD* d) { place(d, u"m2", "Gain", u"bad name", {{"ShowName", false}}); }, {}},
      {"ports and plain subsystems are left to their own checks", nameCheck(kb0402, "[ ]"),
       [](BKRootBD* d) {
         place(d, u"m3", "Inport", u"in 1");
         place(d, u"m3", "Outport", u"out 1");
         place(d, u"m3", "InportShadow", u"sh 1");
         place(d, u"m3", "SubSystem", u"plain sub");
         place(d, u"m3", "SubSystem", u"masked sub", {{"MaskType", std::string("M")}});
         place(d, u"m3", "SubSystem", u"fn sub", {{"IsBlockaraFunction", true}});
       },
       {"/fn sub|orvanta.kabe.kb_0402|BlockNameViolation|3",
        "/masked sub|orvanta.kabe.kb_0402|BlockNameViolation|3"}},
      {"^ matches only the first line", nameCheck(kb0402, "^b"),
       [](BKRootBD* d) {
         place(d, u"m4", "Gain", u"a\nb");
         place(d, u"m4", "Gain", u"bx");
       },
       {"/bx|orvanta.kabe.kb_0402|BlockNameViolation|3"}},
      {"the empty pattern finds every name", nameCheck(kb0402, ""),
       [](BKRootBD* d) { place(d, u"m5", "Gain", u"g"); },
       {"/g|orvanta.kabe.kb_0402|BlockNameViolation|3"}},
      {"a linked block is skipped unless links are followed", nameCheck(kb0402, "x", "graphical", "off"),
       [](BKRootBD* d) {
         place(d, u"m6", "Gain", u"x1", {{"LinkStatus", std::string("resolved")}});
         place(d, u"m6", "Gain", u"x2");
       },
       {"/x2|orvanta.kabe.kb_0402|BlockNameViolation|3"}},
      {"a check not selected runs not", check(kb0402, {{kPattern, {"g"}}}, "false"),
       [](BKRootBD* d) { place(d, u"m7", "Gain", u"g"); }, {}},
  });
}

TEST_F(NameChecksTest, RenamingAndDeletingClearTheRecordAndTheGlow) {
  writeCustomization(nameCheck("orvanta.kabe.kb_0402", "bad"));
  BKRootBD* d = openAuditor(u"m");
  ASSERT_TRUE(settle());
  place(d, u"m", "Gain", u"bad1");
  place(d, u"m", "Gain", u"bad2");
  ASSERT_TRUE(settle());
  EXPECT_EQ(records(u"m"), (Lines{"m/bad1|orvanta.kabe.kb_0402|BlockNameViolation|3",
                                  "m/bad2|orvanta.kabe.kb_0402|BlockNameViolation|3"}));
  EXPECT_EQ(classes(d), (std::map<std::string, std::string>{{"m/bad1", "Warn"}, {"m/bad2", "Warn"}}));

  d->editing().renameBlock(u"m/bad1", u"fine");
  d->editing().deleteBlock(u"m/bad2");
  ASSERT_TRUE(settle());
  EXPECT_EQ(records(u"m"), Lines{});
  EXPECT_EQ(classes(d), (std::map<std::string, std::string>{}));
  EXPECT_EQ(engineOf(u"m")->getViolations()->blockCount(), 0u);
}

}  // namespace
}  // namespace bkedittimecheck::testing
