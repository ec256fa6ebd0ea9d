// Edit latency in the program's own timer mode (periodic), on a generated nested diagram with
// every system on view and every check selected: 10 x 10 subsystems, the blocks spread over the
// 100 leaves, five Goto and five From in each leaf (1,000 routing blocks). The main loop is
// pumped here as the program pumps it. The last line of output is
//   blocks=N main_edit_us_p50=X snapshot_us_p50=X glow_us_p50=X glow_us_p99=X handoff_us_p50=X
//   recheck_ratio=X scan_ms=X max_slice_ms=X idle_cpu_pct=X engine_bytes_per_block=X
//   host_bytes_per_block=X
// Before it, `edits=N heap_growth_bytes=X engine_bytes=X kept_blocks=N`: what the heap grew by over
// the edits, and the engine's whole heap with the number of blocks it keeps between passes (runs
// with different --routing give the cost of one kept block apart from the diagram's fixed part);
// then `handoff_after_work_us_p50=X`: the bare hand-off when the waking thread was busy and the
// woken one idle, as each of the road's hand-offs is.
// Options: --blocks N (default 100000), --edits N (default 1000), --idle-seconds S (default 10),
// --routing N (Goto/From pairs in each leaf, default 5; 0 shows the engine's cost without kept
// blocks).
#include <malloc.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <filesystem>
#include <future>
#include <fstream>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "app/luaapi.h"
#include "bench/selectedchecks.h"
#include "host/language/luahost.h"
#include "host/model/bkgraph.h"
#include "host/model/bkrootbd.h"
#include "host/model/diagramediting.h"
#include "host/prefs/directories.h"
#include "host/prefs/edittimepreferences.h"
#include "host/runtime/eventloop.h"
#include "host/studio/studioapp.h"
#include "host/style/styler.h"
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

using Clock = std::chrono::steady_clock;

double microsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

double percentile(std::vector<double> values, double p) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  const auto at = static_cast<std::size_t>(p * static_cast<double>(values.size() - 1) + 0.5);
  return values[std::min(at, values.size() - 1)];
}

std::size_t heapInUse() { return mallinfo2().uordblks + mallinfo2().hblkhd; }

double cpuSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

void writeCustomization(const std::filesystem::path& prefs) {
  std::filesystem::create_directories(prefs);
  std::ofstream file(prefs / "edittimecheckcustomization.xml");
  file << "<RAConfiguration><CheckCellArray>";
  for (const char* id : bench::kSelectedChecks) {
    file << "<Check><ID>" << id << "</ID><Selected>true</Selected><InputParameters>"
         << "<InputParameter Name=\"Regular expression for prohibited names:\">"
         << "<Value>[ !]</Value></InputParameter>";
    // The supported types, so that the blocks of the diagram have no standing finding.
    if (std::string(id) == "orvanta.bkci.UnsupportedBlocks") {
      file << "<InputParameter Name=\"Block type list\"><Value><T>Gain</T><T>Goto</T>"
           << "<T>From</T><T>SubSystem</T></Value></InputParameter>";
    }
    file << "</InputParameters></Check>";
  }
  file << "</CheckCellArray></RAConfiguration>";
}

bksvString u16(const std::string& s) { return i18n::to_u16string(s); }

// The diagram: 10 subsystems of 10 subsystems; the leaves share the blocks.
BKRootBD* generate(int blocks, int routingPairs, std::vector<bksvString>& systems,
                   std::vector<bksvString>& gains) {
  const bksvString name = u"latency";
  BKRootBD* d = bkBlockDiagramSet::create(name, BKRootBD::Model);
  d->setAuditorMode(true);
  d->editing().setUndoDepth(0);
  auto& e = d->editing();
  blockara::EditBatch batch(*d);
  systems.push_back(name);
  const int perLeaf = std::max(12, (blocks - 110) / 100);
  for (int i = 0; i < 10; ++i) {
    const bksvString top = name + u"/s" + u16(std::to_string(i));
    e.addBlock(name, "SubSystem", u"s" + u16(std::to_string(i)));
    systems.push_back(top);
    for (int j = 0; j < 10; ++j) {
      const bksvString leaf = top + u"/t" + u16(std::to_string(j));
      e.addBlock(top, "SubSystem", u"t" + u16(std::to_string(j)));
      systems.push_back(leaf);
      for (int k = 0; k < routingPairs; ++k) {
        const std::string tag = "T" + std::to_string(i) + "_" + std::to_string(j) + "_" + std::to_string(k);
        e.addBlock(leaf, "Goto", u"go" + u16(std::to_string(k)), {{"GotoTag", tag}});
        e.addBlock(leaf, "From", u"from" + u16(std::to_string(k)), {{"GotoTag", tag}});
      }
      for (int k = 10; k < perLeaf; ++k) {
        const bksvString gain = u"g" + u16(std::to_string(k));
        e.addBlock(leaf, "Gain", gain);
        if (k < 20) gains.push_back(leaf + u"/" + gain);
      }
    }
  }
  return d;
}

