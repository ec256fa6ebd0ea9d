#pragma once

#include <string>
#include <vector>

#include "app/findings.h"
#include "app/sarif.h"

class BKRootBD;

namespace blockara::app {

/// Every violation the engine reports for the blocks of `diagram`, read through the controller
/// as the host language reads it (three strings a violation). Main thread.
std::vector<Finding> collectFindings(BKRootBD& diagram);

/// An HTML page with one SVG per system level: blocks drawn at their positions, each block's
/// glow drawn from the styling service, the violation strings of a block on hover, and a table
/// of all findings. Main thread.
std::string formatHtml(BKRootBD& diagram, const std::vector<Finding>& findings);

/// The findings of `diagram` in `format` ("text", "sarif" or "html"); `run` is what SARIF says
/// about the run. Throws std::invalid_argument for another format. Main thread.
std::string formatReport(BKRootBD& diagram, const std::vector<Finding>& findings,
                         const std::string& format, const SarifRun& run);

}  // namespace blockara::app
