#pragma once

#include <string>
#include <vector>

class BKRootBD;

namespace blockara::app {

/// A record of the host signals each open diagram raised, for scripts that check what an edit
/// told the checker. One line per signal:
///   "edit 1", "edit 5", "compile 33", "exec 2",
///   "batch 26: PATH, PATH"  (the container of that kind: 26 added, 27 changed, 28 deleted,
///                            33 renamed or re-parented; a block that no longer resolves is "#HANDLE"),
///   "comment 22: PATH", "param 41: NAME".
/// Main thread.
class SignalLog {
 public:
  /// Starts recording the signals of `diagram` (before anything else connects to them).
  static void attach(BKRootBD* diagram);
  /// The lines recorded for the diagram with handle `diagramHandle` since the last call; clears
  /// them.
  static std::vector<std::string> take(double diagramHandle);
};

}  // namespace blockara::app
