#pragma once

#include <boost/property_tree/ptree.hpp>
#include <map>
#include <string>

namespace bkedittimecheck {

/// The file name of the customization file.
inline constexpr const char* customizationFileName = "edittimecheckcustomization.xml";

/// Any thread. The installed customization file under an installation root:
/// ROOT/toolbox/blockara/blockara/ruleauditor/resources/edittimecheckcustomization.xml.
std::wstring installedCustomizationFile(const std::wstring& installationRoot);

/// Any thread. The first existing file of: the preference file in `preferencesDirectory`, the
/// `givenPath` (when not empty), the installed file under `installationRoot`. An empty string
/// when none exists. Never throws beyond allocation.
std::wstring chooseCustomizationFile(const std::wstring& preferencesDirectory,
                                     const std::wstring& givenPath,
                                     const std::wstring& installationRoot);

/// Main thread. `chooseCustomizationFile` with the host's preferences directory and
/// installation root.
std::wstring findCustomizationFile(const std::wstring& givenPath);

/// Any thread. True when `path` names a regular file.
bool customizationFileExists(const std::wstring& path);

/// Reads the selection out of a parsed customization tree: the map from the "ID" of every
/// "Check" under "RAConfiguration.CheckCellArray" to whether its "Selected" text is exactly
/// "true". Throws `ptree_bad_path` when the element is missing.
std::map<std::string, bool> selectionFromTree(const boost::property_tree::ptree& tree);

}  // namespace bkedittimecheck
