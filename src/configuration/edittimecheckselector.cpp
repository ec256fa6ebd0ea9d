#include "src/configuration/edittimecheckselector.h"

#include <boost/property_tree/xml_parser.hpp>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <utility>

#include "host/xml/xmlreader.h"
#include "src/algorithms/edittimealgorithms.h"
#include "src/configuration/customizationfile.h"
#include "src/configuration/hostpreferences.h"

namespace bkedittimecheck {
namespace {

namespace pt = boost::property_tree;

struct SelectorState {
  std::mutex configurationMutex;
  std::map<std::string, bool> checkSelection;  // written under configurationMutex
  pt::ptree configurationTree;                 // guarded by configurationMutex
};

SelectorState& state() {
  static SelectorState instance;
  return instance;
}

constexpr const char* cellArrayPath = "RAConfiguration.CheckCellArray";

// Reads the file byte for byte through the host's guarded reader.
pt::ptree parseFile(const std::wstring& path) {
  return blockara::xml::readFile(std::filesystem::path(path), pt::xml_parser::no_comments);
}

}  // namespace

void EditTimeCheckSelector::loadCheckSelection(const std::wstring& path) {
  EditTimeAlgorithms::setInputParametersChanged(true);
  const std::wstring file = findCustomizationFile(path);
  if (file.empty()) return;
  SelectorState& s = state();
  std::lock_guard<std::mutex> lock(s.configurationMutex);
  // The new tree replaces the old one only once the whole file parsed: a file that is not
  // well-formed leaves the previous configuration in place.
  s.configurationTree = parseFile(file);
  std::map<std::string, bool> selection = readCheckSelection(file);
  s.checkSelection.swap(selection);
}

std::map<std::string, bool> EditTimeCheckSelector::readCheckSelection(
    const std::wstring& filePath) {
  std::map<std::string, bool> selection = selectionFromTree(parseFile(filePath));
  publishCheckSelection(selection);
  return selection;
}

const std::map<std::string, bool>& EditTimeCheckSelector::getCheckSelectionMap() {
  return state().checkSelection;
}

pt::ptree EditTimeCheckSelector::getConfigurationTree() { return state().configurationTree; }

pt::ptree EditTimeCheckSelector::getCheckConfiguration(const std::string& checkId) {
  SelectorState& s = state();
  std::lock_guard<std::mutex> lock(s.configurationMutex);
  for (const auto& [key, check] : s.configurationTree.get_child(cellArrayPath)) {
    if (key != "Check") continue;
    for (const auto& [childKey, child] : check) {
      if (childKey == "ID" && child.data() == checkId) return check;
    }
  }
  return {};
}

void EditTimeCheckSelector::resetForTesting() {
  SelectorState& s = state();
  std::lock_guard<std::mutex> lock(s.configurationMutex);
  s.checkSelection.clear();
  s.configurationTree.clear();
}

}  // namespace bkedittimecheck
