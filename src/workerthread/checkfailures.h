#pragma once

#include <string>
#include <vector>

namespace bkedittimecheck {

/// A check whose run threw: the worker dropped it, and its engine's pass stays counted.
struct CheckFailure {
  std::string checkId;
  std::wstring diagramName;
  std::string what;  ///< the exception's text; "unknown error" when it was not a std::exception
};

/// Any thread. Records a failed run. Never throws beyond allocation.
void noteCheckFailure(CheckFailure failure);

/// Any thread. Every failure recorded so far, oldest first. A batch run uses it to tell a user
/// which rule gave up instead of waiting for a pass that will never be styled.
std::vector<CheckFailure> checkFailures();

}  // namespace bkedittimecheck
