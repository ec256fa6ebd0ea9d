#pragma once

#include <atomic>
#include <cstdio>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace blockara {

/// The process-wide performance tracer. While a trace file is set, every start and stop logged
/// through `ptLogBlockaraData` is written as a Chrome trace-event ("B" and "E" events, JSON array
/// form) that Perfetto and chrome://tracing open; each thread gets a small tid and a name.
/// While off, a log call costs one atomic load. Each event is flushed as it is written, so a
/// trace cut short by the end of the process still opens (the JSON array form needs no `]`).
///
/// Thread contract: every operation may be called from any thread. `mutex` guards `file`,
/// `firstEvent`, `announcedThreads`, `groupings` and `path`; `on` mirrors `file != nullptr` for
/// the cheap test.
class PerformanceTracer {
 public:
  /// Any thread. The process-wide tracer (off until `start`).
  static PerformanceTracer& instance();

  PerformanceTracer(const PerformanceTracer&) = delete;
  PerformanceTracer& operator=(const PerformanceTracer&) = delete;

  /// Any thread. Starts writing the trace to `filePath`, replacing the file. A trace already
  /// running is finished first. Throws `std::runtime_error` naming the file when it cannot be
  /// opened; a trace already running then goes on untouched.
  void start(const std::string& filePath);

  /// Any thread. Finishes the trace file (closing the JSON array) and turns tracing off. Does
  /// nothing when off.
  void stop();

  /// Any thread. True while a trace file is written.
  bool isOn() const { return on.load(std::memory_order_relaxed); }

  /// Any thread. The file being written, or empty.
  std::string filePath() const;

  /// Any thread. Names the calling thread in the trace ("main", "worker"...). Takes effect for
  /// traces started later and for the current one if the thread has not logged yet.
  static void nameCurrentThread(const std::string& name);

  /// Any thread. Writes one start or stop event; does nothing when off. Never throws.
  void log(const std::string& component, const std::string& contextA,
           const std::string& contextB, const std::string& point, bool isStart);

  /// Any thread. Registers a grouping (see `ptAddGrouping`).
  void addGrouping(const std::string& name, const std::vector<std::string>& groups);

  /// Any thread. The groupings registered so far, by name.
  std::map<std::string, std::vector<std::string>> groupingsByName() const;

 private:
  PerformanceTracer() = default;
  ~PerformanceTracer() = default;
  void finishLocked();

  std::atomic<bool> on{false};
  mutable std::mutex mutex;
  std::FILE* file = nullptr;            // guarded by mutex
  std::string path;                     // guarded by mutex
  bool firstEvent = true;               // guarded by mutex
  std::set<int> announcedThreads;       // guarded by mutex
  std::map<std::string, std::vector<std::string>> groupings;  // guarded by mutex
};

}  // namespace blockara
