// The layout checks and the block list checks on small diagrams in the reference host: exactly
// the records each adds and removes, and what each leaves alone.
#include <gtest/gtest.h>

#include "tests/src/roadfixture.h"

namespace bkedittimecheck::testing {
namespace {

class LayoutAndListChecksTest : public RoadFixture {
 protected:
  static std::string list(const std::string& id, const std::string& treatAs,
                          const std::string& entries) {
    return "<Check><ID>" + id +
           "</ID><Selected>true</Selected><InputParameters>"
           "<InputParameter Name=\"Treat blocktype list as\"><Value>" +
           treatAs + "</Value></InputParameter><InputParameter Name=\"Block type list\"><Value>" +
           entries + "</Value></InputParameter></InputParameters></Check>";
  }
};

TEST_F(LayoutAndListChecksTest, LayoutChecksLookAtNameSideOrientationAndPortIcons) {
  runCases({
      {"name on the alternate side, shown only",
       check("orvanta.kabe.kb_0401"),
       placing({"a Gain NamePlacement=alternate", "b Gain NamePlacement=alternate ShowName=off",
                "c Gain"}),
       {"/a|orvanta.kabe.kb_0401|BlockNamePosition|3"}},
      {"a turned subsystem, not a turned gain",
       check("orvanta.kabe.kb_0403"),
       placing({"s SubSystem Orientation=down", "g Gain Orientation=down", "t SubSystem"}),
       {"/s|orvanta.kabe.kb_0403|BlockOrientation|3"}},
      {"port icons other than the number; kind 67 is not looked at",
       check("orvanta.kabe.kb_0404"),
       placing({"i Inport IconDisplay=Signal name",
                "o Outport IconDisplay=Port number and signal name",
                "sh InportShadow IconDisplay=Signal name", "fine Inport"}),
       {"/i|orvanta.kabe.kb_0404|PortBlockIconDisplay|3",
        "/o|orvanta.kabe.kb_0404|PortBlockIconDisplay|3"}},
  });
}

TEST_F(LayoutAndListChecksTest, ListChecksMatchTypeAndMaskType) {
  runCases({
      {"prohibited plain Gain: a masked Gain is not listed",
       list("orvanta.kabe.kb_0407", "Prohibited", "<T>Gain</T><T MaskType=\"M\">Constant</T>"),
       placing({"g Gain", "mg Gain MaskType=M", "c Constant", "mc Constant MaskType=M"}),
       {"/g|orvanta.kabe.kb_0407|ProhibitedBlocks|3",
        "/mc|orvanta.kabe.kb_0407|ProhibitedBlocks|3"}},
      {"allowed list: everything else violates",
       list("orvanta.kabe.kb_0407", "Allowed", "<T>Gain</T>"),
       placing({"g Gain", "mg Gain MaskType=M"}),
       {"/mg|orvanta.kabe.kb_0407|ProhibitedBlocks|3"}},
      {"'allowed' in lower case means prohibited",
       list("orvanta.kabe.kb_0408", "allowed", "<T>Scope</T>"),
       placing({"s Scope", "t Terminator"}),
       {"/s|orvanta.kabe.kb_0408|ProhibitedSinks|3"}},
      {"code inspection: supported list; Reference never, environment controller always",
       list("orvanta.bkci.UnsupportedBlocks", "", "<T>Gain</T><T>SubSystem</T>"),
       placing(
           {"g Gain", "s Scope", "r Reference", "env SubSystem MaskType=Environment Controller"}),
       {"/env|orvanta.bkci.UnsupportedBlocks|BKCIUnsupportedBlocks|3",
        "/s|orvanta.bkci.UnsupportedBlocks|BKCIUnsupportedBlocks|3"}},
      // A Scope has a known footnote: supported. "Unknown" has an unknown one, and support 8 is 0.
      {"code generation support from capabilities and footnotes",
       check("orvanta.codegen.PCGSupport"),
       placing({"g Gain", "nc NoCodegen", "nd NoDeploy", "sc Scope", "unk Unknown"}),
       {"/nc|orvanta.codegen.PCGSupport|CodeGenSupport|3",
        "/nd|orvanta.codegen.PCGSupport|ProductionCodeDeployement|3",
        "/unk|orvanta.codegen.PCGSupport|CodeGenSupport|3"}},
  });
}

TEST_F(LayoutAndListChecksTest, LeftAloneBlocksKeepTheirRecordsAndScopeChangesRemoveThem) {
  writeCustomization(
      check("orvanta.kabe.kb_0403") +
      check("orvanta.kabe.kb_0406", {{"Regular expression for prohibited names:", {"s"}}}));
  BKRootBD* d = openAuditor(u"m");
  ASSERT_TRUE(settle());
  BKBlock* s = place(d, u"m", "SubSystem", u"s", {{"Orientation", std::string("left")}});
  ASSERT_TRUE(settle());
  EXPECT_EQ(records(u"m"), (Lines{"m/s|orvanta.kabe.kb_0403|BlockOrientation|3",
                                  "m/s|orvanta.kabe.kb_0406|SubsystemNameViolation|3"}));
  EXPECT_EQ(classes(d), (std::map<std::string, std::string>{{"m/s", "Warn"}}));
  // The canvas shows it: the engine activated the styler, so the class's glow is drawn.
  EXPECT_TRUE(diagram::style::glowOf(s->getHandle()));

  // Becoming a function takes the subsystem out of the name check's hands: its record stays.
  // Turning it back right clears the orientation record.
  d->editing().setProperties(u"m/s",
                             {{"IsBlockaraFunction", true}, {"Orientation", std::string("right")}});
  ASSERT_TRUE(settle());
  EXPECT_EQ(records(u"m"), (Lines{"m/s|orvanta.kabe.kb_0406|SubsystemNameViolation|3"}));

  // Commenting the block out keeps the record and marks it.
  d->editing().setCommentState(u"m/s", 1);
  d->editing().setProperties(u"m/s", {{"IsBlockaraFunction", false}});
  ASSERT_TRUE(settle());
  EXPECT_EQ(records(u"m"), (Lines{"m/s|orvanta.kabe.kb_0406|SubsystemNameViolation|3|commented"}));
}

}  // namespace
}  // namespace bkedittimecheck::testing
