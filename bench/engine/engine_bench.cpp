// The road of an edit on generated diagrams of 10,000 and 100,000 blocks, all on view, under the
// rule auditor with every per-block check selected: the main thread's cost of a one-block edit,
// the snapshot cost per block, the worker's time for one pass of the checks over every block,
// and the time from the edit to the glow. The worker's timer runs in manual mode and the main
// loop drives it, so the last figure is the work on the road, not the timer's period. Two more
// diagrams of 1,000 routing blocks (Goto/From over 100 tags, data store memory blocks) measure
// the interactive checks' pass and their edit to glow.
#include <benchmark/benchmark.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench/selectedchecks.h"
#include "host/language/luahost.h"
#include "host/model/bkgraph.h"
#include "host/model/bkrootbd.h"
#include "host/model/diagramediting.h"
#include "host/prefs/directories.h"
#include "host/prefs/edittimepreferences.h"
#include "host/runtime/eventloop.h"
#include "host/runtime/timerthread.h"
#include "host/studio/studioapp.h"
#include "host/style/styler.h"
#include "src/algorithms/datastoreusage.h"
#include "src/algorithms/gotofromblockmismatch.h"
#include "src/algorithmtable.h"
#include "src/bkeditbd.h"
#include "src/constraints/bkeditblock.h"
#include "src/edittimecontroller.h"
#include "src/edittimeengine.h"
#include "src/hostinterface.h"
#include "src/moduleentries.h"
#include "src/presentation/edittimestyler.h"
#include "src/violationdatabase.h"
#include "src/workerthread/asynctaskmanager.h"
#include "tests/src/bkeditbdprobe.h"

namespace bkedittimecheck {
namespace {

// The host, the module and the host language, once per process.
struct Road {
  std::unique_ptr<blockara::LuaHost> lua;
  std::map<int, BKRootBD*> diagrams;

  Road() {
    blockara::EventLoop::instance().adoptCurrentThread();
    blockara::TimerThread::setDefaultMode(blockara::TimerThread::manual);
    bk::bkedittimecheck::bkutils::setShowEditTimeIssues(true);
    const auto prefs = std::filesystem::temp_directory_path() / "bketc_engine_bench";
    std::filesystem::create_directories(prefs);
    std::ofstream file(prefs / "edittimecheckcustomization.xml");
    file << "<RAConfiguration><CheckCellArray>";
    for (const char* id : bench::kSelectedChecks) {
      file << "<Check><ID>" << id << "</ID><Selected>true</Selected><InputParameters>"
           << "<InputParameter Name=\"Regular expression for prohibited names:\">"
           << "<Value>[ !]</Value></InputParameter>"
           << "<InputParameter Name=\"Block type list\"><Value><T>Gain</T></Value>"
           << "</InputParameter></InputParameters></Check>";
    }
    file << "</CheckCellArray></RAConfiguration>";
    file.close();
    svSetPreferencesDirectory(prefs.string());
    svSetNumeriaRoot(BKETC_RESOURCE_DIR);
    initialize_module();
    lua = std::make_unique<blockara::LuaHost>(
        blockara::LuaHostOptions{std::filesystem::path(BKETC_RESOURCE_DIR), {}, true});
    AsyncTaskManager::instance();
  }

  // An empty diagram registered with the module, with an editor on its root.
  static BKRootBD* open(const bksvString& name, bool auditor) {
    BKRootBD* d = bkBlockDiagramSet::create(name, BKRootBD::Model);
    d->setAuditorMode(auditor);
    d->editing().setUndoDepth(0);
    RegisterEditBdEvents(d);
    RegisterCompBdEvents(d->getCompBD());
    RegisterExecPlugins(d->getExecBD());
    Blockara::StudioApp::open(d)->openEditor(name);
    d->notifyOpened();
    return d;
  }

  // A diagram of `n` gains at its root, opened under the rule auditor and at rest.
  BKRootBD* diagram(int n) {
    if (auto it = diagrams.find(n); it != diagrams.end()) return it->second;
    const bksvString name = u"d" + i18n::to_u16string(std::to_string(n));
    BKRootBD* d = open(name, /*auditor=*/true);
    {
      blockara::EditBatch batch(*d);
      for (int i = 0; i < n; ++i) {
        d->editing().addBlock(name, "Gain", u"g" + i18n::to_u16string(std::to_string(i)));
      }
    }
    settle();
    diagrams[n] = d;
    return d;
  }

