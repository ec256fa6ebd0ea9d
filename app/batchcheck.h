#pragma once

#include "app/options.h"

namespace blockara::app {

/// `blockara check MODEL`: opens the model under the rule auditor with every system on view,
/// runs the checker to quiescence and writes the findings in the chosen format to standard
/// output or `--out`. Returns 1 when a finding is left, 0 when none is, and 2 (with a one-line
/// message naming the file and the problem on standard error) for an unreadable model,
/// configuration or exclusions file. Main thread, with the host language running.
int runBatchCheck(const Options& options);

}  // namespace blockara::app
