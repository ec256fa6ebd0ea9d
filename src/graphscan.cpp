#include "src/graphscan.h"

namespace bkedittimecheck {

void GraphScan::setWanted(const std::vector<bkGraph*>& graphs) {
  if (graphs == wanted) return;  // what was visited is all still wanted
  wanted = graphs;
  const std::unordered_set<const bkGraph*> keep(wanted.begin(), wanted.end());
  std::erase_if(visited, [&keep](const bkGraph* g) { return keep.count(g) == 0; });
  firstUnvisited = 0;
}

bkGraph* GraphScan::takeNext() {
  // Visits only grow between two changes of the list, so the places already passed stay
  // visited.
  while (firstUnvisited < wanted.size() && visited.count(wanted[firstUnvisited]) != 0) {
    ++firstUnvisited;
  }
  if (firstUnvisited == wanted.size()) return nullptr;
  bkGraph* graph = wanted[firstUnvisited];
  visited.insert(graph);
  return graph;
}

void GraphScan::forget() {
  visited.clear();
  firstUnvisited = 0;
}

}  // namespace bkedittimecheck
