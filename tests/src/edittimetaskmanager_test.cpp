// The two graph scans: one system level per cooperative slice, the next slice only after the
// styling of a pass, and tasks that outlive their engine.
#include "src/edittimetaskmanager.h"

#include <gtest/gtest.h>

#include "host/runtime/cooperativetaskmanager.h"
#include "src/edittimetaskmanagerworkspace.h"
#include "tests/src/enginefixture.h"

namespace bkedittimecheck::testing {
namespace {

using Performance::CooperativeTaskManager;
using Names = std::vector<std::string>;

class ScanTest : public EngineFixture {
 protected:
  // A root with one block and three subsystems of one block each, every level in an editor.
  BKRootBD* build(bool auditor, const std::vector<std::u16string>& editors) {
    BKRootBD* d = open(u"m", BKRootBD::Model, auditor);
    addBlocks(d, {"r Gain", "s1 SubSystem", "s1/in_s1 Gain", "s2 SubSystem", "s2/in_s2 Gain",
                  "s3 SubSystem", "s3/in_s3 Gain", "c Chart", "c/in_c Gain"});
    Blockara::StudioApp* studio = Blockara::StudioApp::open(d);
    for (const auto& path : editors) studio->openEditor(path);
    idle();
    engine = engineOf(u"m");
    data = engine->getData().get();
    takeChanged(*data);
    takeEvents();
    return d;
  }
  // A finished pass styled, then the main loop run until idle.
  void styledAndIdle() {
    styleAsWorker(L"m", *engine);
    idle();
  }
  static void idle() { blockara::EventLoop::instance().runUntilIdle(); }
  bkEditBDProbe probe() { return bkEditBDProbe(*data); }

  std::shared_ptr<EditTimeEngine> engine;
  bkEditBD* data = nullptr;
};

TEST_F(ScanTest, OneGraphPerSliceAndTheNextOnlyAfterStyling) {
  build(true, {u"m/s1", u"m/s2", u"m/s3"});
  ASSERT_EQ(probe().visibleGraphs().size(), 4u);
  // The view change scanned the root.
  ASSERT_EQ(probe().visibleGraphsDone().size(), 1u);
  ASSERT_EQ(probe().auditorGraphsDone().size(), 1u);
  EXPECT_FALSE(CooperativeTaskManager::hasPendingWork());
  for (const std::string s : {"s1", "s2", "s3"}) {
    SCOPED_TRACE(s);
    styleAsWorker(L"m", *engine);  // a finished pass: one task for each scan, in one session
    ASSERT_TRUE(engine->getTaskSession());
    EXPECT_EQ(engine->getTaskSession()->size(), 2u);
    ASSERT_TRUE(CooperativeTaskManager::processNext());  // the rule-auditor slice
    EXPECT_EQ(takeChanged(*data), Names{"in_" + s});
    EXPECT_EQ(takeEvents(), (Events{{1, false}}));
    EXPECT_EQ(probe().auditorPathsDone().count(L"m/" + fromNarrow(s)), 1u);
    ASSERT_TRUE(CooperativeTaskManager::processNext());  // the interactive slice
    EXPECT_EQ(takeChanged(*data), Names{"in_" + s});
    EXPECT_EQ(takeEvents(), (Events{{1, false}}));
    // Until the pass of the slices is styled the chain waits here, whatever the worker does.
    EXPECT_FALSE(CooperativeTaskManager::hasPendingWork());
    idle();
    EXPECT_TRUE(takeChanged(*data).empty());
  }
  EXPECT_FALSE(data->hasAuditorGraphsToScan() || data->hasVisibleGraphsToScan());
  // With every wanted graph done, styling schedules nothing.
  const auto last = engine->getDiagramTask();
  styleAsWorker(L"m", *engine);
  EXPECT_EQ(engine->getDiagramTask(), last);
  EXPECT_FALSE(CooperativeTaskManager::hasPendingWork());
}

TEST_F(ScanTest, ATwiceShownSubsystemIsWalkedOnceAndAChartNever) {
  // Without the rule auditor only the interactive scan makes tasks.
  build(false, {u"m/s1", u"m/s1", u"m/c"});
  ASSERT_EQ(probe().visibleGraphs().size(), 4u);
  // The worker first finishes the interactive checks that the opening and the edits queued.
  blockara::TimerThread::tickAllManual();
  // With both display switches off a slice's table holds only the two internal entries: it
  // queues nothing, no pass is styled, and so nothing schedules the next slice.
  engine->getAlgorithmTable().showErrors = false;
  engine->getAlgorithmTable().showWarnings = false;
  Names seen;
  for (int round = 0; round < 4; ++round) {
    styleAsWorker(L"m", *engine);
    EXPECT_FALSE(engine->getDiagramTask());
    idle();
    EXPECT_EQ(engine->queuedCount(), 0);
    EXPECT_FALSE(engine->hasUnstyledPasses() || CooperativeTaskManager::hasPendingWork());
    for (auto& name : takeChanged(*data)) seen.push_back(name);
  }
  EXPECT_EQ(seen, Names{"in_s1"});
  // The repeated graph counts in the wanted list only: the lengths keep differing, and each
  // further slice scans nothing but still runs its table.
  EXPECT_EQ(probe().visibleGraphsDone().size(), 3u);
  EXPECT_TRUE(data->hasVisibleGraphsToScan());
  takeEvents();
  styledAndIdle();
  EXPECT_TRUE(takeChanged(*data).empty());
  EXPECT_EQ(takeEvents(), (Events{{1, false}}));
}

TEST_F(ScanTest, AGraphLeavingTheViewLeavesTheDoneListAndANewOneIsScannedInTurn) {
  BKRootBD* d = build(false, {u"m/s1"});
  styledAndIdle();
  EXPECT_EQ(takeChanged(*data), Names{"in_s1"});
  // s1 goes off view, s2 comes on: s2 is next; s1 is scanned again only if it comes back.
  Blockara::StudioApp::open(d)->closeEditors(u"m/s1");
  Blockara::StudioApp::open(d)->openEditor(u"m/s2");
  idle();
  takeChanged(*data);
  styledAndIdle();
  EXPECT_EQ(takeChanged(*data), Names{"in_s2"});
  EXPECT_FALSE(data->hasVisibleGraphsToScan());
}

TEST_F(ScanTest, TheTaskLeftBehindAtCloseDoesNoHarm) {
  build(true, {u"m/s1", u"m/s2"});
  styleAsWorker(L"m", *engine);
  auto session = engine->getTaskSession();
  ASSERT_EQ(session->size(), 2u);
  std::weak_ptr<EditTimeTaskManagerWorkspace> workspace = engine->getWorkspaceTask();
  controller().closeEngine(L"m");
  // The rule-auditor task is taken out; the workspace task stays on purpose.
  EXPECT_EQ(session->size(), 1u);
  EXPECT_EQ(engine->getDiagramTask()->owner(), nullptr);
  const auto done = [&] {
    return std::pair(probe().visibleGraphsDone().size(), probe().auditorGraphsDone().size());
  };
  const auto before = done();
  idle();
  EXPECT_TRUE(workspace.expired() || !workspace.lock()->owner());  // it ran and left
  EXPECT_EQ(done(), before);
  EXPECT_TRUE(takeChanged(*data).empty() && takeEvents().empty());
  EXPECT_FALSE(engineOf(u"m"));
  // A task of a name that has no engine is valid and finishes in one slice.
  EditTimeTaskManager stale(L"gone");
  EXPECT_TRUE(stale.isValid());
  EXPECT_TRUE(stale.onProcess());
}

}  // namespace
}  // namespace bkedittimecheck::testing