  // A diagram of 1,000 routing blocks at its root, not under the rule auditor, so that only the
  // interactive checks run: `stores` false gives 500 Goto and 500 From over 100 tags (five of
  // each a tag, all paired); true gives 1,000 data store memory blocks of distinct names.
  BKRootBD* routing(bool stores) {
    const int key = stores ? -2 : -1;
    if (auto it = diagrams.find(key); it != diagrams.end()) return it->second;
    const bksvString name = stores ? u"stores" : u"gotos";
    BKRootBD* d = open(name, /*auditor=*/false);
    {
      blockara::EditBatch batch(*d);
      for (int i = 0; i < 1000; ++i) {
        const std::string n = std::to_string(i);
        if (stores) {
          d->editing().addBlock(name, "DataStoreMemory", u"s" + i18n::to_u16string(n),
                                {{"DataStoreName", "S" + n}});
        } else {
          d->editing().addBlock(name, i % 2 ? "From" : "Goto", u"r" + i18n::to_u16string(n),
                                {{"GotoTag", "T" + std::to_string(i / 2 % 100)}});
        }
      }
    }
    settle();
    diagrams[key] = d;
    return d;
  }

  static void settle() { blockara::EventLoop::instance().runUntilQuiet(std::chrono::minutes(5)); }
};

Road& road() {
  static Road instance;
  return instance;
}

std::shared_ptr<EditTimeEngine> engineOf(BKRootBD* d) {
  return EditTimeController::instance().findEngine(toWide(d->getName()));
}

// Main thread: one property change of one block, snapshot and table included.
void BM_OneBlockEditMainThread(benchmark::State& state) {
  BKRootBD* d = road().diagram(static_cast<int>(state.range(0)));
  const bksvString path = d->getName() + u"/g7";
  double gain = 1;
  for (auto _ : state) {
    d->editing().setProperties(path, {{"Gain", std::to_string(gain += 1)}});
    state.PauseTiming();
    Road::settle();
    state.ResumeTiming();
  }
}

// Main thread: the snapshot of one block with its rule-tool part.
void BM_SnapshotPerBlock(benchmark::State& state) {
  BKRootBD* d = road().diagram(static_cast<int>(state.range(0)));
  std::vector<BKBlock*> blocks;
  for (std::size_t i = 0; i < d->getRootGraph()->size(); ++i) {
    blocks.push_back(d->getRootGraph()->blockAt(i));
  }
  for (auto _ : state) {
    for (BKBlock* b : blocks) benchmark::DoNotOptimize(std::make_shared<bkEditBlock>(b, true));
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(blocks.size()));
}

// Worker: one pass of every selected per-block check (the table's fifteen, the repeated four
// included) over a snapshot of every block. Run here on the calling thread, with the worker idle.
void BM_WorkerPassAllBlocks(benchmark::State& state) {
  BKRootBD* d = road().diagram(static_cast<int>(state.range(0)));
  auto engine = engineOf(d);
  bkEditBD& data = *engine->getData();
  std::map<double, std::shared_ptr<bkEditBlock>> snapshot;
  for (std::size_t i = 0; i < d->getRootGraph()->size(); ++i) {
    BKBlock* b = d->getRootGraph()->blockAt(i);
    snapshot[b->getHandle()] = std::make_shared<bkEditBlock>(b, true);
  }
  AlgorithmTable& table = engine->getAlgorithmTable();
  std::vector<std::shared_ptr<EditTimeAlgorithms>> checks;
  table.setEventObserver([&](int, bool, std::size_t) {
    checks.assign(table.pendingAlgorithms.begin() + 2, table.pendingAlgorithms.end());
  });
  d->editing().setProperties(d->getName() + u"/g1", {{"ShowName", true}});
  table.setEventObserver({});
  Road::settle();
  const CheckContext context{engine->getData(), engine->getViolations(),
                             engine->getCheckSelector(), engine->getConfiguration()};
  for (auto _ : state) {
    bkEditBDProbe(data).replaceBlocks(snapshot);
    for (const auto& check : checks) check->runCheck(context);
  }
  state.counters["checks"] = static_cast<double>(checks.size());
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(snapshot.size()));
  bkEditBDProbe(data).replaceBlocks({});
}

// Edit to glow: a rename to a prohibited name until the block carries its class.
void BM_EditToGlow(benchmark::State& state) {
  BKRootBD* d = road().diagram(static_cast<int>(state.range(0)));
  const bksvString dir = d->getName() + u"/";
  diagram::style::Styler* styler = createEditTimeStyler();
  static std::map<BKRootBD*, bool> named;  // whether the block has its bad name, across runs
  bool& bad = named[d];
  for (auto _ : state) {
    bad = !bad;
    d->editing().renameBlock(dir + (bad ? u"g3" : u"g 3!"), bad ? u"g 3!" : u"g3");
    Road::settle();
    const double handle = d->findBlock(dir + (bad ? u"g 3!" : u"g3"))->getHandle();
    const bool named =
        !engineOf(d)->getViolations()->violationsOfBlock(handle, "orvanta.kabe.kb_0402").empty();
    if (named != bad || styler->classesOf(handle).empty())
      state.SkipWithError("glow not as expected");
  }
}

// The block whose edit makes and clears a finding: a From moved to a tag no Goto has, or a
// store memory renamed to its neighbour's store.
struct RoutingEdit {
  bksvString path;
  const char* parameter;
  std::string bad, good;
  const char* checkId;
};

RoutingEdit routingEdit(bool stores) {
  if (stores) return {u"stores/s1", "DataStoreName", "S0", "S1", DataStoreUsage::kCheckId};
  return {u"gotos/r1", "GotoTag", "Z", "T0", GoToFromBlockMismatch::kCheckId};
}

// Worker: one pass of the cross-block check an edit of a routing block queues, over the 1,000
// routing blocks kept in the block map. Run here on the calling thread, with the worker idle
// (the missing-variable check is left out: it waits for the main thread's answer).
void BM_InteractiveWorkerPass(benchmark::State& state) {
  const bool stores = state.range(0) != 0;
  BKRootBD* d = road().routing(stores);
  auto engine = engineOf(d);
  AlgorithmTable& table = engine->getAlgorithmTable();
  std::vector<std::shared_ptr<EditTimeAlgorithms>> checks;
  table.setEventObserver([&](int, bool, std::size_t) {
    for (const auto& check : table.pendingAlgorithms) {
      if (check->getCheckId() == routingEdit(stores).checkId) checks.push_back(check);
    }
  });
  const RoutingEdit edit = routingEdit(stores);
  d->editing().setProperties(edit.path, {{edit.parameter, edit.good}});
  table.setEventObserver({});
  Road::settle();
  // Every snapshot of a routing block counts towards the limit of 1,000, so the edits that built
  // the diagram and this one have switched the Goto/From check off; it is measured as it runs
  // below the limit.
  bkEditBDProbe(*engine->getData()).resetRoutingCount();
  const CheckContext context{engine->getData(), engine->getViolations(),
                             engine->getCheckSelector(), engine->getConfiguration()};
  for (auto _ : state) {
    for (const auto& check : checks) check->runCheck(context);
  }
  state.counters["checks"] = static_cast<double>(checks.size());
  state.counters["kept_blocks"] = static_cast<double>(bkEditBDProbe(*engine->getData()).blocks().size());
}

// Edit to glow on the routing diagrams: the finding made, then cleared, each edit run until the
// block's class follows.
void BM_InteractiveEditToGlow(benchmark::State& state) {
  const bool stores = state.range(0) != 0;
  BKRootBD* d = road().routing(stores);
  const RoutingEdit edit = routingEdit(stores);
  diagram::style::Styler* styler = createEditTimeStyler();
  const double handle = d->findBlock(edit.path)->getHandle();
  bool bad = false;
  for (auto _ : state) {
    state.PauseTiming();
    bkEditBDProbe(*engineOf(d)->getData()).resetRoutingCount();  // as in the pass above
    state.ResumeTiming();
    bad = !bad;
    d->editing().setProperties(edit.path, {{edit.parameter, bad ? edit.bad : edit.good}});
    Road::settle();
    const bool found = !engineOf(d)->getViolations()->violationsOfBlock(handle, edit.checkId).empty();
    if (found != bad || styler->classesOf(handle).empty() == bad) {
      state.SkipWithError("glow not as expected");
      break;
    }
  }
  if (bad) {
    d->editing().setProperties(edit.path, {{edit.parameter, edit.good}});
    Road::settle();
  }
}

BENCHMARK(BM_InteractiveWorkerPass)->ArgName("stores")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_InteractiveEditToGlow)->ArgName("stores")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_OneBlockEditMainThread)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_SnapshotPerBlock)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WorkerPassAllBlocks)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EditToGlow)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace bkedittimecheck

BENCHMARK_MAIN();
