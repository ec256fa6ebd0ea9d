#include "src/configuration/customizationfile.h"

#include <filesystem>
#include <fstream>
#include <system_error>

namespace bkedittimecheck {

std::wstring installedCustomizationFile(const std::wstring& installationRoot) {
  // "blockara" stands there twice: the toolbox folder, then the product folder inside it.
  const std::filesystem::path file = std::filesystem::path(installationRoot) / "toolbox" /
                                     "blockara" / "blockara" / "ruleauditor" / "resources" /
                                     customizationFileName;
  return file.wstring();
}

bool customizationFileExists(const std::wstring& path) {
  if (path.empty()) return false;
  // "Exists" means "can be opened for reading": an unreadable file is passed over for the next
  // place, and a directory never opens as a file.
  std::error_code error;
  if (std::filesystem::is_directory(std::filesystem::path(path), error)) return false;
  std::ifstream in(std::filesystem::path(path), std::ios::binary);
  return in.is_open();
}

std::wstring chooseCustomizationFile(const std::wstring& preferencesDirectory,
                                     const std::wstring& givenPath,
                                     const std::wstring& installationRoot) {
  // The user's own file overrides even an explicitly given one.
  if (!preferencesDirectory.empty()) {
    std::wstring preferenceFile =
        (std::filesystem::path(preferencesDirectory) / customizationFileName).wstring();
    if (customizationFileExists(preferenceFile)) return preferenceFile;
  }
  if (customizationFileExists(givenPath)) return givenPath;
  if (!installationRoot.empty()) {
    std::wstring installed = installedCustomizationFile(installationRoot);
    if (customizationFileExists(installed)) return installed;
  }
  return {};
}

std::map<std::string, bool> selectionFromTree(const boost::property_tree::ptree& tree) {
  std::map<std::string, bool> selection;
  for (const auto& [key, check] : tree.get_child("RAConfiguration.CheckCellArray")) {
    if (key != "Check") continue;
    std::string id;
    bool selected = false;
    // The walk stops at "Selected": an "ID" behind it is not seen.
    for (const auto& [childKey, child] : check) {
      if (childKey == "ID") {
        id = child.data();
      } else if (childKey == "Selected") {
        selected = child.data() == "true";
        break;
      }
    }
    selection.emplace(id, selected);  // the first entry of an ID stands
  }
  return selection;
}

}  // namespace bkedittimecheck
