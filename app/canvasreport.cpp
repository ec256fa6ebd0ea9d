#include "app/canvasreport.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <sstream>

#include "host/model/bkblock.h"
#include "host/model/bkgraph.h"
#include "host/model/bkrootbd.h"
#include "host/style/styler.h"

namespace blockara::app {

namespace {

std::string utf8(const bksvString& text) { return ConvertUStringToStdString(text); }

std::string cssColor(const diagram::style::Color& c) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "rgba(%d,%d,%d,%.2f)", static_cast<int>(std::lround(c.red * 255)),
                static_cast<int>(std::lround(c.green * 255)),
                static_cast<int>(std::lround(c.blue * 255)), c.alpha);
  return buf;
}

std::string number(double value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

// One system level: its path, its owner block (none for the root) and the blocks directly inside.
struct Level {
  std::string path;
  const BKBlock* owner = nullptr;
  std::vector<BKBlock*> blocks;
};

std::vector<Level> levelsOf(BKRootBD& diagram) {
  std::map<std::string, Level> byPath;
  std::vector<std::pair<const bkGraph*, const BKBlock*>> pending{{diagram.getRootGraph(), nullptr}};
  while (!pending.empty()) {
    auto [graph, owner] = pending.back();
    pending.pop_back();
    Level& level = byPath[utf8(graph->getFullPath())];
    level.path = utf8(graph->getFullPath());
    level.owner = owner;
    for (BKBlock* block : bkgg::graphicalBlocksOf(graph, 1)) {
      level.blocks.push_back(block);
      if (block->hasSubGraph() && block->getSubGraph()) {
        pending.emplace_back(block->getSubGraph(), block);
      }
    }
  }
  std::vector<Level> levels;
  for (auto& [path, level] : byPath) levels.push_back(std::move(level));
  return levels;
}

// How many input and output ports a block shows: a subsystem one per port block inside it;
// sources no inputs, sinks no outputs, every other block one of each.
std::pair<int, int> portsOf(const BKBlock& block) {
  if (block.hasSubGraph() && block.getSubGraph()) {
    int in = 0, out = 0;
    for (BKBlock* inner : bkgg::graphicalBlocksOf(block.getSubGraph(), 1)) {
      const std::string type = utf8(inner->getTypeName());
      in += type == "Inport";
      out += type == "Outport";
    }
    return {in, out};
  }
  static const char* const sources[] = {"Inport", "Constant", "From", "DataStoreRead",
                                        "DataStoreMemory", "StateReader", "GotoTagVisibility"};
  static const char* const sinks[] = {"Outport", "Scope", "Terminator", "Goto", "DataStoreWrite",
                                      "DataStoreMemory", "StateWriter", "GotoTagVisibility"};
  const std::string type = utf8(block.getTypeName());
  const auto is = [&type](const auto& list) {
    return std::find(std::begin(list), std::end(list), type) != std::end(list);
  };
  return {is(sources) ? 0 : 1, is(sinks) ? 0 : 1};
}

std::string levelId(const std::string& path, const std::map<std::string, int>& ids) {
  const auto it = ids.find(path);
  return it == ids.end() ? "" : "L" + std::to_string(it->second);
}

void writePorts(std::ostringstream& out, const std::array<double, 4>& p, int count, bool inputs) {
  for (int i = 0; i < count; ++i) {
    const double y = p[1] + p[3] * (i + 1) / (count + 1);
    const double x = inputs ? p[0] : p[0] + p[2];
    // A small triangle pointing into the block for an input, out of it for an output.
    out << "<path class=\"port\" d=\"M" << number(x - (inputs ? 5 : 0)) << ' ' << number(y - 4)
        << " l5 4 l-5 4 z\"/>";
  }
}

void writeLevel(std::ostringstream& out, const Level& level,
                const std::multimap<std::string, const Finding*>& byPath,
                const std::map<std::string, int>& ids) {
  double minX = 0, minY = 0, maxX = 100, maxY = 60;
  bool first = true;
  for (const BKBlock* b : level.blocks) {
    const auto& p = b->getPosition();
    if (first) minX = p[0], minY = p[1], maxX = p[0] + p[2], maxY = p[1] + p[3], first = false;
    minX = std::min(minX, p[0]), minY = std::min(minY, p[1]);
    maxX = std::max(maxX, p[0] + p[2]), maxY = std::max(maxY, p[1] + p[3]);
  }
  const double pad = 40, width = maxX - minX + 2 * pad, height = maxY - minY + 2 * pad;
  out << "<section class=\"level\" id=\"" << levelId(level.path, ids) << "\"><h2>"
      << htmlEscape(level.path) << "</h2>";
  if (level.owner) {
    const std::string parent = utf8(level.owner->getGraph()->getFullPath());
    out << "<p class=\"up\"><a href=\"#" << levelId(parent, ids) << "\">&#8593; "
        << htmlEscape(parent) << "</a></p>";
  }
  out << "\n<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"" << number(minX - pad) << ' '
      << number(minY - pad) << ' ' << number(width) << ' ' << number(height) << "\" width=\""
      << number(std::min(900.0, width)) << "\">\n";
  for (const BKBlock* b : level.blocks) {
    const auto& p = b->getPosition();
    const std::string path = utf8(b->getFullPath(false));
    std::string tip = path;
    auto [lo, hi] = byPath.equal_range(path);
    for (auto it = lo; it != hi; ++it) {
      if (!it->second->exempt) tip += "\n" + it->second->message + " " + it->second->hint;
    }
    std::string glow;
    if (auto g = diagram::style::glowOf(b->getHandle())) {
      glow = " style=\"--glow:" + cssColor(g->color) + ";--glow-size:" +
             std::to_string(std::max(2, g->size / 2)) + "px\"";
    }
    const bool linked = b->hasSubGraph() && b->getSubGraph();
    out << "  <g class=\"block" << (glow.empty() ? "" : " glowing")
        << (b->isCommented() ? " commented" : "") << "\" id=\"B" << b->getSID() << "\"" << glow
        << "><title>" << htmlEscape(tip) << "</title>";
    if (linked) out << "<a href=\"#" << levelId(utf8(b->getSubGraph()->getFullPath()), ids) << "\">";
    out << "<rect x=\"" << number(p[0]) << "\" y=\"" << number(p[1]) << "\" width=\""
        << number(p[2]) << "\" height=\"" << number(p[3]) << "\" rx=\"3\"/>";
    const auto [in, outs] = portsOf(*b);
    writePorts(out, p, in, true);
    writePorts(out, p, outs, false);
    out << "<text x=\"" << number(p[0] + p[2] / 2) << "\" y=\"" << number(p[1] + p[3] + 14)
        << "\">" << htmlEscape(utf8(b->getName())) << "</text>";
    if (linked) out << "</a>";
    out << "</g>\n";
  }
  out << "</svg></section>\n";
}

const char* const kStyle =
    "body{font-family:sans-serif;margin:1em;display:flex;gap:2em;align-items:flex-start}"
    "main{flex:1}aside{position:sticky;top:1em;width:28em;max-height:95vh;overflow:auto}"
    "svg{border:1px solid #ccc;background:#fff}"
    ".block rect{fill:#fff;stroke:#333;stroke-width:1.5}"
    ".block.commented rect{fill:#eee;stroke-dasharray:4 2}"
    ".block.glowing rect{stroke:var(--glow);stroke-width:2.5;"
    "filter:drop-shadow(0 0 var(--glow-size) var(--glow)) drop-shadow(0 0 2px var(--glow))}"
    ".block.highlight rect{stroke:#06c;stroke-width:4}"
    ".block text{font-size:11px;text-anchor:middle}.port{fill:#333}"
    "aside li{margin:.4em 0;cursor:pointer}aside li:hover{background:#eef}"
    ".error{color:#b00}.warning{color:#a60}.hint{color:#555;font-style:italic}";

const char* const kScript =
    "document.querySelectorAll('aside li').forEach(function(li){"
    "var b=document.getElementById(li.dataset.block);if(!b)return;"
    "li.addEventListener('mouseenter',function(){b.classList.add('highlight')});"
    "li.addEventListener('mouseleave',function(){b.classList.remove('highlight')});"
    "li.addEventListener('click',function(){b.scrollIntoView({block:'center'})});});";

}  // namespace

