#include "app/report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <sstream>
#include <stdexcept>

#include "host/model/bkblock.h"
#include "host/model/bkgraph.h"
#include "host/model/bkrootbd.h"
#include "host/style/styler.h"
#include "app/findingtext.h"
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

std::string cssColor(const diagram::style::Color& c) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "rgba(%d,%d,%d,%.2f)", static_cast<int>(std::lround(c.red * 255)),
                static_cast<int>(std::lround(c.green * 255)),
                static_cast<int>(std::lround(c.blue * 255)), c.alpha);
  return buf;
}

// One system level: its path and the blocks directly inside.
struct Level {
  std::string path;
  std::vector<BKBlock*> blocks;
};

std::vector<Level> levelsOf(BKRootBD& diagram) {
  std::map<std::string, Level> byPath;
  std::vector<const bkGraph*> pending{diagram.getRootGraph()};
  while (!pending.empty()) {
    const bkGraph* graph = pending.back();
    pending.pop_back();
    Level& level = byPath[utf8(graph->getFullPath())];
    level.path = utf8(graph->getFullPath());
    for (BKBlock* block : bkgg::graphicalBlocksOf(graph, 1)) {
      level.blocks.push_back(block);
      if (block->hasSubGraph() && block->getSubGraph()) pending.push_back(block->getSubGraph());
    }
  }
  std::vector<Level> levels;
  for (auto& [path, level] : byPath) levels.push_back(std::move(level));
  return levels;
}

void writeLevel(std::ostringstream& out, const Level& level,
                const std::multimap<std::string, const Finding*>& byPath) {
  double minX = 0, minY = 0, maxX = 100, maxY = 60;
  bool first = true;
  for (BKBlock* b : level.blocks) {
    const auto& p = b->getPosition();
    if (first) {
      minX = p[0], minY = p[1], maxX = p[0] + p[2], maxY = p[1] + p[3];
      first = false;
    }
    minX = std::min(minX, p[0]), minY = std::min(minY, p[1]);
    maxX = std::max(maxX, p[0] + p[2]), maxY = std::max(maxY, p[1] + p[3]);
  }
  const double pad = 30;
  out << "<h2>" << htmlEscape(level.path) << "</h2>\n<svg xmlns=\"http://www.w3.org/2000/svg\" "
      << "viewBox=\"" << minX - pad << ' ' << minY - pad << ' ' << (maxX - minX) + 2 * pad << ' '
      << (maxY - minY) + 2 * pad << "\" width=\"" << std::min(1000.0, (maxX - minX) + 2 * pad)
      << "\">\n";
  for (BKBlock* b : level.blocks) {
    const auto& p = b->getPosition();
    std::string path = utf8(b->getFullPath(false));
    std::string tip = path;
    auto [lo, hi] = byPath.equal_range(path);
    for (auto it = lo; it != hi; ++it) {
      if (it->second->exempt) continue;
      tip += "\n" + it->second->message + " " + it->second->hint + " (" + it->second->checkId +
             ")";
    }
    std::string stroke = "#333";
    std::string filter;
    if (auto glow = diagram::style::glowOf(b->getHandle())) {
      stroke = cssColor(glow->color);
      filter = " style=\"filter: drop-shadow(0 0 " + std::to_string(glow->size / 2) + "px " +
               cssColor(glow->color) + ")\"";
    }
    out << "  <g" << filter << "><title>" << htmlEscape(tip) << "</title><rect x=\"" << p[0]
        << "\" y=\"" << p[1] << "\" width=\"" << p[2] << "\" height=\"" << p[3]
        << "\" rx=\"3\" fill=\"" << (b->isCommented() ? "#eee" : "#fff") << "\" stroke=\""
        << stroke << "\" stroke-width=\"2\"/><text x=\"" << p[0] + p[2] / 2 << "\" y=\""
        << p[1] + p[3] + 14 << "\" font-size=\"11\" text-anchor=\"middle\">"
        << htmlEscape(utf8(b->getName())) << "</text></g>\n";
  }
  out << "</svg>\n";
}

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

std::string formatHtml(BKRootBD& diagram, const std::vector<Finding>& findings) {
  std::multimap<std::string, const Finding*> byPath;
  for (const Finding& f : findings) byPath.emplace(f.path, &f);
  std::ostringstream out;
  std::string name = htmlEscape(utf8(diagram.getName()));
  out << "<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>Edit-time findings: "
      << name << "</title>\n<style>body{font-family:sans-serif;margin:2em}svg{border:1px solid "
      << "#ccc;margin-bottom:1em}td,th{padding:2px 8px;text-align:left}.error{color:#c00}"
      << ".warning{color:#c70}</style></head><body>\n<h1>" << name << "</h1>\n<p>"
      << findings.size() << " finding(s). Hover a block for its violations.</p>\n";
  for (const Level& level : levelsOf(diagram)) writeLevel(out, level, byPath);
  out << "<table><tr><th>Block</th><th>Finding</th><th>Check</th><th>Category</th></tr>\n";
  for (const Finding& f : findings) {
    if (f.exempt) continue;
    out << "<tr class=\"" << (isErrorCategory(f.category) ? "error" : "warning") << "\"><td>"
        << htmlEscape(f.path) << "</td><td>" << htmlEscape(f.message) << " <i>"
        << htmlEscape(f.hint) << "</i></td><td>" << htmlEscape(f.checkId) << "</td><td>"
        << htmlEscape(f.category) << "</td></tr>\n";
  }
  out << "</table>\n</body></html>\n";
  return out.str();
}

std::string formatReport(BKRootBD& diagram, const std::vector<Finding>& findings,
                         const std::string& format, const SarifRun& run) {
  if (format == "text") return formatText(findings);
  if (format == "sarif") return formatSarif(findings, run);
  if (format == "html") return formatHtml(diagram, findings);
  throw std::invalid_argument("unknown report format '" + format + "'");
}

}  // namespace blockara::app
