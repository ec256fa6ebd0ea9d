// The four name checks on small diagrams in the reference host: exactly the records each adds
// and removes under its pattern, its scope, and the blocks it leaves alone.
#include <gtest/gtest.h>

#include "tests/src/roadfixture.h"

namespace bkedittimecheck::testing {
namespace {

const char* const kPattern = "Regular expression for prohibited names:";

class NameChecksTest : public RoadFixture {
 protected:
  static std::string nameCheck(const std::string& id, const std::string& pattern,
                               const std::string& masks = "graphical",
                               const std::string& links = "on") {
    return check(id,
                 {{kPattern, {pattern}}, {"Look under masks", {masks}}, {"Follow links", {links}}});
  }
};

TEST_F(NameChecksTest, BlockNameViolationTakesShownNamesLineByLine) {
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

TEST_F(NameChecksTest, PortSubsystemAndCodegenNameChecksTakeTheirOwnBlocks) {
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

TEST_F(NameChecksTest, MasksDecideTheScopeByTheirKind) {
  // m<n>/sub holds a block "x"; the subsystem's mask kind and "Look under masks" decide.
  const auto under = [](const std::string& masks, blockara::PropertyMap mask) -> Case {
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
            {}};
  };
  const blockara::PropertyMap graphicalMask{{"MaskType", std::string("M")},
                                            {"MaskParameters", 1.0}};
  const blockara::PropertyMap emptyMask{{"MaskType", std::string("M")}};
  const blockara::PropertyMap functionalMask{{"MaskType", std::string("M")},
                                             {"MaskInitialization", std::string("k=1")}};
  std::vector<Case> cases{under("all", functionalMask),
                          under("none", graphicalMask),
                          under("graphical", emptyMask),
                          under("graphical", graphicalMask),
                          under("functional", emptyMask),
                          under("functional", functionalMask),
                          under("bogus", {})};
  const char* const hit = "/sub/x|orvanta.kabe.kb_0402|BlockNameViolation|3";
  cases[0].expected = {hit};  // all: masks are not consulted
  cases[3].expected = {hit};  // graphical: a mask with parameters is looked under
  cases[4].expected = {hit};  // functional: only an initialized mask hides
  cases[6].expected = {hit};  // no mask above: an unknown word hides nothing
  runCases(cases);
}

}  // namespace
}  // namespace bkedittimecheck::testing
