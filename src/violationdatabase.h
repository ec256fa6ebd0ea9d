#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "src/edittimeviolation.h"

namespace bkedittimecheck {

/// The per-diagram store of check results: for each block handle the set of its violations,
/// identified by (`checkId`, `violationType`, `severity`), and the handles whose style classes
/// the next styling pass must take off first.
///
/// Thread contract: the worker adds and removes, the main thread reads for styling and for the
/// host language. Every public operation takes `mutex` for its whole length and never calls out
/// while holding it. A failed lock throws `std::system_error`.
class ViolationDatabase {
 public:
  using ViolationPtr = std::shared_ptr<EditTimeViolation>;
  using ViolationSet =
      std::unordered_set<ViolationPtr, EditTimeViolationHash, EditTimeViolationEqual>;

  ViolationDatabase() = default;
  ViolationDatabase(const ViolationDatabase&) = delete;
  ViolationDatabase& operator=(const ViolationDatabase&) = delete;

  /// Any thread. Inserts `violation` into its block's set. An equal record with the same
  /// `isCommented` keeps its place and the new one is dropped; with a different `isCommented`
  /// the new record replaces it.
  void add(const ViolationPtr& violation);

  /// Any thread. Erases the equal record from its block's set; an unknown handle is no error.
  /// The handle goes on `pendingClears` when a record was erased or the block has no records
  /// (an unknown handle included); an empty set leaves the map.
  void remove(const ViolationPtr& violation);

  /// Any thread. `remove` of `violation` for each handle of `handles` in turn, under one taking
  /// of the lock; `violation`'s own handle is left as the last of them.
  void removeEach(const ViolationPtr& violation, const std::vector<double>& handles);

  /// Any thread. Erases every record of this check and type over all blocks; a block left
  /// empty goes on `pendingClears` and leaves the map.
  void removeByType(const std::string& checkId, const std::string& violationType);

  /// Any thread. Forgets every record of one block.
  void removeAll(double blockHandle);

  /// Any thread. Erases one block's records of one check and puts the handle on `pendingClears`,
  /// also for an unknown handle.
  void removeByCheck(double blockHandle, const std::string& checkId);

  /// Any thread. Copies of one block's records; empty for an unknown handle.
  std::vector<EditTimeViolation> violationsOf(double blockHandle) const;

  /// Any thread. Copies of one block's records of one check.
  std::vector<EditTimeViolation> violationsOfBlock(double blockHandle,
                                                   const std::string& checkId) const;

  /// Any thread. The shared records of one check over all blocks.
  std::vector<ViolationPtr> violationsByCheck(const std::string& checkId) const;

  /// Any thread. Handle to `isCommented` of the first severity-0 record, for each block with one.
  std::map<double, bool> blocksWithEditTimeWarnings() const;

  /// Any thread. The same for records of severity 1 or 4.
  std::map<double, bool> blocksWithErrors() const;

  /// Any thread. Blocks with a severity 3 or 4 record and none of severity 0; the flag is the
  /// `isCommented` of the block's last such record in set order.
  std::map<double, bool> blocksWithOnlyAuditorViolations() const;

  /// Any thread. Handle to copies of its severity 3 and 4 records, for each block with one.
  std::map<double, std::vector<EditTimeViolation>> auditorViolations() const;

  /// Any thread. A copy of the handles whose classes the next styling pass takes off first.
  std::vector<double> pendingClears() const;

  /// Any thread. Empties `pendingClears`.
  void clearPendingClears();

  /// Main thread. Erases every block for which `isAlive(handle)` is false. `isAlive` is called
  /// outside the lock, on a copy of the handles.
  void dropDeadBlocks(const std::function<bool(double)>& isAlive);

  /// Any thread. Erases every record of severity 3 or 4.
  void removeAuditorViolations();

  /// Any thread. Erases, per block, the first record of severity 1 or 4 and no more.
  void removeErrors();

  /// Any thread. Erases, per block, the first record of severity 0 and no more.
  void removeWarnings();

  /// Any thread. Sets `isCommented` of every record whose path contains `path`; such records of
  /// the Goto/From check are erased instead, their handle going on `pendingClears`.
  void markCommentedUnder(const std::wstring& path, bool isCommented);

  /// Any thread. Replaces `oldPath` by `newPath` inside every record path that contains it.
  void renamePaths(const std::wstring& oldPath, const std::wstring& newPath);

  /// Any thread. Number of blocks that hold records.
  std::size_t blockCount() const;

  /// What a styling pass reads of one block: whether it waits on `pendingClears`, the
  /// `isCommented` of its first severity-0 record and of its first severity 1 or 4 record, and
  /// copies of its severity 3 and 4 records, each read by the same rules as the whole-store
  /// queries above.
  struct StylingFacts {
    bool pendingClear = false;
    std::optional<bool> warning;
    std::vector<EditTimeViolation> auditor;
    std::optional<bool> error;
  };
  /// Any thread. The facts of each handle, in the order given.
  std::vector<StylingFacts> stylingFactsOf(const std::vector<double>& handles) const;

  /// Any thread. The handles whose records (or place on `pendingClears`) changed since the last
  /// call, in no order; the set is emptied.
  std::vector<double> takeTouched();

  /// Any thread; the worker calls it when a pass ends, before it asks for the pass's styling.
  /// Sorts out the touched handles and the pending clears gathered so far, so that the styling
  /// on the main thread finds them ready. Changes nothing that the queries above answer.
  void settleForStyling();

 private:
  template <typename Pred>
  void removeFirstMatch(Pred pred);  // caller holds mutex
  void removeLocked(const ViolationPtr& violation);  // `remove`; caller holds mutex
  // Puts `handle` on `pendingClears`; caller holds mutex.
  void notePendingClear(double handle);
  // Notes that `handle` changed; caller holds mutex.
  void touch(double handle) { touched.push_back(handle); }
  // Sorts and thins out `touched` and brings `pendingSorted` up to date; caller holds mutex.
  void settle();

  mutable std::mutex mutex;
  std::map<double, ViolationSet> byBlock;  // guarded by mutex
  std::vector<double> pendingClearList;    // guarded by mutex; the `pendingClears` of the store
  // The rest is guarded by mutex. Plain vectors rather than hash sets: a pass's worth of nodes
  // allocated on the worker and freed on the main thread cost more than sorting at the pass's
  // end. `pendingSorted` holds the first `pendingSettled` entries of pendingClearList, sorted,
  // once each; `touched` may repeat handles after its first `touchedSettled`, which are sorted
  // and unique.
  std::vector<double> pendingSorted;
  std::size_t pendingSettled = 0;
  std::vector<double> touched;
  std::size_t touchedSettled = 0;
};

}  // namespace bkedittimecheck
