#pragma once

#include <cstddef>
#include <unordered_set>
#include <vector>

class bkGraph;

namespace bkedittimecheck {

/// The graphs one of the engine's scans wants, in view order, and which of them it visited.
/// Only the counts of the two say whether the scan has work left, so a graph wanted twice (two
/// editors on one system) keeps the scan busy, as it always has.
///
/// Each operation costs what changed, not the number of graphs: a scan of a diagram with
/// thousands of systems on view takes one graph per slice for thousands of slices.
///
/// Thread contract: main thread only.
class GraphScan {
 public:
  /// Replaces the wanted list; the visited ones that are no longer wanted are forgotten. The
  /// same list again changes nothing.
  void setWanted(const std::vector<bkGraph*>& graphs);
  /// The first wanted graph not yet visited, now marked visited; null when there is none.
  bkGraph* takeNext();
  /// Forgets every visit.
  void forget();

  bool hasMore() const { return wanted.size() != visited.size(); }
  const std::vector<bkGraph*>& wantedGraphs() const { return wanted; }
  const std::unordered_set<const bkGraph*>& visitedGraphs() const { return visited; }

 private:
  std::vector<bkGraph*> wanted;
  std::unordered_set<const bkGraph*> visited;
  std::size_t firstUnvisited = 0;  // every wanted graph before this place has been visited
};

}  // namespace bkedittimecheck
