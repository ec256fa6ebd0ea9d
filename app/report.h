#pragma once

#include <string>
#include <vector>

#include "app/findings.h"

class BKRootBD;

namespace blockara::app {

/// Every violation the engine reports for the blocks of `diagram`, read through the controller
/// as the host language reads it (three strings a violation). Main thread.
std::vector<Finding> collectFindings(BKRootBD& diagram);

/// An HTML page with one SVG per system level: blocks drawn at their positions, each block's
/// glow drawn from the styling service, the violation strings of a block on hover, and a table
/// of all findings. Main thread.
std::string formatHtml(BKRootBD& diagram, const std::vector<Finding>& findings);

/// The findings of `diagram` in `format` ("text", "sarif" or "html"). `artifact` names the
/// model file in SARIF. Throws std::invalid_argument for another format. Main thread.
std::string formatReport(BKRootBD& diagram, const std::vector<Finding>& findings,
                         const std::string& format, const std::string& artifact);

}  // namespace blockara::app