// Pumps the main loop as the program does until `done` holds; returns the longest step in ms.
template <typename Done>
double pumpUntil(Done done) {
  blockara::EventLoop& loop = blockara::EventLoop::instance();
  double longest = 0;
  while (!done()) {
    const auto start = Clock::now();
    if (loop.pumpOnce()) {
      longest = std::max(longest, microsSince(start) / 1000);
    } else {
      loop.waitForPosted(std::chrono::milliseconds(1));
    }
  }
  return longest;
}

// A bare hand-off: wake a thread through a condition variable and wait for its answer. With
// `busyMicros` this thread works that long before each round while the other one sleeps, as on
// the edit road, where a busy thread (the edit, the pass) wakes one that has been idle.
double handoffMicros(int rounds, int busyMicros = 0) {
  std::mutex mutex;
  std::condition_variable cv;
  int asked = 0, answered = 0;
  std::thread other([&] {
    std::unique_lock lock(mutex);
    for (int i = 1; i <= rounds; ++i) {
      cv.wait(lock, [&] { return asked >= i; });
      answered = i;
      cv.notify_all();
    }
  });
  std::vector<double> times;
  for (int i = 1; i <= rounds; ++i) {
    const auto busyUntil = Clock::now() + std::chrono::microseconds(busyMicros);
    while (Clock::now() < busyUntil) {
    }
    const auto start = Clock::now();
    std::unique_lock lock(mutex);
    asked = i;
    cv.notify_all();
    cv.wait(lock, [&] { return answered >= i; });
    times.push_back(microsSince(start));
  }
  other.join();
  return percentile(times, 0.5);
}