std::string formatCanvas(BKRootBD& diagram, const std::vector<Finding>& findings) {
  std::multimap<std::string, const Finding*> byPath;
  for (const Finding& f : findings) byPath.emplace(f.path, &f);
  const std::vector<Level> levels = levelsOf(diagram);
  std::map<std::string, int> ids;
  for (const Level& level : levels) ids.emplace(level.path, static_cast<int>(ids.size()));
  std::map<std::string, std::string> sidOfPath;
  for (const Level& level : levels) {
    for (const BKBlock* b : level.blocks) sidOfPath[utf8(b->getFullPath(false))] = b->getSID();
  }

  std::ostringstream out;
  const std::string name = htmlEscape(utf8(diagram.getName()));
  const auto shown = std::count_if(findings.begin(), findings.end(),
                                   [](const Finding& f) { return !f.exempt; });
  out << "<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>Edit-time findings: "
      << name << "</title>\n<style>" << kStyle << "</style></head><body>\n<main><h1>" << name
      << "</h1>\n";
  for (const Level& level : levels) writeLevel(out, level, byPath, ids);
  out << "</main>\n<aside><h2>" << shown << " finding(s)</h2><ul>\n";
  for (const Finding& f : findings) {
    if (f.exempt) continue;
    const auto sid = sidOfPath.find(f.path);
    out << "<li class=\"" << (isErrorCategory(f.category) ? "error" : "warning")
        << "\" data-block=\"B" << (sid == sidOfPath.end() ? "" : sid->second) << "\"><b>"
        << htmlEscape(f.path) << "</b><br>" << htmlEscape(f.message) << " <span class=\"hint\">"
        << htmlEscape(f.hint) << "</span> <small>(" << htmlEscape(f.checkId) << ", "
        << htmlEscape(f.category) << ")</small></li>\n";
  }
  out << "</ul></aside>\n<script>" << kScript << "</script>\n</body></html>\n";
  return out.str();
}

}  // namespace blockara::app
