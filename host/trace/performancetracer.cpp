#include "host/trace/performancetracer.h"

#include "host/trace/ptlog.h"

#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <stdexcept>

namespace blockara {
namespace {

const auto traceOrigin = std::chrono::steady_clock::now();
std::atomic<int> nextTid{1};

struct ThreadIdentity {
  int tid = nextTid.fetch_add(1);
  std::string name;
};

ThreadIdentity& currentThread() {
  thread_local ThreadIdentity identity;
  return identity;
}

void appendEscaped(std::string& out, const std::string& text) {
  out += '"';
  for (const char c : text) {
    switch (c) {
      case '"': out += "\\\""; break;
      case '\\': out += "\\\\"; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      case '\t': out += "\\t"; break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          char buf[8];
          std::snprintf(buf, sizeof buf, "\\u%04x", static_cast<unsigned>(c));
          out += buf;
        } else {
          out += c;
        }
    }
  }
  out += '"';
}

}  // namespace

PerformanceTracer& PerformanceTracer::instance() {
  // Never destroyed: threads may still log while other statics are torn down at exit.
  static PerformanceTracer* tracer = new PerformanceTracer();
  return *tracer;
}

void PerformanceTracer::start(const std::string& filePath) {
  std::FILE* opened = std::fopen(filePath.c_str(), "w");
  if (opened == nullptr) {
    throw std::runtime_error("cannot write the trace file '" + filePath +
                             "': " + std::strerror(errno));
  }
  std::lock_guard<std::mutex> lock(mutex);
  finishLocked();
  file = opened;
  path = filePath;
  firstEvent = true;
  announcedThreads.clear();
  std::fputs("[\n", file);
  std::fflush(file);
  on.store(true);
}

void PerformanceTracer::stop() {
  std::lock_guard<std::mutex> lock(mutex);
  finishLocked();
}

void PerformanceTracer::finishLocked() {
  if (file == nullptr) return;
  on.store(false);
  std::fputs("\n]\n", file);
  std::fclose(file);
  file = nullptr;
  path.clear();
}

std::string PerformanceTracer::filePath() const {
  std::lock_guard<std::mutex> lock(mutex);
  return path;
}

void PerformanceTracer::nameCurrentThread(const std::string& name) { currentThread().name = name; }

void PerformanceTracer::log(const std::string& component, const std::string& contextA,
                            const std::string& contextB, const std::string& point, bool isStart) {
  if (!on.load(std::memory_order_relaxed)) return;
  try {
    const double ts = std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() -
                                                                traceOrigin)
                          .count();
    ThreadIdentity& self = currentThread();
    const std::string pidTid =
        ",\"pid\":" + std::to_string(::getpid()) + ",\"tid\":" + std::to_string(self.tid);

    std::string event = "{\"name\":";
    appendEscaped(event, point);
    event += ",\"cat\":";
    appendEscaped(event, component);
    event += isStart ? ",\"ph\":\"B\"" : ",\"ph\":\"E\"";
    char tsText[48];
    std::snprintf(tsText, sizeof tsText, ",\"ts\":%.3f", ts);
    event += tsText;
    event += pidTid;
    if (!contextA.empty() || !contextB.empty()) {
      event += ",\"args\":{\"contextA\":";
      appendEscaped(event, contextA);
      event += ",\"contextB\":";
      appendEscaped(event, contextB);
      event += '}';
    }
    event += '}';

    std::lock_guard<std::mutex> lock(mutex);
    if (file == nullptr) return;
    if (announcedThreads.insert(self.tid).second) {
      std::string meta = "{\"name\":\"thread_name\",\"ph\":\"M\"" + pidTid + ",\"args\":{\"name\":";
      appendEscaped(meta, self.name.empty() ? "thread " + std::to_string(self.tid) : self.name);
      meta += "}}";
      std::fputs(firstEvent ? "" : ",\n", file);
      std::fputs(meta.c_str(), file);
      firstEvent = false;
    }
    std::fputs(firstEvent ? "" : ",\n", file);
    std::fputs(event.c_str(), file);
    firstEvent = false;
    std::fflush(file);
  } catch (...) {
    // Tracing must never disturb the traced code.
  }
}

void PerformanceTracer::addGrouping(const std::string& name,
                                    const std::vector<std::string>& groups) {
  std::lock_guard<std::mutex> lock(mutex);
  groupings[name] = groups;
}

std::map<std::string, std::vector<std::string>> PerformanceTracer::groupingsByName() const {
  std::lock_guard<std::mutex> lock(mutex);
  return groupings;
}

}  // namespace blockara

void ptLogBlockaraData(const std::string& component, const std::string& contextA,
                       const std::string& contextB, const std::string& point, bool isStart) {
  blockara::PerformanceTracer::instance().log(component, contextA, contextB, point, isStart);
}

std::string ptAddGrouping(const std::string& name, const std::vector<std::string>& groups) {
  blockara::PerformanceTracer::instance().addGrouping(name, groups);
  return name;
}
