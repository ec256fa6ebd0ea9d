#pragma once

#include <cstdint>
#include <mutex>

namespace bkedittimecheck {

/// Counts the checks queued for one diagram and not yet finished (`queued`), and the passes begun
/// and not yet styled (`passes`). A pass begins when work is queued while nothing was queued.
///
/// Thread contract: `addQueued` runs on the main thread, `finishOne` on the worker, `queuedCount`
/// on either; `mutex` guards `queued`. `passes` is main-thread only and has no guard.
class PendingWork {
 public:
  PendingWork() = default;
  PendingWork(const PendingWork&) = delete;
  PendingWork& operator=(const PendingWork&) = delete;

  /// Main thread. Adds `n` queued checks; begins a pass when `queued` was 0.
  void addQueued(std::int64_t n);

  /// Worker. One queued check finished; true when it was the last one queued, which ends its
  /// pass. Decided under the lock with the count: work queued a moment later begins a new pass
  /// and does not take this one's styling away.
  bool finishOne();

  /// Any thread. The number of queued checks.
  std::int64_t queuedCount() const;

  /// Main thread. Passes begun and not yet styled.
  std::uint32_t passCount() const { return passes; }

  /// Main thread. One pass was styled; the count is decremented unconditionally and wraps
  /// around below 0.
  void passStyled();

 private:
  mutable std::mutex mutex;
  std::int64_t queued = 0;  // guarded by mutex
  std::uint32_t passes = 0;  // main thread only
};

}  // namespace bkedittimecheck
