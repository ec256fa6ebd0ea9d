#include "src/violationdatabase.h"

#include <algorithm>

#include "src/editcodes.h"

namespace bkedittimecheck {

using Severity::isAuditor;
using Severity::isError;

namespace {

bool isWarning(const EditTimeViolation& v) { return v.severity == Severity::kWarning; }
bool isErrorRecord(const EditTimeViolation& v) { return isError(v.severity); }

// The `isCommented` of the first record of `set` that `pick` accepts, if any.
template <typename Set, typename Pick>
std::optional<bool> firstCommented(const Set& set, Pick pick) {
  for (const auto& v : set) {
    if (pick(*v)) return v->isCommented != 0;
  }
  return std::nullopt;
}

template <typename Set>
void appendAuditorRecords(const Set& set, std::vector<EditTimeViolation>& out) {
  for (const auto& v : set) {
    if (isAuditor(v->severity)) out.push_back(*v);
  }
}

}  // namespace

void ViolationDatabase::add(const ViolationPtr& violation) {
  std::lock_guard<std::mutex> lock(mutex);
  touch(violation->blockHandle);
  ViolationSet& set = byBlock[violation->blockHandle];
  auto it = set.find(violation);
  if (it != set.end()) {
    if ((*it)->isCommented == violation->isCommented) return;
    // A changed comment status must reach the store, so the new record takes the old one's place.
    set.erase(it);
  }
  set.insert(violation);
}

void ViolationDatabase::remove(const ViolationPtr& violation) {
  std::lock_guard<std::mutex> lock(mutex);
  removeLocked(violation);
}

void ViolationDatabase::removeEach(const ViolationPtr& violation,
                                   const std::vector<double>& handles) {
  std::lock_guard<std::mutex> lock(mutex);
  for (double handle : handles) {
    violation->blockHandle = handle;
    removeLocked(violation);
  }
}

void ViolationDatabase::removeLocked(const ViolationPtr& violation) {
  touch(violation->blockHandle);
  auto entry = byBlock.find(violation->blockHandle);
  // A block with no records still has its classes cleared: a glow left by an engine that was
  // replaced (a rename, a reopen) goes at the first pass that finds the block clean.
  if (entry == byBlock.end()) {
    notePendingClear(violation->blockHandle);
    return;
  }
  const bool erased = entry->second.erase(violation) > 0;
  if (erased || entry->second.empty()) notePendingClear(violation->blockHandle);
  if (entry->second.empty()) byBlock.erase(entry);
}

void ViolationDatabase::removeByType(const std::string& checkId, const std::string& violationType) {
  std::lock_guard<std::mutex> lock(mutex);
  for (auto entry = byBlock.begin(); entry != byBlock.end();) {
    if (std::erase_if(entry->second, [&](const ViolationPtr& v) {
          return v->checkId == checkId && v->violationType == violationType;
        }) > 0) {
      touch(entry->first);
    }
    if (entry->second.empty()) {
      touch(entry->first);
      notePendingClear(entry->first);
      entry = byBlock.erase(entry);
    } else {
      ++entry;
    }
  }
}

void ViolationDatabase::removeAll(double blockHandle) {
  std::lock_guard<std::mutex> lock(mutex);
  touch(blockHandle);
  byBlock.erase(blockHandle);
}

void ViolationDatabase::removeByCheck(double blockHandle, const std::string& checkId) {
  std::lock_guard<std::mutex> lock(mutex);
  touch(blockHandle);
  auto entry = byBlock.find(blockHandle);
  if (entry != byBlock.end()) {
    std::erase_if(entry->second, [&](const ViolationPtr& v) { return v->checkId == checkId; });
  }
  notePendingClear(blockHandle);
}

std::vector<EditTimeViolation> ViolationDatabase::violationsOf(double blockHandle) const {
  std::lock_guard<std::mutex> lock(mutex);
  std::vector<EditTimeViolation> out;
  auto entry = byBlock.find(blockHandle);
  if (entry == byBlock.end()) return out;
  for (const auto& v : entry->second) out.push_back(*v);
  return out;
}

std::vector<EditTimeViolation> ViolationDatabase::violationsOfBlock(
    double blockHandle, const std::string& checkId) const {
  std::lock_guard<std::mutex> lock(mutex);
  std::vector<EditTimeViolation> out;
  auto entry = byBlock.find(blockHandle);
  if (entry == byBlock.end()) return out;
  for (const auto& v : entry->second) {
    if (v->checkId == checkId) out.push_back(*v);
  }
  return out;
}

std::vector<ViolationDatabase::ViolationPtr> ViolationDatabase::violationsByCheck(
    const std::string& checkId) const {
  std::lock_guard<std::mutex> lock(mutex);
  std::vector<ViolationPtr> out;
  for (const auto& [handle, set] : byBlock) {
    for (const auto& v : set) {
      if (v->checkId == checkId) out.push_back(v);
    }
  }
  return out;
}

std::map<double, bool> ViolationDatabase::blocksWithEditTimeWarnings() const {
  std::lock_guard<std::mutex> lock(mutex);
  std::map<double, bool> out;
  for (const auto& [handle, set] : byBlock) {
    if (auto commented = firstCommented(set, isWarning)) out.emplace(handle, *commented);
  }
  return out;
}

std::map<double, bool> ViolationDatabase::blocksWithErrors() const {
  std::lock_guard<std::mutex> lock(mutex);
  std::map<double, bool> out;
  for (const auto& [handle, set] : byBlock) {
    if (auto commented = firstCommented(set, isErrorRecord)) out.emplace(handle, *commented);
  }
  return out;
}

std::map<double, bool> ViolationDatabase::blocksWithOnlyAuditorViolations() const {
  std::lock_guard<std::mutex> lock(mutex);
  std::map<double, bool> out;
  for (const auto& [handle, set] : byBlock) {
    bool hasWarning = false;
    bool hasAuditor = false;
    bool flag = false;
    for (const auto& v : set) {
      if (v->severity == Severity::kWarning) hasWarning = true;
      if (isAuditor(v->severity)) {
        hasAuditor = true;
        flag = v->isCommented != 0;
      }
    }
    if (hasAuditor && !hasWarning) out.emplace(handle, flag);
  }
  return out;
}

std::map<double, std::vector<EditTimeViolation>> ViolationDatabase::auditorViolations() const {
  std::lock_guard<std::mutex> lock(mutex);
  std::map<double, std::vector<EditTimeViolation>> out;
  for (const auto& [handle, set] : byBlock) {
    std::vector<EditTimeViolation> records;
    appendAuditorRecords(set, records);
    if (!records.empty()) out.emplace(handle, std::move(records));
  }
  return out;
}

std::vector<ViolationDatabase::StylingFacts> ViolationDatabase::stylingFactsOf(
    const std::vector<double>& handles) const {
  std::lock_guard<std::mutex> lock(mutex);
  // Clears put on the list after the last settle (none, unless a pass ran meanwhile) are looked
  // up in a sorted copy of their own.
  std::vector<double> recent(pendingClearList.begin() + static_cast<std::ptrdiff_t>(pendingSettled),
                             pendingClearList.end());
  std::sort(recent.begin(), recent.end());
  // The handles come sorted as a rule: each search starts where the last one ended.
  auto settled = pendingSorted.begin();
  const auto pending = [&](double handle) {
    // Everything before `settled` is below the last handle asked; a handle not above that
    // could lie there.
    if (settled != pendingSorted.begin() && handle <= *std::prev(settled)) {
      settled = pendingSorted.begin();
    }
    settled = std::lower_bound(settled, pendingSorted.end(), handle);
    return (settled != pendingSorted.end() && *settled == handle) ||
           std::binary_search(recent.begin(), recent.end(), handle);
  };
  std::vector<StylingFacts> out(handles.size());
  for (std::size_t i = 0; i < handles.size(); ++i) {
    out[i].pendingClear = pending(handles[i]);
    auto entry = byBlock.find(handles[i]);
    if (entry == byBlock.end()) continue;
    out[i].warning = firstCommented(entry->second, isWarning);
    appendAuditorRecords(entry->second, out[i].auditor);
    out[i].error = firstCommented(entry->second, isErrorRecord);
  }
  return out;
}

void ViolationDatabase::notePendingClear(double handle) { pendingClearList.push_back(handle); }

void ViolationDatabase::settleForStyling() {
  std::lock_guard<std::mutex> lock(mutex);
  settle();
}

namespace {

// Sorts the entries of `v` from `from` on, merges them into the sorted, unique entries before it
// and drops the repeats. The entries come from the checks of a pass, each walking its blocks in
// ascending handle order, so they form a few ascending runs: merging those beats sorting.
void mergeSortedUnique(std::vector<double>& v, std::size_t from) {
  std::vector<std::size_t> bounds{from};
  for (std::size_t i = from + 1; i < v.size(); ++i) {
    if (v[i] < v[i - 1]) bounds.push_back(i);
  }
  bounds.push_back(v.size());
  const auto at = [&v](std::size_t i) { return v.begin() + static_cast<std::ptrdiff_t>(i); };
  while (bounds.size() > 2) {  // pairs of neighbouring runs, until one is left
    std::vector<std::size_t> merged{bounds.front()};
    std::size_t k = 0;
    for (; k + 2 < bounds.size(); k += 2) {
      std::inplace_merge(at(bounds[k]), at(bounds[k + 1]), at(bounds[k + 2]));
      merged.push_back(bounds[k + 2]);
    }
    if (k + 1 < bounds.size()) merged.push_back(bounds[k + 1]);  // an odd run carries over
    bounds.swap(merged);
  }
  std::inplace_merge(v.begin(), at(from), v.end());
  v.erase(std::unique(v.begin(), v.end()), v.end());
}

}  // namespace

void ViolationDatabase::settle() {
  if (touchedSettled != touched.size()) {
    mergeSortedUnique(touched, touchedSettled);
    touchedSettled = touched.size();
  }
  if (pendingSettled != pendingClearList.size()) {
    const std::size_t from = pendingSorted.size();
    pendingSorted.insert(pendingSorted.end(),
                         pendingClearList.begin() + static_cast<std::ptrdiff_t>(pendingSettled),
                         pendingClearList.end());
    mergeSortedUnique(pendingSorted, from);
    pendingSettled = pendingClearList.size();
  }
}

std::vector<double> ViolationDatabase::takeTouched() {
  std::lock_guard<std::mutex> lock(mutex);
  settle();
  // Taken by swap: the room of a large pass (the initial scan touches every block) is not kept.
  std::vector<double> taken;
  taken.swap(touched);
  touchedSettled = 0;
  return taken;
}

std::vector<double> ViolationDatabase::pendingClears() const {
  std::lock_guard<std::mutex> lock(mutex);
  return pendingClearList;
}

void ViolationDatabase::clearPendingClears() {
  std::lock_guard<std::mutex> lock(mutex);
  // None keeps its room between passes.
  std::vector<double>().swap(pendingClearList);
  std::vector<double>().swap(pendingSorted);
  pendingSettled = 0;
}

void ViolationDatabase::dropDeadBlocks(const std::function<bool(double)>& isAlive) {
  std::vector<double> handles;
  {
    std::lock_guard<std::mutex> lock(mutex);
    for (const auto& entry : byBlock) handles.push_back(entry.first);
  }
  // The host is asked outside the lock: the store never calls out while it holds its mutex.
  std::vector<double> dead;
  for (double h : handles) {
    if (!isAlive(h)) dead.push_back(h);
  }
  std::lock_guard<std::mutex> lock(mutex);
  for (double h : dead) {
    byBlock.erase(h);
    touch(h);
  }
}

void ViolationDatabase::removeAuditorViolations() {
  std::lock_guard<std::mutex> lock(mutex);
  for (auto entry = byBlock.begin(); entry != byBlock.end();) {
    if (std::erase_if(entry->second, [](const ViolationPtr& v) { return isAuditor(v->severity); }))
      touch(entry->first);
    entry = entry->second.empty() ? byBlock.erase(entry) : std::next(entry);
  }
}

template <typename Pred>
void ViolationDatabase::removeFirstMatch(Pred pred) {
  for (auto entry = byBlock.begin(); entry != byBlock.end();) {
    ViolationSet& set = entry->second;
    for (auto it = set.begin(); it != set.end(); ++it) {
      if (pred(**it)) {
        set.erase(it);
        touch(entry->first);
        break;
      }
    }
    entry = set.empty() ? byBlock.erase(entry) : std::next(entry);
  }
}

void ViolationDatabase::removeErrors() {
  std::lock_guard<std::mutex> lock(mutex);
  removeFirstMatch([](const EditTimeViolation& v) { return isError(v.severity); });
}

void ViolationDatabase::removeWarnings() {
  std::lock_guard<std::mutex> lock(mutex);
  removeFirstMatch([](const EditTimeViolation& v) { return v.severity == Severity::kWarning; });
}

void ViolationDatabase::markCommentedUnder(const std::wstring& path, bool isCommented) {
  std::lock_guard<std::mutex> lock(mutex);
  for (auto& [handle, set] : byBlock) {
    for (auto it = set.begin(); it != set.end();) {
      const ViolationPtr& v = *it;
      if (v->blockPath.find(path) == std::wstring::npos) {
        ++it;
        continue;
      }
      v->isCommented = isCommented ? 1 : 0;
      touch(handle);
      if (v->checkId == "orvanta.blockara.GoToFromBlockMismatch") {
        notePendingClear(handle);
        it = set.erase(it);
      } else {
        ++it;
      }
    }
  }
}

void ViolationDatabase::renamePaths(const std::wstring& oldPath, const std::wstring& newPath) {
  std::lock_guard<std::mutex> lock(mutex);
  for (auto& [handle, set] : byBlock) {
    for (const auto& v : set) {
      auto pos = v->blockPath.find(oldPath);
      if (pos == std::wstring::npos) continue;
      v->blockPath.replace(pos, oldPath.size(), newPath);
      touch(handle);
    }
  }
}

std::size_t ViolationDatabase::blockCount() const {
  std::lock_guard<std::mutex> lock(mutex);
  return byBlock.size();
}

}  // namespace bkedittimecheck