int run(int blocks, int routingPairs, int edits, int idleSeconds) {
  blockara::EventLoop::instance().adoptCurrentThread();
  bk::bkedittimecheck::bkutils::setShowEditTimeIssues(true);
  const auto prefs = std::filesystem::temp_directory_path() / "bketc_edit_latency";
  writeCustomization(prefs);
  svSetPreferencesDirectory(prefs.string());
  svSetNumeriaRoot(BKETC_RESOURCE_DIR);
  initialize_module();
  blockara::LuaHost lua(blockara::LuaHostOptions{std::filesystem::path(BKETC_RESOURCE_DIR), {}, true});
  // The program's scripting API: the engine's questions to the host language (the missing
  // variables) then run the program's own code.
  blockara::app::installLuaApi(lua);
  AsyncTaskManager::instance();

  std::vector<bksvString> systems, gains;
  const std::size_t heapBefore = heapInUse();
  BKRootBD* d = generate(blocks, routingPairs, systems, gains);
  const std::size_t hostBytes = heapInUse() - heapBefore;
  const std::size_t hostBlocks = d->blocksInPathOrder().size();

  // The measurements' own room, taken before the engine's share is counted.
  std::vector<double> mainEdit, glow;
  mainEdit.reserve(static_cast<std::size_t>(edits));
  glow.reserve(static_cast<std::size_t>(edits));

  // Opening: the engine registers, every system goes on view, the scan runs to rest.
  lua_gc(lua.state(), LUA_GCCOLLECT);
  const std::size_t heapBeforeEngine = heapInUse();
  const auto scanStart = Clock::now();
  RegisterEditBdEvents(d);
  RegisterCompBdEvents(d->getCompBD());
  RegisterExecPlugins(d->getExecBD());
  Blockara::StudioApp::open(d)->openEditors(systems);
  d->notifyOpened();
  const double maxSliceMs = pumpUntil([] { return isQuiescent() && !blockara::EventLoop::instance().hasLocalWork(); });
  const double scanMs = microsSince(scanStart) / 1000;
  auto engine = EditTimeController::instance().findEngine(toWide(d->getName()));
  const std::size_t keptBlocks = std::max<std::size_t>(1, bkEditBDProbe(*engine->getData()).blocks().size());
  lua_gc(lua.state(), LUA_GCCOLLECT);  // garbage of the host language is nobody's memory
  const std::size_t engineBytes = heapInUse() - heapBeforeEngine;

  // Edits: a rename to a prohibited name and back, each until the glow follows.
  diagram::style::Styler* styler = createEditTimeStyler();
  for (int i = 0; i < edits; ++i) {
    const bksvString& path = gains[static_cast<std::size_t>(i / 2) % gains.size()];
    const bool bad = i % 2 == 0;
    const bksvString from = bad ? path : path + u" !";
    const bksvString name = path.substr(path.rfind(u'/') + 1);
    const auto start = Clock::now();
    d->editing().renameBlock(from, bad ? name + u" !" : name);
    mainEdit.push_back(microsSince(start));
    const double handle = d->findBlock(bad ? path + u" !" : path)->getHandle();
    const auto giveUp = Clock::now() + std::chrono::seconds(2);
    pumpUntil([&] { return styler->classesOf(handle).empty() != bad || Clock::now() > giveUp; });
    if (Clock::now() > giveUp) {
      std::fprintf(stderr, "edit_latency: edit %d: the glow did not follow within 2 s\n", i);
      for (const auto& v : engine->getViolations()->violationsOf(handle)) {
        std::fprintf(stderr, "  the block has %s %s\n", v.checkId.c_str(), v.violationType.c_str());
      }
      return 1;
    }
    glow.push_back(microsSince(start));
  }
  // Every edit above was undone by the next, so the engine should hold what it held after the scan.
  lua_gc(lua.state(), LUA_GCCOLLECT);
  const double heapGrowth = static_cast<double>(heapInUse()) - static_cast<double>(heapBeforeEngine + engineBytes);
  std::printf("edits=%d heap_growth_bytes=%.0f engine_bytes=%zu kept_blocks=%zu\n", edits,
              heapGrowth, engineBytes, keptBlocks);

  // The snapshot of one block with its rule-tool part.
  std::vector<double> snapshot;
  for (const bksvString& path : gains) {
    BKBlock* b = d->findBlock(path);
    const auto start = Clock::now();
    auto s = std::make_shared<bkEditBlock>(b, true);
    snapshot.push_back(microsSince(start));
  }

  // A full re-check of the diagram per edit, as a batch linter does: every selected check over a
  // snapshot of every block, on a thread of its own while the worker is idle and this thread
  // answers the host-language questions of the missing-variable check.
  AlgorithmTable& table = engine->getAlgorithmTable();
  std::vector<std::shared_ptr<EditTimeAlgorithms>> checks;
  table.setEventObserver([&](int, bool, std::size_t) {
    checks.assign(table.pendingAlgorithms.begin() + 2, table.pendingAlgorithms.end());
  });
  d->editing().setProperties(gains.front(), {{"Gain", std::string("3")}});
  table.setEventObserver({});
  pumpUntil([] { return isQuiescent() && !blockara::EventLoop::instance().hasLocalWork(); });
  std::map<double, std::shared_ptr<bkEditBlock>> all;
  const auto recheckStart = Clock::now();
  for (BKBlock* b : d->blocksInPathOrder()) all[b->getHandle()] = std::make_shared<bkEditBlock>(b, true);
  auto kept = bkEditBDProbe(*engine->getData()).blocks();
  bkEditBDProbe(*engine->getData()).replaceBlocks(all);
  const CheckContext context{engine->getData(), engine->getViolations(), engine->getCheckSelector(),
                             engine->getConfiguration()};
  auto recheck = std::async(std::launch::async, [&] {
    for (const auto& check : checks) check->runCheck(context);
  });
  pumpUntil([&] { return recheck.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
  recheck.get();
  const double recheckUs = microsSince(recheckStart);
  bkEditBDProbe(*engine->getData()).replaceBlocks(kept);

  // Idle: nothing to do for a while; what does the process spend?
  const double cpuBefore = cpuSeconds();
  std::this_thread::sleep_for(std::chrono::seconds(idleSeconds));
  const double idlePct = idleSeconds > 0 ? 100 * (cpuSeconds() - cpuBefore) / idleSeconds : 0;

  const double glowP50 = percentile(glow, 0.5);
  // The plain hand-off first: busy work just before it slows it on some machines.
  const double handoff = handoffMicros(1000);
  std::printf("handoff_after_work_us_p50=%.1f\n", handoffMicros(1000, 100));
  std::printf(
      "blocks=%zu main_edit_us_p50=%.1f snapshot_us_p50=%.2f glow_us_p50=%.0f glow_us_p99=%.0f "
      "handoff_us_p50=%.1f recheck_ratio=%.0f scan_ms=%.0f max_slice_ms=%.1f idle_cpu_pct=%.2f "
      "engine_bytes_per_block=%.0f host_bytes_per_block=%.0f\n",
      hostBlocks, percentile(mainEdit, 0.5), percentile(snapshot, 0.5), glowP50,
      percentile(glow, 0.99), handoff, recheckUs / std::max(glowP50, 1.0), scanMs, maxSliceMs,
      idlePct, static_cast<double>(engineBytes) / static_cast<double>(keptBlocks),
      static_cast<double>(hostBytes) / static_cast<double>(hostBlocks));
  std::fflush(stdout);
  std::_Exit(0);  // the diagram's teardown is not what is measured
}

}  // namespace
}  // namespace bkedittimecheck

int main(int argc, char** argv) {
  int blocks = 100'000, routing = 5, edits = 1000, idle = 10;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string flag = argv[i];
    if (flag == "--blocks") blocks = std::stoi(argv[i + 1]);
    if (flag == "--edits") edits = std::stoi(argv[i + 1]);
    if (flag == "--idle-seconds") idle = std::stoi(argv[i + 1]);
    if (flag == "--routing") routing = std::stoi(argv[i + 1]);
  }
  return bkedittimecheck::run(blocks, routing, edits, idle);
}
