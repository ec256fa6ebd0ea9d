// The controller's rules: which codes make an engine, closing with and without passes in flight,
// renames, and the gates of the signal handlers.
#include <gtest/gtest.h>

#include "host/signals/bkplugin.h"
#include "tests/src/enginefixture.h"

namespace bkedittimecheck::testing {
namespace {

class ControllerTest : public EngineFixture {
 protected:
  static void showIssues(bool on) { bk::bkedittimecheck::bkutils::setShowEditTimeIssues(on); }
};

TEST_F(ControllerTest, OnlyCodesOneSevenTenAndFifteenCreateAnEngine) {
  showIssues(false);  // no engine from opening
  BKRootBD* d = open(u"m");
  ASSERT_FALSE(engineOf(u"m"));
  for (int code = -1; code <= 16; ++code) {
    controller().onDiagramEvent(d, code);
    EXPECT_EQ(engineOf(u"m") != nullptr, code == 1 || code == 7 || code == 10 || code == 15)
        << code;
    controller().closeEngine(L"m");
  }
  // The named entries follow the same rule: warnings on their own make nothing.
  controller().turnOnWarnings(L"m");
  controller().turnOffErrorsAndWarnings(L"m");
  controller().disableRA(L"m");
  controller().off(L"m");
  EXPECT_FALSE(engineOf(u"m"));
  controller().turnOnErrors(L"m");
  EXPECT_TRUE(engineOf(u"m"));
  // Batches never make one.
  controller().closeEngine(L"m");
  controller().processBatch(d, PluginChangeReport{}, 18);
  EXPECT_FALSE(engineOf(u"m"));
}

TEST_F(ControllerTest, CloseWithAndWithoutPassesInFlight) {
  showIssues(false);  // the engines' tables queue nothing of their own
  open(u"m");
  controller().on(L"m");
  auto first = engineOf(u"m");
  ASSERT_TRUE(first);
  controller().closeEngine(L"m");
  EXPECT_FALSE(engineOf(u"m"));
  EXPECT_TRUE(controller().closingEnginesOf(L"m").empty());

  controller().on(L"m");
  auto busy = engineOf(u"m");
  ASSERT_TRUE(busy);
  EXPECT_NE(busy->engineId(), first->engineId());
  busy->pendingWork().addQueued(1);  // a pass in flight, which more work joins
  busy->pendingWork().addQueued(1);
  EXPECT_EQ(busy->pendingWork().passCount(), 1u);
  controller().closeEngine(L"m");
  EXPECT_FALSE(engineOf(u"m"));
  ASSERT_EQ(controller().closingEnginesOf(L"m").size(), 1u);
  EXPECT_FALSE(isQuiescent());

  // A new engine under the same name is independent of the closing one: styling of its id
  // leaves the closing one waiting.
  controller().on(L"m");
  auto fresh = engineOf(u"m");
  ASSERT_TRUE(fresh);
  styleAsWorker(L"m", *fresh);
  EXPECT_EQ(controller().closingEnginesOf(L"m").size(), 1u);
  // Its own styling retires it; the worker's two items finished first.
  busy->pendingWork().finishOne();
  busy->pendingWork().finishOne();
  controller().applyStyle(L"m", busy->engineId());
  EXPECT_TRUE(controller().closingEnginesOf(L"m").empty());
  EXPECT_EQ(engineOf(u"m"), fresh);
  EXPECT_TRUE(isQuiescent());

  // The worker drops a closing engine whose item finds no live engine of its id.
  fresh->pendingWork().addQueued(1);
  controller().closeEngine(L"m");
  ASSERT_EQ(controller().closingEnginesOf(L"m").size(), 1u);
  controller().forgetClosingEngine(L"m", fresh->engineId());
  EXPECT_TRUE(controller().closingEnginesOf(L"m").empty());
  // A stray styling wraps the count of passes around: the engine stays busy until replaced.
  controller().on(L"m");
  controller().applyStyle(L"m", engineOf(u"m")->engineId());
  EXPECT_EQ(engineOf(u"m")->pendingWork().passCount(), 0xffffffffu);
  EXPECT_FALSE(isQuiescent());
}

TEST_F(ControllerTest, RenameClosesAndReopensWithANewEngineId) {
  BKRootBD* d = open(u"old");
  auto before = engineOf(u"old");
  ASSERT_TRUE(before);
  bkBlockDiagramSet::rename(d, u"new");
  controller().postNameChange(L"old", L"new");
  EXPECT_FALSE(engineOf(u"old"));
  auto after = engineOf(u"new");
  ASSERT_TRUE(after);
  EXPECT_NE(after->engineId(), before->engineId());
  EXPECT_EQ(after->getDiagramName(), L"new");
  // With the preference off the rename only closes.
  showIssues(false);
  bkBlockDiagramSet::rename(d, u"newer");
  controller().postNameChange(L"new", L"newer");
  EXPECT_FALSE(engineOf(u"new") || engineOf(u"newer"));
}

TEST_F(ControllerTest, GatesOfTheSignalHandlers) {
  // A library is checked only under the rule auditor, and has no batch handlers.
  open(u"lib", BKRootBD::Library);
  EXPECT_FALSE(engineOf(u"lib"));
  open(u"alib", BKRootBD::Library, true)->editing().addBlock(u"alib", "Goto", u"go");
  EXPECT_TRUE(engineOf(u"alib"));
  EXPECT_TRUE(takeEvents().empty());

  // A suspended diagram is left alone by the diagram events.
  BKRootBD* s = bkBlockDiagramSet::create(u"s");
  s->setSuspended(true);
  controller().onDiagramEvent(s, 1);
  EXPECT_FALSE(engineOf(u"s"));

  // During a compile, batches are dropped; the compile-side signals still act.
  BKRootBD* d = open(u"m");
  auto engine = engineOf(u"m");
  ASSERT_TRUE(engine);
  takeEvents();
  d->getCompBD()->raise(BKCE_COMPILE_BEGIN);
  EXPECT_FALSE(engine->editsEnabled());
  d->editing().addBlock(u"m", "Goto", u"go");
  EXPECT_TRUE(takeEvents().empty());
  d->getCompBD()->raise(BKCE_WORKSPACE_CHANGED);
  EXPECT_EQ(takeEvents().size(), 1u);
  d->getCompBD()->raise(BKCE_COMPILE_END);
  EXPECT_TRUE(engine->editsEnabled());
  d->editing().addBlock(u"m", "From", u"from");
  EXPECT_EQ(takeEvents().size(), 2u);  // 19 then 18
}

TEST_F(ControllerTest, TheDataStoreDiagnosticIsTakenAtStartAndByUpdateDiagnostic) {
  showIssues(false);  // no engine from opening
  BKRootBD* d = open(u"m");
  d->editing().setModelParam("UniqueDataStoreMsg", std::string("error"));
  controller().on(L"m");
  auto engine = engineOf(u"m");
  ASSERT_TRUE(engine);
  EXPECT_EQ(engine->getData()->getUniqueDataStoreMsg(), 2);
  d->editing().setModelParam("UniqueDataStoreMsg", std::string("warning"));
  EXPECT_EQ(engine->getData()->getUniqueDataStoreMsg(), 2);
  controller().updateDiagnostic(L"m");
  EXPECT_EQ(engine->getData()->getUniqueDataStoreMsg(), 1);
}

}  // namespace
}  // namespace bkedittimecheck::testing
