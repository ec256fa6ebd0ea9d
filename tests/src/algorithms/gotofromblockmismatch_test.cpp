// Goto/From pairing on small diagrams: each kind of mismatch under each visibility, the groups a
// severity selects, the order in which the store is brought up to date, and the commented Goto
// that keeps an old record.
#include "src/algorithms/gotofromblockmismatch.h"

#include "tests/src/algorithms/checkbench.h"

namespace bkedittimecheck::testing {
namespace {

class GoToFromTest : public CheckBench {
 public:
  void run(std::uint32_t severity = GoToFromBlockMismatch::kSeverity) {
    GoToFromBlockMismatch(L"m", severity).evaluate(*data, *db);
  }
};

TEST_F(GoToFromTest, MismatchesUnderEachVisibility) {
  struct Case {
    std::string what;
    Lines blocks;
    Lines expected;
  };
  const std::vector<Case> cases{
      {"a local pair in one system", {"g Goto GotoTag=A", "f From GotoTag=A"}, {}},
      {"a local Goto does not reach below, whatever visibility block stands there",
       {"s SubSystem", "g Goto GotoTag=A", "v GotoTagVisibility GotoTag=A", "s/f From GotoTag=A"},
       {"g|NoMatchingFrom|0", "s/f|NoMatchingGoTO|0"}},
      {"a scoped Goto without visibility block reaches below its system",
       {"s SubSystem", "g Goto GotoTag=A TagVisibility=scoped", "s/f From GotoTag=A"},
       {"g|NoMatchingGoToTagVisibilityBlock|1"}},
      {"a scoped Goto without visibility block does not reach a sibling system",
       {"s SubSystem", "t SubSystem", "s/g Goto GotoTag=A TagVisibility=scoped",
        "t/f From GotoTag=A"},
       {"s/g|NoMatchingFrom|0", "s/g|NoMatchingGoToTagVisibilityBlock|1", "t/f|NoMatchingGoTO|0"}},
      {"with a visibility block only it is tested against the From, not the Goto",
       {"s SubSystem", "t SubSystem", "s/g Goto GotoTag=A TagVisibility=scoped",
        "t/v GotoTagVisibility GotoTag=A", "t/f From GotoTag=A"},
       {}},
      {"a visibility block that covers nothing fails the scoped pair",
       {"s SubSystem", "t SubSystem", "s/g Goto GotoTag=A TagVisibility=scoped",
        "s/f From GotoTag=A", "t/v GotoTagVisibility GotoTag=A"},
       {"s/f|NoMatchingGoTO|0", "s/g|NoMatchingFrom|0"}},
      {"a global Goto reaches a From in any system",
       {"s SubSystem", "s/g Goto GotoTag=A TagVisibility=global", "f From GotoTag=A"},
       {}},
      {"local Gotos in different systems, each with its From",
       {"s SubSystem", "g Goto GotoTag=A", "f From GotoTag=A", "s/h Goto GotoTag=A",
        "s/e From GotoTag=A"},
       {}},
      {"a local and a global Goto in one system do not compete; two local ones do",
       {"g Goto GotoTag=A", "h Goto GotoTag=A TagVisibility=global", "f From GotoTag=A",
        "x Goto GotoTag=B", "y Goto GotoTag=B"},
       {"x|DuplicateGoTo|1", "x|NoMatchingFrom|0", "y|DuplicateGoTo|1", "y|NoMatchingFrom|0"}},
      {"two visibility blocks of one tag in one system, a third elsewhere",
       {"s SubSystem", "v GotoTagVisibility GotoTag=A", "w GotoTagVisibility GotoTag=A",
        "s/u GotoTagVisibility GotoTag=A"},
       {"v|DuplicateGoToTagVisibility|1", "w|DuplicateGoToTagVisibility|1"}},
      {"the system test is a plain substring test: 'm/a/' lies inside 'm/b/m/a/'",
       {"a SubSystem", "b SubSystem", "b/m SubSystem", "b/m/a SubSystem",
        "a/g Goto GotoTag=A TagVisibility=scoped", "b/m/a/f From GotoTag=A"},
       {"a/g|NoMatchingGoToTagVisibilityBlock|1"}},
  };
  for (const Case& c : cases) {
    build(c.blocks);
    run();
    EXPECT_EQ(records(), c.expected) << c.what;
  }
}

TEST_F(GoToFromTest, SeverityZeroAndOneSelectTheirGroups) {
  build({"g Goto GotoTag=A TagVisibility=scoped", "h Goto GotoTag=A TagVisibility=scoped"});
  run(Severity::kWarning);
  EXPECT_EQ(records(), (Lines{"g|NoMatchingFrom|0", "h|NoMatchingFrom|0"}));
  run(Severity::kError);  // the other group's records are stale now
  EXPECT_EQ(records(), (Lines{"g|DuplicateGoTo|1", "g|NoMatchingGoToTagVisibilityBlock|1",
                              "h|DuplicateGoTo|1", "h|NoMatchingGoToTagVisibilityBlock|1"}));
}

TEST_F(GoToFromTest, TheStoreIsUpdatedGotosFirstThenFromsThenVisibilityBlocks) {
  // Made in the opposite order, so that the handle order cannot explain the clears.
  build({"v GotoTagVisibility GotoTag=A", "f From GotoTag=A", "g Goto GotoTag=A"});
  run();
  std::vector<double> order;
  for (const char16_t* name : {u"g", u"f", u"v"}) order.push_back(block(name)->getHandle());
  EXPECT_EQ(db->pendingClears(), order);
}

TEST_F(GoToFromTest, ACommentedGotoKeepsItsRecordUntilNoGotoViolates) {
  build({"g Goto GotoTag=A TagVisibility=global", "h Goto GotoTag=A TagVisibility=global",
         "f From GotoTag=A", "x Goto GotoTag=B"});
  run();
  ASSERT_EQ(records(), (Lines{"g|DuplicateGoTo|1", "h|DuplicateGoTo|1", "x|NoMatchingFrom|0"}));
  // g leaves the pairing; only a removal by type reaches its record, and x holds that off.
  d->editing().setCommentState(u"m/g", 1);
  retake(block(u"g"));
  run();
  EXPECT_EQ(records(), (Lines{"g|DuplicateGoTo|1", "x|NoMatchingFrom|0"}));
  d->editing().setProperties(u"m/x", {{"GotoTag", std::string("A")}});
  retake(block(u"x"));
  run();
  EXPECT_EQ(records(), Lines{});
}

}  // namespace
}  // namespace bkedittimecheck::testing
