#include "src/workerthread/checkfailures.h"

#include <mutex>
#include <utility>

namespace bkedittimecheck {
namespace {

struct FailureLog {
  std::mutex mutex;
  std::vector<CheckFailure> failures;  // guarded by mutex
};

FailureLog& failureLog() {
  static FailureLog log;
  return log;
}

}  // namespace

void noteCheckFailure(CheckFailure failure) {
  FailureLog& log = failureLog();
  std::lock_guard<std::mutex> lock(log.mutex);
  log.failures.push_back(std::move(failure));
}

std::vector<CheckFailure> checkFailures() {
  FailureLog& log = failureLog();
  std::lock_guard<std::mutex> lock(log.mutex);
  return log.failures;
}

}  // namespace bkedittimecheck
