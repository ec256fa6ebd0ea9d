// The per-block checks on small diagrams in the reference host: the four name checks under
// their pattern and scope, the layout checks and the block list checks; exactly the records each
// adds and removes, and the blocks each leaves alone.
#include <gtest/gtest.h>

#include "tests/src/roadfixture.h"

namespace bkedittimecheck::testing {
namespace {

const char* const kPattern = "Regular expression for prohibited names:";

class BlockChecksTest : public RoadFixture {
 protected:
  static std::string nameCheck(const std::string& id, const std::string& pattern,
                               const std::string& masks = "graphical",
                               const std::string& links = "on") {
    return check(id,
                 {{kPattern, {pattern}}, {"Look under masks", {masks}}, {"Follow links", {links}}});
  }
  static std::string list(const std::string& id, const std::string& treatAs,
                          const std::string& entries) {
    return check(id, {{"Treat blocktype list as", {treatAs}}, {"Block type list", {entries}}});
  }
};

TEST_F(BlockChecksTest, BlockNameViolationTakesShownNamesLineByLine) {
  const std::string kb0402 = "orvanta.kabe.kb_0402";
  runCases({
      {"a hidden name is removed, not checked",
       nameCheck(kb0402, "_"),
       placing({"bad_name Gain ShowName=off"}),
       {}},
      {"ports and plain subsystems are left to their own checks",
       nameCheck(kb0402, "_"),
       placing({"in_1 Inport", "out_1 Outport", "sh_1 InportShadow", "plain_sub SubSystem",
                "masked_sub SubSystem MaskType=M", "fn_sub SubSystem IsBlockaraFunction=on"}),
       {"/fn_sub|orvanta.kabe.kb_0402|BlockNameViolation|3",
        "/masked_sub|orvanta.kabe.kb_0402|BlockNameViolation|3"}},
      {"a linked block is skipped unless links are followed",
       nameCheck(kb0402, "x", "graphical", "off"),
       placing({"x1 Gain LinkStatus=resolved", "x2 Gain"}),
       {"/x2|orvanta.kabe.kb_0402|BlockNameViolation|3"}},
  });
}

TEST_F(BlockChecksTest, PortSubsystemAndCodegenNameChecksTakeTheirOwnBlocks) {
  runCases({
      {"ports: whole name, hidden names too, kinds 66, 67 and 88 only",
       nameCheck("orvanta.kabe.kb_0405", "^b|p"),
       [](BKRootBD* d) {
         place(d, d->getName(), "Inport", u"a\nb");  // ^ only at the whole name's start
         placing({"p1 Outport ShowName=off", "p2 InportShadow", "p3 Gain"})(d);
       },
       {"/p1|orvanta.kabe.kb_0405|PortNameViolation|3",
        "/p2|orvanta.kabe.kb_0405|PortNameViolation|3"}},
      {"subsystems: plain ones, hidden names too; inlined and function ones not",
       nameCheck("orvanta.kabe.kb_0406", "s"),
       placing({"s1 SubSystem ShowName=off",
                "s2 SubSystem TreatAsAtomicUnit=on FunctionPackaging=Inline",
                "s3 SubSystem IsBlockaraFunction=on",
                "s4 SubSystem TreatAsAtomicUnit=on FunctionPackaging=Reusable function",
                "s5 Gain"}),
       {"/s1|orvanta.kabe.kb_0406|SubsystemNameViolation|3",
        "/s4|orvanta.kabe.kb_0406|SubsystemNameViolation|3"}},
      // Left alone: unsupported without footnote (x2), an unknown tag (x4), a blank before the
      // tag (x5). Known footnotes (x3) mean the support values are not read.
      {"code generation names: supported or harmless footnotes only",
       nameCheck("orvanta.codegen.BlockNames", "x"),
       placing({"x1 Gain", "x2 NoCodegen", "x3 Harmless", "x4 Unknown", "x5 Blank",
                "x6 Gain ShowName=off"}),
       {"/x1|orvanta.codegen.BlockNames|CodegenBlockNameViolation|3",
        "/x3|orvanta.codegen.BlockNames|CodegenBlockNameViolation|3"}},
  });
}

TEST_F(BlockChecksTest, MasksDecideTheScopeByTheirKind) {
  // m<n>/sub holds a block "x"; the subsystem's mask kind and "Look under masks" decide.
  const auto under = [](const std::string& masks, blockara::PropertyMap mask, bool hit) -> Case {
    return {masks,
            check("orvanta.kabe.kb_0402",
                  {{kPattern, {"x"}}, {"Look under masks", {"graphical", masks}}}),
            [mask](BKRootBD* d) {
              const std::u16string root = d->getName();
              place(d, root, "SubSystem", u"sub", mask);
              Blockara::StudioApp::open(d)->openEditor(root + u"/sub");
              d->editing().addBlock(root + u"/sub", "Gain", u"x");
              d->editing().setProperties(root + u"/sub/x", {{"Gain", std::string("2")}});
            },
            hit ? Lines{"/sub/x|orvanta.kabe.kb_0402|BlockNameViolation|3"} : Lines{}};
  };
  const blockara::PropertyMap graphical{{"MaskType", std::string("M")}, {"MaskParameters", 1.0}};
  const blockara::PropertyMap empty{{"MaskType", std::string("M")}};
  const blockara::PropertyMap functional{{"MaskType", std::string("M")},
                                         {"MaskInitialization", std::string("k=1")}};
  runCases({under("all", functional, true),  // all: masks are not consulted
            under("none", graphical, false), under("graphical", empty, false),
            under("graphical", graphical, true),  // a mask with parameters is looked under
            under("functional", empty, true),     // functional: only an initialized mask hides
            under("functional", functional, false),
            under("bogus", {}, true)});  // no mask above: an unknown word hides nothing
}

TEST_F(BlockChecksTest, LayoutChecksLookAtNameSideOrientationAndPortIcons) {
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

TEST_F(BlockChecksTest, ListChecksMatchTypeAndMaskType) {
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

TEST_F(BlockChecksTest, LeftAloneBlocksKeepTheirRecordsAndScopeChangesRemoveThem) {
  writeCustomization(check("orvanta.kabe.kb_0403") +
                     check("orvanta.kabe.kb_0406", {{kPattern, {"s"}}}));
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
