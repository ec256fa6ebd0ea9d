#include "src/configuration/hostpreferences.h"

#include <filesystem>

#include "host/prefs/directories.h"
#include "host/prefs/edittimepreferences.h"
#include "src/configuration/customizationfile.h"

namespace bkedittimecheck {
namespace {

// The host's narrow paths are UTF-8; std::filesystem does the platform's conversion.
std::wstring widen(const std::string& path) {
  return std::filesystem::path(std::u8string(path.begin(), path.end())).wstring();
}

}  // namespace

void publishCheckSelection(const std::map<std::string, bool>& selection) {
  bk::bkedittimecheck::bkutils::EditTimePreferences::setCheckSelectionMap(selection);
}

std::wstring preferencesDirectory() { return widen(svGetPreferencesDirectory(1)); }

std::wstring installationRoot() { return widen(svNumeriaRoot()); }

std::wstring findCustomizationFile(const std::wstring& givenPath) {
  return chooseCustomizationFile(preferencesDirectory(), givenPath, installationRoot());
}

}  // namespace bkedittimecheck
