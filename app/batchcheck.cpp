#include "app/batchcheck.h"

#include <algorithm>
#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <unistd.h>
#include <utility>
#include <vector>

#include "app/luaapi.h"
#include "app/findings.h"
#include "app/report.h"
#include "app/unusedexclusions.h"
#include "host/model/bkgraph.h"
#include "host/model/bkrootbd.h"
#include "host/prefs/directories.h"
#include "host/runtime/eventloop.h"
#include "host/studio/studioapp.h"
#include "host/xml/xmlreader.h"
#include "src/configuration/exclusionmanager.h"
#include "src/bkeditbd.h"
#include "src/edittimecontroller.h"
#include "src/edittimeengine.h"
#include "src/workerthread/asynctaskmanager.h"
#include "src/workerthread/checkfailures.h"

namespace blockara::app {

namespace {

// A file given on the command line that cannot be used; the message names it.
struct BadInput : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The first element of a parsed document, or an empty name when there is none.
std::string rootElementOf(const boost::property_tree::ptree& document) {
  for (const auto& [key, child] : document) {
    if (!key.empty() && key[0] != '<') return key;
  }
  return {};
}

// The configuration and exclusions files are read by the engine only once the check runs, and
// a file of the wrong kind would then fail naming nothing, or quietly leave the defaults in
// place. So the program reads them first, through the same guarded reader, and refuses a file
// that is no XML or lacks the element the engine reads. `path` is the elements from the root
// down to the one that must be there.
void requireXmlFile(const std::string& file, const std::string& kind,
                    const std::vector<std::string>& path, const blockara::xml::Limits& limits) {
  const std::string notOfKind =
      file + ": not " + (kind[0] == 'e' ? "an " : "a ") + kind + " file: ";
  namespace pt = boost::property_tree;
  pt::ptree document;
  try {
    document = blockara::xml::readFile(file, pt::xml_parser::no_comments, limits);
  } catch (const pt::xml_parser_error& e) {
    const std::string line = e.line() > 0 ? ":" + std::to_string(e.line()) : "";
    throw BadInput(file + line + ": cannot read the " + kind + " file: " + e.message());
  }
  const std::string root = rootElementOf(document);
  if (root != path.front()) {
    throw BadInput(notOfKind + "the root element is <" + root + ">, expected <" + path.front() +
                   ">");
  }
  const pt::ptree* node = &document;
  std::string above;
  for (const std::string& element : path) {
    auto found = node->find(element);
    if (found == node->not_found()) {
      throw BadInput(notOfKind + "no <" + element + "> in " + above);
    }
    above += "<" + element + ">";
    node = &found->second;
  }
}

std::wstring wide(const bksvString& text) { return std::wstring(text.begin(), text.end()); }

// The rule-auditor scan's progress on one line of standard error, for a person at a terminal:
// shown once a scan has taken half a second, and wiped when it ends.
class ScanProgress {
 public:
  explicit ScanProgress(std::wstring diagramName)
      : diagramName(std::move(diagramName)), terminal(isatty(STDERR_FILENO) == 1) {}
  ScanProgress(const ScanProgress&) = delete;
  ScanProgress& operator=(const ScanProgress&) = delete;
  ~ScanProgress() {
    if (shown) std::cerr << "\r\033[K" << std::flush;
  }

  void update() {
    if (!terminal || std::chrono::steady_clock::now() - start < std::chrono::milliseconds(500)) {
      return;
    }
    auto engine = bkedittimecheck::EditTimeController::instance().findEngine(diagramName);
    if (!engine) return;
    const auto [done, wanted] = engine->getData()->auditorScanProgress();
    std::cerr << "\rblockara: scanned " << done << " of " << wanted << " system levels"
              << std::flush;
    shown = true;
  }

