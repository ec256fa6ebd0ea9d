#include "app/report.h"

#include <algorithm>
#include <stdexcept>

#include "app/canvasreport.h"
#include "app/findingtext.h"
#include "host/model/bkblock.h"
#include "host/model/bkrootbd.h"
#include "src/configuration/exclusionmanager.h"
#include "src/editcodes.h"
#include "src/edittimecontroller.h"
#include "src/edittimeengine.h"
#include "src/presentation/edittimestyler.h"
#include "src/violationdatabase.h"

namespace blockara::app {

namespace {

std::wstring wide(const bksvString& text) { return std::wstring(text.begin(), text.end()); }
std::string utf8(const bksvString& text) { return ConvertUStringToStdString(text); }

}  // namespace

std::vector<Finding> collectFindings(BKRootBD& diagram) {
  std::vector<Finding> findings;
  auto engine = bkedittimecheck::EditTimeController::instance().findEngine(wide(diagram.getName()));
  if (!engine) return findings;
  const bkedittimecheck::ExclusionManager& exclusions = *engine->getExclusions();
  for (BKBlock* block : diagram.blocksInPathOrder()) {
    for (const auto& record : engine->getViolations()->violationsOf(block->getHandle())) {
      FindingText text = describeFinding(*block, record.violationType, record.checkId);
      Finding f{utf8(block->getFullPath(false)), record.checkId, record.violationType,
                bkedittimecheck::violationCategory(record.severity), std::move(text.message),
                std::move(text.hint), false, {}, block->getSID()};
      // Only rule-auditor findings can be exempt, as in the engine's own report.
      if (bkedittimecheck::Severity::isAuditor(record.severity)) {
        if (const auto* exclusion = exclusions.exemptionOf(*block, record)) {
          f.exempt = true;
          f.rationale = ConvertUStringToStdString(
              bksvString(exclusion->rationale.begin(), exclusion->rationale.end()));
        }
      }
      findings.push_back(std::move(f));
    }
  }
  std::sort(findings.begin(), findings.end());
  return findings;
}

std::string formatReport(BKRootBD& diagram, const std::vector<Finding>& findings,
                         const std::string& format, const SarifRun& run) {
  if (format == "text") return formatText(findings);
  if (format == "sarif") return formatSarif(findings, run);
  if (format == "html") return formatCanvas(diagram, findings);
  throw std::invalid_argument("unknown report format '" + format + "'");
}

}  // namespace blockara::app
