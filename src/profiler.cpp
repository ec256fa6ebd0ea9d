#include "src/profiler.h"

#include <atomic>
#include <mutex>
#include <utility>
#include <vector>

#include "host/trace/tracer.h"

namespace bkedittimecheck {
namespace {

std::uint64_t nextObjectId() {
  // Relaxed: the number only has to differ most of the time.
  static std::atomic<std::uint64_t> counter{0};
  return counter.fetch_add(1, std::memory_order_relaxed) + 1;
}

struct TraceContext {
  std::mutex mutex;
  std::string traceContextA;  // guarded by mutex
  std::string traceContextB;  // guarded by mutex
};

TraceContext& context() {
  static TraceContext instance;
  return instance;
}

void log(const std::string& component, const std::string& point, bool isStart) {
  TraceContext& c = context();
  std::string a;
  std::string b;
  {
    std::lock_guard<std::mutex> lock(c.mutex);
    a = c.traceContextA;
    b = c.traceContextB;
  }
  ptLogBlockaraData(component, a, b, point, isStart);
}

}  // namespace

Object::Object() : objectId(nextObjectId()) {}

Object::~Object() = default;

Profiler::Profiler(const std::string& /*group*/, std::string point)
    : point(std::move(point)), isRunning(true) {
  log(component, this->point, true);
}

Profiler::~Profiler() {
  try {
    stop();
  } catch (...) {
    // A tracer failure must not escape a destructor that may run during unwinding.
  }
}

void Profiler::stop() {
  if (!isRunning) return;
  isRunning = false;
  log(component, point, false);
}

void Profiler::setTraceContext(const std::string& a, const std::string& b) {
  TraceContext& c = context();
  {
    std::lock_guard<std::mutex> lock(c.mutex);
    c.traceContextA = a;
    c.traceContextB = b;
  }
  (void)ptAddGrouping("EDITTIMECHECK", {"ENGINE", "GRAPH", "ALGORITHMS"});
}

void Profiler::clearTraceContext() {
  TraceContext& c = context();
  std::lock_guard<std::mutex> lock(c.mutex);
  c.traceContextA.clear();
  c.traceContextB.clear();
}

}  // namespace bkedittimecheck