 private:
  std::wstring diagramName;
  bool terminal;
  bool shown = false;
  std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

// Where the exclusions came from, for naming them in messages.
std::string exclusionsFileOf(const Options& o, const BKRootBD& diagram) {
  if (!o.exclusions.empty()) return o.exclusions;
  if (!diagram.getExclusionFilePath().empty()) {
    return ConvertUStringToStdString(diagram.getExclusionFilePath());
  }
  return o.model + ":" + bkedittimecheck::ExclusionManager::exclusionsPart;
}

// Opens an editor on every system level, so that the whole model is on view.
void showEverySystem(BKRootBD& diagram) {
  auto& controller = bkedittimecheck::EditTimeController::instance();
  std::vector<bksvString> systems;
  for (BKBlock* block : diagram.blocksInPathOrder()) {
    if (block->hasSubGraph() && block->getSubGraph()) systems.push_back(block->getFullPath(false));
  }
  // All at once: a view change per editor would restart the engine's scans once per system.
  Blockara::StudioApp::open(&diagram)->openEditors(systems);
  if (!systems.empty()) controller.handleNewWindowOpen(wide(diagram.getName()));
}

}  // namespace

int runBatchCheck(const Options& o) {
  SarifRun run{o.model, o.sourceRoot, o.arguments, std::chrono::system_clock::now(), {}, {}, {}};
  BKRootBD* diagram = nullptr;
  try {
    if (!o.config.empty()) {
      requireXmlFile(o.config, "customization", {"RAConfiguration", "CheckCellArray"},
                     xml::limits());
    }
    if (!o.exclusions.empty()) {
      // The engine reads exclusions with a lower nesting limit of its own.
      xml::Limits limits = xml::limits();
      limits.maxDepth = std::min(limits.maxDepth, bkedittimecheck::ExclusionManager::maxNesting);
      requireXmlFile(o.exclusions, "exclusions",
                     {"rsccat", "SystemList", "System", "ExclusionList"}, limits);
    }
    diagram = loadModelFile(o.model);
  } catch (const std::exception& e) {
    std::cerr << "blockara: " << e.what() << "\n";
    return 2;
  }
  // With a configuration of its own the rule auditor starts only once that file is loaded:
  // checks queued under the default configuration would otherwise run with the new file's
  // parameters, which lack theirs.
  const bool ownConfig = !o.config.empty();
  if (!ownConfig) diagram->setAuditorMode(true);
  // The engine takes a customization file in the preferences folder before any other, also
  // before an explicit one; say so rather than let --config do nothing in silence.
  const std::filesystem::path preferred =
      std::filesystem::path(svGetPreferencesDirectory(0)) / "edittimecheckcustomization.xml";
  if (ownConfig && std::filesystem::exists(preferred)) {
    std::cerr << "blockara: " << o.config << ": not used: " << preferred.string()
              << " in the preferences folder comes first (choose another with --prefdir)\n";
  }
  if (!o.exclusions.empty()) {
    diagram->setExclusionFilePath(i18n::to_u16string(o.exclusions));
  }
  openForEditing(diagram);
  auto& controller = bkedittimecheck::EditTimeController::instance();
  std::wstring name = wide(diagram->getName());
  if (ownConfig) {
    diagram->setAuditorMode(true);
    if (!controller.findEngine(name)) controller.on(name);
    controller.switchConfiguration(std::wstring(o.config.begin(), o.config.end()), name);
  }
  showEverySystem(*diagram);
  // Nobody watches a batch check: its worker need not wait out the timer's period between
  // slices of work.
  EventLoop::instance().setBatchMode(true);
  // A rule that throws (a pattern too complex to match, say) leaves its pass unstyled for good:
  // once the worker has nothing left, name it instead of waiting for the end of the time.
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(10);
  ScanProgress progress(name);
  while (!EventLoop::instance().runUntilQuiet(std::chrono::milliseconds(200))) {
    progress.update();
    const std::vector<bkedittimecheck::CheckFailure> failures = bkedittimecheck::checkFailures();
    if (!failures.empty() && bkedittimecheck::AsyncTaskManager::outstandingCount() == 0) {
      std::cerr << "blockara: " << o.model << ": rule " << failures.front().checkId
                << " gave up: " << textEscape(failures.front().what) << "\n";
      return 2;
    }
    if (std::chrono::steady_clock::now() >= deadline) {
      std::cerr << "blockara: " << o.model << ": the checker did not settle within 10 minutes\n";
      break;
    }
  }
  std::vector<Finding> findings = collectFindings(*diagram);
  const bool anyLeft = std::any_of(findings.begin(), findings.end(),
                                   [](const Finding& f) { return !f.exempt; });
  if (o.unusedExclusions) {
    run.warnings = unusedExclusions(*diagram, exclusionsFileOf(o, *diagram));
    for (const std::string& line : run.warnings) std::cerr << "blockara: " << line << "\n";
  }
  const bool failUnused = o.failOnUnusedExclusions && !run.warnings.empty();
  run.exitCode = anyLeft || failUnused ? 1 : 0;
  run.end = std::chrono::system_clock::now();
  std::string report = formatReport(*diagram, findings, o.format, run);
  if (o.out.empty()) {
    std::cout << report;
  } else {
    std::ofstream out(o.out, std::ios::binary);
    out << report;
    if (!out) {
      std::cerr << "blockara: " << o.out << ": cannot write the report\n";
      return 2;
    }
  }
  return *run.exitCode;
}

}  // namespace blockara::app
