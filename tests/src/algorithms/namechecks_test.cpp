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
       nameCheck(kb0402, "[ ]"),
       [](BKRootBD* d) {
         place(d, u"m1", "Gain", u"bad name", {{"ShowName", false}});
       },
       {}},
      {"ports and plain subsystems are left to their own checks",
       nameCheck(kb0402, "[ ]"),
       [](BKRootBD* d) {
         place(d, u"m2", "Inport", u"in 1");
         place(d, u"m2", "Outport", u"out 1");
         place(d, u"m2", "InportShadow", u"sh 1");
         place(d, u"m2", "SubSystem", u"plain sub");
         place(d, u"m2", "SubSystem", u"masked sub", {{"MaskType", std::string("M")}});
         place(d, u"m2", "SubSystem", u"fn sub", {{"IsBlockaraFunction", true}});
       },
       {"/fn sub|orvanta.kabe.kb_0402|BlockNameViolation|3",
        "/masked sub|orvanta.kabe.kb_0402|BlockNameViolation|3"}},
      {"a linked block is skipped unless links are followed",
       nameCheck(kb0402, "x", "graphical", "off"),
       [](BKRootBD* d) {
         place(d, u"m3", "Gain", u"x1", {{"LinkStatus", std::string("resolved")}});
         place(d, u"m3", "Gain", u"x2");
       },
       {"/x2|orvanta.kabe.kb_0402|BlockNameViolation|3"}},
  });
}

TEST_F(NameChecksTest, PortSubsystemAndCodegenNameChecksTakeTheirOwnBlocks) {
  runCases({
      {"ports: whole name, hidden names too, kinds 66, 67 and 88 only",
       nameCheck("orvanta.kabe.kb_0405", "^b|p"),
       [](BKRootBD* d) {
         place(d, u"m1", "Inport", u"a\nb");  // ^ only at the whole name's start
         place(d, u"m1", "Outport", u"p1", {{"ShowName", false}});
         place(d, u"m1", "InportShadow", u"p2");
         place(d, u"m1", "Gain", u"p3");
       },
       {"/p1|orvanta.kabe.kb_0405|PortNameViolation|3",
        "/p2|orvanta.kabe.kb_0405|PortNameViolation|3"}},
      {"subsystems: plain ones, hidden names too; inlined and function ones not",
       nameCheck("orvanta.kabe.kb_0406", "s"),
       [](BKRootBD* d) {
         place(d, u"m2", "SubSystem", u"s1", {{"ShowName", false}});
         place(d, u"m2", "SubSystem", u"s2",
               {{"TreatAsAtomicUnit", true}, {"FunctionPackaging", std::string("Inline")}});
         place(d, u"m2", "SubSystem", u"s3", {{"IsBlockaraFunction", true}});
         place(d, u"m2", "SubSystem", u"s4",
               {{"TreatAsAtomicUnit", true},
                {"FunctionPackaging", std::string("Reusable function")}});
         place(d, u"m2", "Gain", u"s5");
       },
       {"/s1|orvanta.kabe.kb_0406|SubsystemNameViolation|3",
        "/s4|orvanta.kabe.kb_0406|SubsystemNameViolation|3"}},
      {"code generation names: supported or harmless footnotes only",
       nameCheck("orvanta.codegen.BlockNames", "x"),
       [](BKRootBD* d) {
         place(d, u"m3", "Gain", u"x1");
         place(d, u"m3", "NoCodegen", u"x2");  // unsupported, no footnote: left alone
         place(d, u"m3", "Harmless", u"x3");   // known footnotes: support values not read
         place(d, u"m3", "Unknown", u"x4");    // an unknown tag: left alone
         place(d, u"m3", "Blank", u"x5");      // a blank before the tag makes it unknown
         place(d, u"m3", "Gain", u"x6", {{"ShowName", false}});
       },
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
