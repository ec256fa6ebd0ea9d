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
       [](BKRootBD* d) {
         place(d, u"m1", "Gain", u"a", {{"NamePlacement", std::string("alternate")}});
         place(d, u"m1", "Gain", u"b",
               {{"NamePlacement", std::string("alternate")}, {"ShowName", false}});
         place(d, u"m1", "Gain", u"c");
       },
       {"/a|orvanta.kabe.kb_0401|BlockNamePosition|3"}},
      {"a turned subsystem, not a turned gain",
       check("orvanta.kabe.kb_0403"),
       [](BKRootBD* d) {
         place(d, u"m2", "SubSystem", u"s", {{"Orientation", std::string("down")}});
         place(d, u"m2", "Gain", u"g", {{"Orientation", std::string("down")}});
         place(d, u"m2", "SubSystem", u"t");
       },
       {"/s|orvanta.kabe.kb_0403|BlockOrientation|3"}},
      {"port icons other than the number; kind 67 is not looked at",
       check("orvanta.kabe.kb_0404"),
       [](BKRootBD* d) {
         place(d, u"m3", "Inport", u"i", {{"IconDisplay", std::string("Signal name")}});
         place(d, u"m3", "Outport", u"o",
               {{"IconDisplay", std::string("Port number and signal name")}});
         place(d, u"m3", "InportShadow", u"sh", {{"IconDisplay", std::string("Signal name")}});
         place(d, u"m3", "Inport", u"fine");
       },
       {"/i|orvanta.kabe.kb_0404|PortBlockIconDisplay|3",
        "/o|orvanta.kabe.kb_0404|PortBlockIconDisplay|3"}},
  });
}

TEST_F(LayoutAndListChecksTest, ListChecksMatchTypeAndMaskType) {
  runCases({
      {"prohibited plain Gain: a masked Gain is not listed",
       list("orvanta.kabe.kb_0407", "Prohibited", "<T>Gain</T><T MaskType=\"M\">Constant</T>"),
       [](BKRootBD* d) {
         place(d, u"m1", "Gain", u"g");
         place(d, u"m1", "Gain", u"mg", {{"MaskType", std::string("M")}});
         place(d, u"m1", "Constant", u"c");
         place(d, u"m1", "Constant", u"mc", {{"MaskType", std::string("M")}});
       },
       {"/g|orvanta.kabe.kb_0407|ProhibitedBlocks|3",
        "/mc|orvanta.kabe.kb_0407|ProhibitedBlocks|3"}},
      {"allowed list: everything else violates",
       list("orvanta.kabe.kb_0407", "Allowed", "<T>Gain</T>"),
       [](BKRootBD* d) {
         place(d, u"m2", "Gain", u"g");
         place(d, u"m2", "Gain", u"mg", {{"MaskType", std::string("M")}});
       },
       {"/mg|orvanta.kabe.kb_0407|ProhibitedBlocks|3"}},
      {"'allowed' in lower case means prohibited",
       list("orvanta.kabe.kb_0408", "allowed", "<T>Scope</T>"),
       [](BKRootBD* d) {
         place(d, u"m3", "Scope", u"s");
         place(d, u"m3", "Terminator", u"t");
       },
       {"/s|orvanta.kabe.kb_0408|ProhibitedSinks|3"}},
      {"code inspection: supported list; Reference never, environment controller always",
       list("orvanta.bkci.UnsupportedBlocks", "", "<T>Gain</T><T>SubSystem</T>"),
       [](BKRootBD* d) {
         place(d, u"m4", "Gain", u"g");
         place(d, u"m4", "Scope", u"s");
         place(d, u"m4", "Reference", u"r");
         place(d, u"m4", "SubSystem", u"env",
               {{"MaskType", std::string("Environment Controller")}});
       },
       {"/env|orvanta.bkci.UnsupportedBlocks|BKCIUnsupportedBlocks|3",
        "/s|orvanta.bkci.UnsupportedBlocks|BKCIUnsupportedBlocks|3"}},
      {"code generation support from capabilities and footnotes",
       check("orvanta.codegen.PCGSupport"),
       [](BKRootBD* d) {
         place(d, u"m5", "Gain", u"g");
         place(d, u"m5", "NoCodegen", u"nc");
         place(d, u"m5", "NoDeploy", u"nd");
         place(d, u"m5", "Scope", u"sc");     // known footnote: supported
         place(d, u"m5", "Unknown", u"unk");  // unknown footnote, support 8 is 0
       },
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
