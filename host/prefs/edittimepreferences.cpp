#include "host/prefs/edittimepreferences.h"

#include <atomic>
#include <mutex>

namespace bk::bkedittimecheck::bkutils {
namespace {

std::atomic<bool> showEditTimeIssues{true};

// mutex guards selection and exclusions.
std::mutex mutex;
std::optional<EditTimePreferences::CheckSelectionMap> selection;
std::map<std::wstring, EditTimePreferences::ExclusionMap> exclusions;

}  // namespace

bool getShowEditTimeIssues() { return showEditTimeIssues.load(); }

void setShowEditTimeIssues(bool show) { showEditTimeIssues.store(show); }

void EditTimePreferences::setCheckSelectionMap(CheckSelectionMap map) {
  std::lock_guard<std::mutex> lock(mutex);
  selection = std::move(map);
}

std::optional<EditTimePreferences::CheckSelectionMap> EditTimePreferences::checkSelectionMap() {
  std::lock_guard<std::mutex> lock(mutex);
  return selection;
}

void EditTimePreferences::setCEExclusions(std::wstring diagramName, ExclusionMap map) {
  std::lock_guard<std::mutex> lock(mutex);
  exclusions[std::move(diagramName)] = std::move(map);
}

std::optional<EditTimePreferences::ExclusionMap> EditTimePreferences::ceExclusions(
    const std::wstring& diagramName) {
  std::lock_guard<std::mutex> lock(mutex);
  auto it = exclusions.find(diagramName);
  if (it == exclusions.end()) return std::nullopt;
  return it->second;
}

void EditTimePreferences::clear() {
  std::lock_guard<std::mutex> lock(mutex);
  selection.reset();
  exclusions.clear();
}

}  // namespace bk::bkedittimecheck::bkutils
