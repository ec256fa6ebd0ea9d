#pragma once

#include <string>
#include <vector>

#include "app/findings.h"
#include "app/sarif.h"

class BKRootBD;

namespace blockara::app {

/// Every violation the engine holds for the blocks of `diagram`, sorted, each with its sentence
/// and hint; a rule-auditor violation that the diagram's exclusions exempt is marked exempt with
/// the exclusion's rationale (the controller's own report leaves those out). Main thread.
std::vector<Finding> collectFindings(BKRootBD& diagram);

/// The findings of `diagram` in `format` ("text", "sarif" or "html"); `run` is what SARIF says
/// about the run. Throws std::invalid_argument for another format. Main thread.
std::string formatReport(BKRootBD& diagram, const std::vector<Finding>& findings,
                         const std::string& format, const SarifRun& run);

}  // namespace blockara::app
