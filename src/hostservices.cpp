// Host services whose reference implementations are not merged into this branch yet: the
// preferences and feature flags, the styling service and the asynchronous evaluation bridge.
// Each answers as the host does by default.
#include "host/trace/ptlog.h"
#include "src/hostinterface.h"

namespace bkedittimecheck {

bool showEditTimeIssues() { return true; }  // the host's default preference

bool featureOn(BkFeature* /*feature*/) { return true; }  // all three flags start at level 1

void removeErrorAndWarnClasses(double /*handle*/) {}

void postApplyStyle(const std::wstring& /*diagramName*/, std::uint32_t /*engineId*/) {}

void logTracePoint(const std::string& point, bool isStart) {
  ptLogBlockaraData("EDITTIMECHECK", "", "", point, isStart);
}

}  // namespace bkedittimecheck
