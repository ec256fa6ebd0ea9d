#include "src/pendingwork.h"

namespace bkedittimecheck {

void PendingWork::addQueued(std::int64_t n) {
  std::lock_guard<std::mutex> lock(mutex);
  queued += n;
  if (queued == n) passes += 1;
}

bool PendingWork::finishOne() {
  std::lock_guard<std::mutex> lock(mutex);
  queued -= 1;
  return queued == 0;
}

std::int64_t PendingWork::queuedCount() const {
  std::lock_guard<std::mutex> lock(mutex);
  return queued;
}

void PendingWork::passStyled() {
  // Unconditional: a stray applyStyle for a pass that was never counted wraps the counter, and
  // the engine then counts as busy until it is replaced.
  passes -= 1;
}

}  // namespace bkedittimecheck
