#pragma once

#include <string>

namespace bkedittimecheck {

/// Times one named engine step in the host's performance tracer: logs a start when made and a
/// stop when stopped or destroyed, so that a step is timed even when an exception passes.
///
/// Thread contract: local to one call on any thread.
class Profiler {
 public:
  /// Logs the start of `point`. `group` is accepted for the callers' sake; all pass "ENGINE".
  Profiler(const char* group, std::string point);
  ~Profiler();
  Profiler(const Profiler&) = delete;
  Profiler& operator=(const Profiler&) = delete;

  /// Logs the stop once; later calls and the destructor do nothing.
  void stop();

 private:
  std::string point;
  bool isRunning;
};

}  // namespace bkedittimecheck
