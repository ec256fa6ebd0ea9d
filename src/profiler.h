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

  /// Any thread. Stores the two context strings that go with every later log call of every
  /// scope, and registers the engine's grouping with the tracer. Nothing in the engine calls it;
  /// a tool of the host may.
  static void setTraceContext(const std::string& a, const std::string& b);

  /// Any thread. Empties both context strings.
  static void clearTraceContext();

 private:
  std::string point;
  bool isRunning;
};

}  // namespace bkedittimecheck
