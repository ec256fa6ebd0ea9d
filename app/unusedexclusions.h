#pragma once

#include <string>
#include <vector>

class BKRootBD;

namespace blockara::app {

/// One line for each rule of the diagram's loaded exclusions that speaks of no block of the
/// diagram any more: `FILE: exclusion N ("RATIONALE"): KIND rule 'VALUE' matches no block`, N
/// counting from 1 in file order. `file` names the exclusions file in the lines. Empty when the
/// diagram has no engine or no exclusions. Main thread, after the checker ran.
std::vector<std::string> unusedExclusions(BKRootBD& diagram, const std::string& file);

}  // namespace blockara::app
