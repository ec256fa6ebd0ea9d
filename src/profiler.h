#pragma once

#include <cstdint>
#include <string>

namespace bkedittimecheck {

/// Root of the engine's timed objects: each construction takes the next number of a
/// process-wide counter. The counter is bumped from both threads without a lock; nothing but
/// the object itself reads its number, so a lost count does no harm.
class Object {
 public:
  /// Any thread. Takes the next `objectId`.
  Object();
  virtual ~Object();

  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  /// This object's number.
  std::uint64_t id() const { return objectId; }

 private:
  std::uint64_t objectId;
};

/// A scope that times one named engine step through the host's performance tracer: it logs a
/// start when made and a stop when stopped or destroyed, so that a step is timed even when an
/// exception passes through it. Any thread may use one; an instance is local to one call.
class Profiler : public Object {
 public:
  /// Any thread. Logs the start of `point`. `group` is accepted and not stored: every caller
  /// passes "ENGINE" and the tracer's grouping does the rest. Throws what the tracer throws.
  Profiler(const std::string& group, std::string point);

  /// Logs the stop unless `stop` already did.
  ~Profiler() override;

  /// Any thread. Logs the stop once; later calls and the destructor do nothing.
  void stop();

  /// Any thread. Stores the two context strings that go with every log call, and registers the
  /// grouping "EDITTIMECHECK" of "ENGINE", "GRAPH", "ALGORITHMS" with the tracer.
  static void setTraceContext(const std::string& a, const std::string& b);

  /// Any thread. Empties both context strings.
  static void clearTraceContext();

  const std::string component = "EDITTIMECHECK";
  const std::string point;

 private:
  bool isRunning;
};

}  // namespace bkedittimecheck
