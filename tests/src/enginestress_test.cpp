// The main thread opens, edits, renames and closes diagrams while a second thread does what the
// worker does: looks engines up, drops closing engines, and ticks the worker's timer so that
// queued items run concurrently. Built with ThreadSanitizer this must stay clean; in every build
// the engine must come to rest with every pass styled.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "host/language/nvm.h"
#include "src/algorithms/removeblock.h"
#include "src/algorithms/setup.h"
#include "src/workerthread/asynctaskmanager.h"
#include "src/workerthread/threadeddataanalyzer.h"
#include "tests/src/enginefixture.h"

namespace bkedittimecheck::testing {
namespace {

class EngineStressTest : public EngineFixture {
 protected:
  void SetUp() override {
    EngineFixture::SetUp();
    // The host language's part of the styling round trip, without a script.
    nvm::Factory::getCurrentLocalMVM()->setEvaluator(
        [](const std::string& function, int, const std::vector<nxArray>& args) {
          if (function == "edittime.Styler.applyStyle") {
            EditTimeController::instance().applyStyle(fromNarrow(args.at(0).toUtf8String()),
                                                      args.at(1).getUInt32(0));
          }
          return std::vector<nxArray>{};
        });
    AsyncTaskManager::instance();  // made and started here, on the main thread
  }
  void TearDown() override {
    nvm::Factory::getCurrentLocalMVM()->setEvaluator({});
    EngineFixture::TearDown();
  }

  // Queues one pass of the two internal entries as the table would for a real check.
  static void queuePass(EditTimeEngine& engine) {
    const std::wstring& name = engine.getDiagramName();
    engine.pendingWork().addQueued(2);
    AsyncTaskManager::instance().enqueue(
        std::make_unique<ThreadedDataAnalyzer>(std::make_shared<RemoveBlock>(name, 5),
                                               engine.engineId()),
        false);
    AsyncTaskManager::instance().enqueue(
        std::make_unique<ThreadedDataAnalyzer>(std::make_shared<bkedittimecheck::Setup>(name), engine.engineId()),
        false);
  }
};

TEST_F(EngineStressTest, EditsRenamesAndClosesAgainstWorkerLookups) {
  const std::vector<std::wstring> names{L"a", L"b", L"c", L"a2", L"b2", L"c2"};
  std::atomic<bool> done{false};
  std::atomic<std::uint64_t> lookups{0};
  std::thread worker([&] {
    std::uint32_t id = 0;
    do {
      for (const std::wstring& name : names) {
        if (auto engine = EditTimeController::instance().findEngine(name)) {
          (void)engine->queuedCount();
          releaseOnMainThread(std::move(engine));
        }
        (void)EditTimeController::instance().findEditBD(name);
        (void)EditTimeController::instance().findViolationDatabase(name);
        EditTimeController::instance().forgetClosingEngine(name, ++id % 64);
        lookups.fetch_add(1);
      }
      AsyncTaskManager::instance().tick();
    } while (!done.load());
  });
  // Both threads are under way before the main thread starts editing.
  while (lookups.load() == 0) std::this_thread::yield();

  blockara::EventLoop& loop = blockara::EventLoop::instance();
  for (int round = 0; round < 120; ++round) {
    const std::u16string base = round % 3 == 0 ? u"a" : round % 3 == 1 ? u"b" : u"c";
    BKRootBD* d = open(base);
    auto& edits = d->editing();
    for (int i = 0; i < 5; ++i) {
      const std::u16string n = i18n::to_u16string(std::to_string(i));
      edits.addBlock(base, "Goto", u"go" + n);
      edits.addBlock(base, "Gain", u"g" + n);
      if (auto engine = engineOf(base)) queuePass(*engine);
      if (i % 2 == 1) edits.deleteBlock(base + u"/go" + n);
      loop.runPosted();
    }
    const std::u16string renamed = base + u"2";
    bkBlockDiagramSet::rename(d, renamed);
    controller().postNameChange(toWide(base), toWide(renamed));
    if (auto engine = engineOf(renamed)) queuePass(*engine);
    loop.runPosted();
    bkBlockDiagramSet::close(d);
    loop.runPosted();
  }
  done.store(true);
  worker.join();

  // What initialize_module registers for the program: the loop is quiet only when the engine is.
  loop.addBusyCheck("bkedittimecheck", [] { return !isQuiescent(); });
  EXPECT_TRUE(loop.runUntilQuiet(std::chrono::seconds(60)));
  EXPECT_GT(lookups.load(), 0u);
  EXPECT_TRUE(isQuiescent());
  for (const std::wstring& name : names) {
    EXPECT_FALSE(controller().findEngine(name)) << toNarrow(name);
    EXPECT_TRUE(controller().closingEnginesOf(name).empty()) << toNarrow(name);
  }
}

}  // namespace
}  // namespace bkedittimecheck::testing
