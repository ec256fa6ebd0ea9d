#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace bk::bkedittimecheck::bkutils {

/// Any thread. The user's preference that edit-time issues are shown at all (on unless the host
/// turned it off).
bool getShowEditTimeIssues();

/// Any thread. Sets that preference. It is read when checking structures are made and by signal
/// handlers, so a change reaches diagrams opened afterwards and the next events.
void setShowEditTimeIssues(bool show);

/// What the checker publishes to the host about its configuration, kept for the tools that show
/// or edit it (scripts read it back). Every value is kept as given, a copy per call.
///
/// Thread contract: every operation may be called from any thread. `mutex` (in the source) guards
/// the selection map and the exclusion maps.
class EditTimePreferences {
 public:
  /// Check identifier to whether the check is selected.
  using CheckSelectionMap = std::map<std::string, bool>;
  /// Subsystem path to the check identifiers exempted there.
  using ExclusionMap = std::map<std::wstring, std::vector<std::wstring>>;

  EditTimePreferences() = delete;

  /// Any thread. Keeps `map` as the current check selection (an empty map is kept too).
  static void setCheckSelectionMap(CheckSelectionMap map);

  /// Any thread. The map last given to `setCheckSelectionMap`, or none if it was never called.
  static std::optional<CheckSelectionMap> checkSelectionMap();

  /// Any thread. Keeps `map` as the chart exclusions of the diagram `diagramName`, replacing
  /// what that diagram had (an empty map is kept too).
  static void setCEExclusions(std::wstring diagramName, ExclusionMap map);

  /// Any thread. The map last given for `diagramName`, or none.
  static std::optional<ExclusionMap> ceExclusions(const std::wstring& diagramName);

  /// Any thread. Forgets everything given so far (for a host that starts over).
  static void clear();
};

}  // namespace bk::bkedittimecheck::bkutils
