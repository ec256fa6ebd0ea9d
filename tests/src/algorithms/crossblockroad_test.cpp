// The cross-block checks on the whole road: the limit of routing blocks as the engine counts
// them, and the single data store check that a change of "UniqueDataStoreMsg" queues.
#include <gtest/gtest.h>

#include "src/algorithms/datastoreusage.h"
#include "tests/src/algorithms/interactiveroad.h"

namespace bkedittimecheck::testing {
namespace {

class CrossBlockRoadTest : public InteractiveRoad {};

TEST_F(CrossBlockRoadTest, GotoFromStopsPastTheThousandthRoutingBlock) {
  // 999 Froms and one Goto: the thousandth routing block still counts, and the pairs match.
  BKRootBD* d = open(u"m");
  d->editing().addBlock(u"m", "From", u"f", {{"GotoTag", std::string("A")}});
  ASSERT_TRUE(settle());
  ASSERT_EQ(all(d), (Lines{"/f|NoMatchingGoTO|0"}));
  {
    blockara::EditBatch batch(*d);
    for (int i = 1; i < 999; ++i) {
      d->editing().addBlock(u"m", "From", i18n::to_u16string("f" + std::to_string(i)),
                            {{"GotoTag", std::string("A")}});
    }
    d->editing().addBlock(u"m", "Goto", u"g", {{"GotoTag", std::string("A")}});
  }
  ASSERT_TRUE(settle());
  EXPECT_EQ(all(d), Lines{});

  // One block more, in another diagram: from the 1001st on the check leaves the diagram alone,
  // and the finding from before the limit stays.
  BKRootBD* e = open(u"n");
  e->editing().addBlock(u"n", "From", u"f", {{"GotoTag", std::string("A")}});
  ASSERT_TRUE(settle());
  {
    blockara::EditBatch batch(*e);
    for (int i = 1; i < 1000; ++i) {
      e->editing().addBlock(u"n", "From", i18n::to_u16string("f" + std::to_string(i)),
                            {{"GotoTag", std::string("A")}});
    }
    e->editing().addBlock(u"n", "Goto", u"g", {{"GotoTag", std::string("A")}});
  }
  ASSERT_TRUE(settle());
  EXPECT_EQ(all(e), (Lines{"/f|NoMatchingGoTO|0"}));
}

TEST_F(CrossBlockRoadTest, UpdateDiagnosticRunsTheDataStoreCheckAlone) {
  BKRootBD* d = open(u"m");
  d->editing().addBlock(u"m", "SubSystem", u"s");
  d->editing().addBlock(u"m", "DataStoreMemory", u"a", {{"DataStoreName", std::string("A")}});
  d->editing().addBlock(u"m/s", "DataStoreMemory", u"b", {{"DataStoreName", std::string("A")}});
  ASSERT_TRUE(settle());
  ASSERT_EQ(all(d), Lines{});  // the setting is "none"

  struct Step {
    std::string setting;
    Lines expected;
    std::map<std::string, std::string> glows;
  };
  const std::vector<Step> steps{
      {"warning",
       {"/a|DuplicateDataStoreMemoryBlocksDiagnostic|0",
        "/s/b|DuplicateDataStoreMemoryBlocksDiagnostic|0"},
       {{"/a", "Warn"}, {"/s/b", "Warn"}}},
      {"error",
       {"/a|DuplicateDataStoreMemoryBlocksDiagnostic|1",
        "/s/b|DuplicateDataStoreMemoryBlocksDiagnostic|1"},
       {{"/a", "Error"}, {"/s/b", "Error"}}},
      {"none", {}, {}},
  };
  for (const Step& step : steps) {
    takeEvents();
    // As the host language does it: the setting, then "updateDiagnostic".
    runLua("blockara.diagram('m'):setModelParam('UniqueDataStoreMsg', '" + step.setting + "')");
    ASSERT_TRUE(settle()) << step.setting;
    EXPECT_EQ(all(d), step.expected) << step.setting;
    EXPECT_EQ(glows(d), step.glows) << step.setting;
    // No table of an event ran: the check was queued on its own.
    EXPECT_EQ(takeEvents(), std::vector<Event>{}) << step.setting;
  }
}

}  // namespace
}  // namespace bkedittimecheck::testing
