#pragma once

#include <map>
#include <string>

namespace bkedittimecheck {

/// Main thread. Hands a copy of the selection to the host's preferences, for the tools that
/// show or edit it. The engine never reads it back.
void publishCheckSelection(const std::map<std::string, bool>& selection);

/// Main thread. The user's preferences directory, wide; empty when the host has none.
std::wstring preferencesDirectory();

/// Main thread. The host's installation root, wide.
std::wstring installationRoot();

}  // namespace bkedittimecheck
