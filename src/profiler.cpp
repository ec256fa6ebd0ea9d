#include "src/profiler.h"

#include <mutex>
#include <utility>

#include "src/hostinterface.h"

namespace bkedittimecheck {
namespace {

// Process-wide, read by scopes on both threads; a tool of the host may set them at any time.
struct TraceContext {
  std::mutex mutex;
  std::string a;  // guarded by mutex
  std::string b;  // guarded by mutex
};

TraceContext& traceContext() {
  static TraceContext context;
  return context;
}

void log(const std::string& point, bool isStart) {
  TraceContext& context = traceContext();
  std::string a;
  std::string b;
  {
    std::lock_guard<std::mutex> lock(context.mutex);
    a = context.a;
    b = context.b;
  }
  logTracePoint(point, isStart, a, b);
}

}  // namespace

Profiler::Profiler(const char* /*group*/, std::string point)
    : point(std::move(point)), isRunning(true) {
  log(this->point, true);
}

void Profiler::setTraceContext(const std::string& a, const std::string& b) {
  {
    TraceContext& context = traceContext();
    std::lock_guard<std::mutex> lock(context.mutex);
    context.a = a;
    context.b = b;
  }
  addTraceGrouping();
}

void Profiler::clearTraceContext() {
  TraceContext& context = traceContext();
  std::lock_guard<std::mutex> lock(context.mutex);
  context.a.clear();
  context.b.clear();
}

Profiler::~Profiler() {
  try {
    stop();
  } catch (...) {
  }
}

void Profiler::stop() {
  if (!isRunning) return;
  isRunning = false;
  log(point, false);
}

}  // namespace bkedittimecheck
