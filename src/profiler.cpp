#include "src/profiler.h"

#include <utility>

#include "src/hostinterface.h"

namespace bkedittimecheck {

Profiler::Profiler(const char* /*group*/, std::string point)
    : point(std::move(point)), isRunning(true) {
  logTracePoint(this->point, true);
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
  logTracePoint(point, false);
}

}  // namespace bkedittimecheck
