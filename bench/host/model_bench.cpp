// Lookups by handle and by path on a diagram of 1,000,000 blocks: 1,000 subsystems of 999
// blocks each, built once through the edit API in one batch.
#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "host/model/bkrootbd.h"
#include "host/model/diagramediting.h"

namespace {

struct BigDiagram {
  BKRootBD* diagram = nullptr;
  std::vector<double> handles;
  std::vector<bksvString> paths;

  BigDiagram() {
    diagram = bkBlockDiagramSet::create(u"big");
    diagram->editing().setUndoDepth(0);
    blockara::EditBatch batch(*diagram);
    for (int s = 0; s < 1000; ++s) {
      bksvString sub = u"big/s" + i18n::to_u16string(std::to_string(s));
      handles.push_back(diagram->editing().addBlock(u"big", "SubSystem", sub.substr(4))->getHandle());
      paths.push_back(sub);
      for (int b = 0; b < 999; ++b) {
        bksvString name = u"g" + i18n::to_u16string(std::to_string(b));
        handles.push_back(diagram->editing().addBlock(sub, "Gain", name)->getHandle());
        paths.push_back(sub + u"/" + name);
      }
    }
  }
};

BigDiagram& big() {
  static BigDiagram instance;
  return instance;
}

void BM_Handle2Block(benchmark::State& state) {
  auto& d = big();
  std::mt19937 random(1);
  std::uniform_int_distribution<std::size_t> pick(0, d.handles.size() - 1);
  for (auto _ : state) benchmark::DoNotOptimize(BKBlock::Handle2Block(d.handles[pick(random)]));
  state.counters["blocks"] = static_cast<double>(d.diagram->blockCount());
}
BENCHMARK(BM_Handle2Block);

void BM_FindBlockByPath(benchmark::State& state) {
  auto& d = big();
  std::mt19937 random(2);
  std::uniform_int_distribution<std::size_t> pick(0, d.paths.size() - 1);
  for (auto _ : state) benchmark::DoNotOptimize(d.diagram->findBlock(d.paths[pick(random)]));
}
BENCHMARK(BM_FindBlockByPath);

void BM_GetFullPath(benchmark::State& state) {
  auto& d = big();
  std::mt19937 random(3);
  std::uniform_int_distribution<std::size_t> pick(0, d.handles.size() - 1);
  for (auto _ : state)
    benchmark::DoNotOptimize(BKBlock::Handle2Block(d.handles[pick(random)])->getFullPath(false));
}
BENCHMARK(BM_GetFullPath);

}  // namespace

BENCHMARK_MAIN();
