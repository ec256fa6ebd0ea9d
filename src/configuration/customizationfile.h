#pragma once

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

}  // namespace bkedittimecheck
