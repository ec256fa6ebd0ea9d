#pragma once

#include <string>
#include <vector>

/// The host's performance tracer entry points, as modules call them. Both are cheap when tracing
/// is off (`blockara::PerformanceTracer`), and both may be called from any thread.

/// Any thread. Logs the start (`isStart` true) or the stop of the named point of `component`,
/// with the two context strings. When tracing is on, the event goes to the trace file with the
/// time and the calling thread; otherwise nothing happens. Never throws.
void ptLogBlockaraData(const std::string& component, const std::string& contextA,
                       const std::string& contextB, const std::string& point, bool isStart);

/// Any thread. Registers the groups of `name` (replacing an earlier list of that name), and
/// returns the grouping's key, which is `name` itself. Never throws beyond allocation.
std::string ptAddGrouping(const std::string& name, const std::vector<std::string>& groups);
