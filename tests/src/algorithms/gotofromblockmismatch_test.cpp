// Goto/From pairing on small diagrams: exactly the records of each kind of mismatch, what the
// visibility rules reach, the order in which the store is brought up to date, and the commented
// Goto that keeps an old record.
#include "src/algorithms/gotofromblockmismatch.h"

#include <gtest/gtest.h>

#include <functional>

#include "tests/src/algorithms/checkbench.h"

namespace bkedittimecheck::testing {
namespace {

using Props = blockara::PropertyMap;

Props go(const std::string& tag, const std::string& visibility) {
  return {{"GotoTag", tag}, {"TagVisibility", visibility}};
}
Props tag(const std::string& t) { return {{"GotoTag", t}}; }

class GoToFromTest : public CheckBench {
 public:
  struct Case {
    std::string what;
    std::function<void(GoToFromTest&)> build;
    Lines expected;
  };

  void run(std::uint32_t severity = 5) {
    GoToFromBlockMismatch check(L"m", severity);
    check.evaluate(*data, *db);
  }

  void runCases(const std::vector<Case>& cases) {
    for (const Case& c : cases) {
      reset();
      c.build(*this);
      snapshotAll();
      run();
      EXPECT_EQ(records(GoToFromBlockMismatch::kCheckId), c.expected) << c.what;
    }
  }
};

TEST_F(GoToFromTest, FiveKindsOfMismatchUnderEachVisibility) {
  runCases({
      {"a From without Goto, a Goto without From",
       [](GoToFromTest& t) {
         t.add(u"m", "From", u"f", tag("A"));
         t.add(u"m", "Goto", u"g", go("B", "local"));
       },
       {"/f|NoMatchingGoTO|0", "/g|NoMatchingFrom|0"}},
      {"a local pair in one system",
       [](GoToFromTest& t) {
         t.add(u"m", "Goto", u"g", go("A", "local"));
         t.add(u"m", "From", u"f", tag("A"));
       },
       {}},
      {"a local Goto does not reach below, whatever visibility block stands there",
       [](GoToFromTest& t) {
         t.add(u"m", "SubSystem", u"s");
         t.add(u"m", "Goto", u"g", go("A", "local"));
         t.add(u"m", "GotoTagVisibility", u"v", tag("A"));
         t.add(u"m/s", "From", u"f", tag("A"));
       },
       {"/g|NoMatchingFrom|0", "/s/f|NoMatchingGoTO|0"}},
      {"a scoped Goto without visibility block reaches below its system",
       [](GoToFromTest& t) {
         t.add(u"m", "SubSystem", u"s");
         t.add(u"m", "Goto", u"g", go("A", "scoped"));
         t.add(u"m/s", "From", u"f", tag("A"));
       },
       {"/g|NoMatchingGoToTagVisibilityBlock|1"}},
      {"a scoped Goto without visibility block does not reach a sibling system",
       [](GoToFromTest& t) {
         t.add(u"m", "SubSystem", u"s");
         t.add(u"m", "SubSystem", u"t");
         t.add(u"m/s", "Goto", u"g", go("A", "scoped"));
         t.add(u"m/t", "From", u"f", tag("A"));
       },
       {"/s/g|NoMatchingFrom|0", "/s/g|NoMatchingGoToTagVisibilityBlock|1",
        "/t/f|NoMatchingGoTO|0"}},
      {"with a visibility block only the visibility block is tested against the From",
       [](GoToFromTest& t) {
         t.add(u"m", "SubSystem", u"s");
         t.add(u"m", "SubSystem", u"t");
         t.add(u"m/s", "Goto", u"g", go("A", "scoped"));
         t.add(u"m/t", "GotoTagVisibility", u"v", tag("A"));
         t.add(u"m/t", "From", u"f", tag("A"));
       },
       {}},
      {"a visibility block that covers nothing: the scoped pair fails",
       [](GoToFromTest& t) {
         t.add(u"m", "SubSystem", u"s");
         t.add(u"m", "SubSystem", u"t");
         t.add(u"m/s", "Goto", u"g", go("A", "scoped"));
         t.add(u"m/s", "From", u"f", tag("A"));
         t.add(u"m/t", "GotoTagVisibility", u"v", tag("A"));
       },
       {"/s/f|NoMatchingGoTO|0", "/s/g|NoMatchingFrom|0"}},
      {"two global Gotos of one tag anywhere compete; a global Goto reaches everywhere",
       [](GoToFromTest& t) {
         t.add(u"m", "SubSystem", u"s");
         t.add(u"m", "Goto", u"g", go("A", "global"));
         t.add(u"m/s", "Goto", u"h", go("A", "global"));
         t.add(u"m/s", "From", u"f", tag("A"));
       },
       {"/g|DuplicateGoTo|1", "/s/h|DuplicateGoTo|1"}},
      {"two local Gotos in different systems, each with its From: no finding",
       [](GoToFromTest& t) {
         t.add(u"m", "SubSystem", u"s");
         t.add(u"m", "Goto", u"g", go("A", "local"));
         t.add(u"m", "From", u"f", tag("A"));
         t.add(u"m/s", "Goto", u"h", go("A", "local"));
         t.add(u"m/s", "From", u"e", tag("A"));
       },
       {}},
      {"a local and a global Goto in one system do not compete; a duplicate without From",
       [](GoToFromTest& t) {
         t.add(u"m", "Goto", u"g", go("A", "local"));
         t.add(u"m", "Goto", u"h", go("A", "global"));
         t.add(u"m", "From", u"f", tag("A"));
         t.add(u"m", "Goto", u"x", go("B", "local"));
         t.add(u"m", "Goto", u"y", go("B", "local"));
       },
       {"/x|DuplicateGoTo|1", "/x|NoMatchingFrom|0", "/y|DuplicateGoTo|1",
        "/y|NoMatchingFrom|0"}},
      {"two visibility blocks of one tag in one system, a third elsewhere",
       [](GoToFromTest& t) {
         t.add(u"m", "SubSystem", u"s");
         t.add(u"m", "GotoTagVisibility", u"v", tag("A"));
         t.add(u"m", "GotoTagVisibility", u"w", tag("A"));
         t.add(u"m/s", "GotoTagVisibility", u"u", tag("A"));
       },
       {"/v|DuplicateGoToTagVisibility|1", "/w|DuplicateGoToTagVisibility|1"}},
      {"the system test is a plain substring test: 'm/a/' is found inside 'm/b/m/a/'",
       [](GoToFromTest& t) {
         t.add(u"m", "SubSystem", u"a");
         t.add(u"m", "SubSystem", u"b");
         t.add(u"m/b", "SubSystem", u"m");
         t.add(u"m/b/m", "SubSystem", u"a");
         t.add(u"m/a", "Goto", u"g", go("A", "scoped"));
         t.add(u"m/b/m/a", "From", u"f", tag("A"));
       },
       {"/a/g|NoMatchingGoToTagVisibilityBlock|1"}},
  });
}

TEST_F(GoToFromTest, SeveritySelectsTheGroups) {
  add(u"m", "Goto", u"g", go("A", "scoped"));
  add(u"m", "Goto", u"h", go("A", "scoped"));
  snapshotAll();
  run(0);
  EXPECT_EQ(records(GoToFromBlockMismatch::kCheckId),
            (Lines{"/g|NoMatchingFrom|0", "/h|NoMatchingFrom|0"}));
  run(1);  // the pairing group is not looked at: its records are stale and go
  EXPECT_EQ(records(GoToFromBlockMismatch::kCheckId),
            (Lines{"/g|DuplicateGoTo|1", "/g|NoMatchingGoToTagVisibilityBlock|1",
                   "/h|DuplicateGoTo|1", "/h|NoMatchingGoToTagVisibilityBlock|1"}));
}

TEST_F(GoToFromTest, TheStoreIsUpdatedGotosFirstThenFromsThenVisibilityBlocks) {
  // Added in the opposite order, so that the handle order cannot explain the clears.
  add(u"m", "GotoTagVisibility", u"v", tag("A"));
  add(u"m", "From", u"f", tag("A"));
  add(u"m", "Goto", u"g", go("A", "global"));
  snapshotAll();
  run();
  EXPECT_EQ(records(GoToFromBlockMismatch::kCheckId), Lines{});
  EXPECT_EQ(cleared(), (Lines{"g", "f", "v"}));
}

TEST_F(GoToFromTest, ACommentedGotoKeepsItsRecordWhileAnotherGotoViolates) {
  BKBlock* g = add(u"m", "Goto", u"g", go("A", "global"));
  add(u"m", "Goto", u"h", go("A", "global"));
  add(u"m", "From", u"f", tag("A"));
  BKBlock* x = add(u"m", "Goto", u"x", go("B", "local"));
  snapshotAll();
  run();
  ASSERT_EQ(records(GoToFromBlockMismatch::kCheckId),
            (Lines{"/g|DuplicateGoTo|1", "/h|DuplicateGoTo|1", "/x|NoMatchingFrom|0"}));

  // g is commented out: it leaves the pairing, and h is no duplicate any more. g's own record
  // is touched only by a removal by type, which x's finding holds off.
  d->editing().setCommentState(u"m/g", 1);
  retake(g);
  run();
  EXPECT_EQ(records(GoToFromBlockMismatch::kCheckId),
            (Lines{"/g|DuplicateGoTo|1", "/x|NoMatchingFrom|0"}));

  // Once no Goto violates, the removal by type takes the commented Goto's record as well.
  d->editing().setProperties(u"m/x", tag("A"));
  retake(x);
  run();
  EXPECT_EQ(records(GoToFromBlockMismatch::kCheckId), Lines{});
}

}  // namespace
}  // namespace bkedittimecheck::testing
