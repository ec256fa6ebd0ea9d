#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "src/graphscan.h"

namespace {

using bkedittimecheck::GraphScan;

// The plain lists the scan stands for: the wanted graphs, and those visited in visiting order;
// a change of the wanted list drops visits of graphs no longer wanted.
struct PlainScan {
  std::vector<bkGraph*> wanted, done;
  void setWanted(const std::vector<bkGraph*>& graphs) {
    wanted = graphs;
    std::erase_if(done, [&](bkGraph* g) {
      return std::find(wanted.begin(), wanted.end(), g) == wanted.end();
    });
  }
  bkGraph* takeNext() {
    for (bkGraph* g : wanted) {
      if (std::find(done.begin(), done.end(), g) == done.end()) {
        done.push_back(g);
        return g;
      }
    }
    return nullptr;
  }
};

// Random lists over a few graphs, duplicates included (two editors on one system), against the
// plain lists: the same graph taken each time and the same answer to "work left".
TEST(GraphScanTest, AgreesWithThePlainListsOverRandomViews) {
  std::vector<bkGraph*> pool;
  for (std::uintptr_t i = 1; i <= 8; ++i) pool.push_back(reinterpret_cast<bkGraph*>(i * 16));
  std::mt19937 random(7);
  for (int run = 0; run < 200; ++run) {
    GraphScan fast;
    PlainScan plain;
    for (int step = 0; step < 60; ++step) {
      SCOPED_TRACE("run " + std::to_string(run) + " step " + std::to_string(step));
      switch (random() % 4) {
        case 0: {
          std::vector<bkGraph*> view;
          for (std::size_t n = random() % 7; n > 0; --n) view.push_back(pool[random() % 8]);
          fast.setWanted(view);
          plain.setWanted(view);
          break;
        }
        case 1:
          fast.forget();
          plain.done.clear();
          break;
        default:
          ASSERT_EQ(fast.takeNext(), plain.takeNext());
      }
      ASSERT_EQ(fast.hasMore(), plain.wanted.size() != plain.done.size());
      ASSERT_EQ(fast.visitedGraphs().size(), plain.done.size());
    }
  }
}

}  // namespace
