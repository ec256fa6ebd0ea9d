#include "app/batchcheck.h"

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "app/luaapi.h"
#include "app/report.h"
#include "host/model/bkgraph.h"
#include "host/model/bkrootbd.h"
#include "host/runtime/eventloop.h"
#include "host/studio/studioapp.h"
#include "src/edittimecontroller.h"

namespace blockara::app {

namespace {

// A file given on the command line that cannot be used; the message names it.
struct BadInput : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The configuration and exclusions files are XML: refuse early what no reader could take, so
// that the user hears of it instead of getting a check that silently used the defaults.
void requireXmlFile(const std::string& path, const char* what) {
  std::ifstream in(path);
  if (!in) throw BadInput(path + ": cannot read the " + what + " file");
  try {
    boost::property_tree::ptree tree;
    boost::property_tree::read_xml(in, tree);
  } catch (const boost::property_tree::xml_parser_error& e) {
    throw BadInput(path + ":" + std::to_string(e.line()) + ": malformed " + what + " file: " +
                   e.message());
  }
}

std::wstring wide(const bksvString& text) { return std::wstring(text.begin(), text.end()); }

// Opens an editor on every system level, so that the whole model is on view.
void showEverySystem(BKRootBD& diagram) {
  auto& controller = bkedittimecheck::EditTimeController::instance();
  std::vector<BKBlock*> owners;
  for (BKBlock* block : diagram.blocksInPathOrder()) {
    if (block->hasSubGraph() && block->getSubGraph()) owners.push_back(block);
  }
  for (BKBlock* owner : owners) {
    Blockara::StudioApp::open(&diagram)->openEditor(owner->getFullPath(false));
  }
  if (!owners.empty()) controller.handleNewWindowOpen(wide(diagram.getName()));
}

}  // namespace

int runBatchCheck(const Options& o) {
  BKRootBD* diagram = nullptr;
  try {
    if (!o.config.empty()) requireXmlFile(o.config, "configuration");
    if (!o.exclusions.empty()) requireXmlFile(o.exclusions, "exclusions");
    diagram = loadModelFile(o.model);
  } catch (const std::exception& e) {
    std::cerr << "blockara: " << e.what() << "\n";
    return 2;
  }
  diagram->setAuditorMode(true);
  if (!o.exclusions.empty()) {
    diagram->setExclusionFilePath(i18n::to_u16string(o.exclusions));
  }
  openForEditing(diagram);
  auto& controller = bkedittimecheck::EditTimeController::instance();
  std::wstring name = wide(diagram->getName());
  if (!o.config.empty()) {
    controller.switchConfiguration(std::wstring(o.config.begin(), o.config.end()), name);
  }
  showEverySystem(*diagram);
  if (!EventLoop::instance().runUntilQuiet(std::chrono::minutes(10))) {
    std::cerr << "blockara: " << o.model << ": the checker did not settle within 10 minutes\n";
  }
  std::vector<Finding> findings = collectFindings(*diagram);
  std::string report = formatReport(*diagram, findings, o.format, o.model);
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
  return findings.empty() ? 0 : 1;
}

}  // namespace blockara::app
