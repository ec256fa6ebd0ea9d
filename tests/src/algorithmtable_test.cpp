// The table of one event on the whole road: its fixed order with the repeated four, the count of
// queued checks and passes, one styling per pass, a throwing check, and an engine replaced while
// its pass waits for the worker.
#include <gtest/gtest.h>

#include <lua.hpp>

#include "host/runtime/timerthread.h"
#include "tests/src/roadfixture.h"

namespace bkedittimecheck::testing {
namespace {

using Classes = std::map<std::string, std::string>;

class AlgorithmTableTest : public RoadFixture {
 protected:
  // Counts the host language's styling calls by wrapping the installed function.
  void countStyling() {
    ASSERT_FALSE(lua->runString(
        "local S = require 'edittime.Styler'; local f = S.applyStyle; styleCalls = 0\n"
        "S.applyStyle = function(...) styleCalls = styleCalls + 1; return f(...) end"));
  }
  int styleCalls() {
    lua_getglobal(lua->state(), "styleCalls");
    const int n = static_cast<int>(lua_tointeger(lua->state(), -1));
    lua_pop(lua->state(), 1);
    return n;
  }
  // Ticks the worker and runs the main loop a fixed number of rounds, without waiting for rest:
  // for the cases that never come to rest.
  static void drain() {
    for (int i = 0; i < 20; ++i) {
      blockara::TimerThread::tickAllManual();
      blockara::EventLoop::instance().runUntilIdle();
    }
  }
};

TEST_F(AlgorithmTableTest, QueuedChecksAndPassesAreCountedAndEachPassIsStyledOnce) {
  writeCustomization(check("orvanta.kabe.kb_0404") + check("orvanta.kabe.kb_0401"));
  BKRootBD* d = openAuditor(u"m");
  ASSERT_TRUE(settle());
  countStyling();
  auto engine = engineOf(u"m");
  d->editing().addBlock(u"m", "Inport", u"i");
  const std::int64_t before = engine->queuedCount();
  d->editing().setProperties(u"m/i", {{"IconDisplay", std::string("Signal name")}});
  // RemoveBlock, Setup, the missing-variable check, kb_0401, kb_0404 twice and the four
  // cross-block checks: ten more queued, all in one pass.
  EXPECT_EQ(engine->queuedCount(), before + 10);
  EXPECT_TRUE(engine->hasUnstyledPasses());
  // A second edit before the worker ran joins the same pass.
  d->editing().setProperties(u"m/i", {{"NamePlacement", std::string("alternate")}});
  EXPECT_EQ(engine->queuedCount(), before + 20);
  ASSERT_TRUE(settle());  // at rest: nothing queued, every pass styled
  EXPECT_EQ(styleCalls(), 1);
  // Two runs of kb_0404 in the pass, one record.
  EXPECT_EQ(records(u"m"), (Lines{"m/i|orvanta.kabe.kb_0401|BlockNamePosition|3",
                                  "m/i|orvanta.kabe.kb_0404|PortBlockIconDisplay|3"}));
  EXPECT_EQ(classes(d), (Classes{{"m/i", "Warn"}}));
  d->editing().setProperties(u"m/i", {{"NamePlacement", std::string("normal")}});
  ASSERT_TRUE(settle());
  EXPECT_EQ(styleCalls(), 2);
}

TEST_F(AlgorithmTableTest, AThrowingCheckLeavesItsPassAndTheEngineUnstyled) {
  writeCustomization(
      check("orvanta.kabe.kb_0401") +
      check("orvanta.kabe.kb_0402", {{"Regular expression for prohibited names:", {"[unclosed"}}}));
  BKRootBD* d = openAuditor(u"m");
  drain();
  auto engine = engineOf(u"m");
  countStyling();
  place(d, u"m", "Gain", u"g", {{"NamePlacement", std::string("alternate")}});
  drain();
  // The name check threw before its first block; the checks around it did their work.
  EXPECT_EQ(records(u"m"), (Lines{"m/g|orvanta.kabe.kb_0401|BlockNamePosition|3"}));
  EXPECT_GT(engine->queuedCount(), 0);
  EXPECT_TRUE(engine->hasUnstyledPasses());
  EXPECT_EQ(classes(d), Classes{});
  EXPECT_FALSE(blockara::EventLoop::instance().busyReasons().empty());
  // The host is not taken down: later edits are taken and checked, never styled.
  d->editing().setProperties(u"m/g", {{"NamePlacement", std::string("normal")}});
  drain();
  EXPECT_EQ(records(u"m"), Lines{});
  EXPECT_EQ(styleCalls(), 0);
}

TEST_F(AlgorithmTableTest, AnEngineReplacedMidPassRunsNothingOfTheOldPass) {
  writeCustomization(
      check("orvanta.kabe.kb_0402", {{"Regular expression for prohibited names:", {"bad"}}}));
  BKRootBD* d = openAuditor(u"m");
  ASSERT_TRUE(settle());
  const std::uint32_t oldId = engineOf(u"m")->engineId();
  place(d, u"m", "Gain", u"bad");  // queued, not yet run
  EXPECT_GT(engineOf(u"m")->queuedCount(), 0);
  bkBlockDiagramSet::close(d);
  d = openAuditor(u"m");
  ASSERT_NE(engineOf(u"m")->engineId(), oldId);
  ASSERT_TRUE(settle());  // the old engine's items find a newer id and let the old engine go
  EXPECT_EQ(records(u"m"), Lines{});
  place(d, u"m", "Gain", u"bad");
  ASSERT_TRUE(settle());
  EXPECT_EQ(records(u"m"), (Lines{"m/bad|orvanta.kabe.kb_0402|BlockNameViolation|3"}));
  EXPECT_EQ(classes(d), (Classes{{"m/bad", "Warn"}}));
}

}  // namespace
}  // namespace bkedittimecheck::testing
