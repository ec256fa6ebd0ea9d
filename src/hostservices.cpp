// The host services that the engine reaches through hostinterface.h: the user's preference, the
// feature flags, the styling service, the tracer and the asynchronous evaluation bridge.
#include "host/language/cmddistributor.h"
#include "host/language/nvm.h"
#include "host/prefs/bkfeature.h"
#include "host/prefs/edittimepreferences.h"
#include "host/style/styler.h"
#include "host/trace/ptlog.h"
#include "src/evaluation/feval.h"
#include "src/hostinterface.h"
#include "src/presentation/edittimestyler.h"

namespace bkedittimecheck {

bool showEditTimeIssues() { return bk::bkedittimecheck::bkutils::getShowEditTimeIssues(); }

bool featureOn(BkFeature* feature) { return feature != nullptr && feature->isOn(); }

int featureLevel(BkFeature* feature) { return feature != nullptr ? feature->getLevel() : 0; }

void removeErrorAndWarnClasses(double handle) {
  diagram::style::Styler* styler = createEditTimeStyler();
  styler->removeClass(handle, L"Error");
  styler->removeClass(handle, L"Warn");
}

void postApplyStyle(const std::wstring& diagramName, std::uint32_t engineId) {
  try {
    // The future is dropped at once: the worker never waits for its styling.
    postFEval(nvm::Factory::getCurrentLocalMVM(), "edittime.Styler.applyStyle", diagramName,
              engineId);
  } catch (const cmddistributor::RuntimeException& error) {
    (void)error.getMessage();  // styling of this pass is lost; the next pass styles everything
  } catch (...) {
  }
}

void logTracePoint(const std::string& point, bool isStart, const std::string& contextA,
                   const std::string& contextB) {
  ptLogBlockaraData("EDITTIMECHECK", contextA, contextB, point, isStart);
}

void addTraceGrouping() { (void)ptAddGrouping("EDITTIMECHECK", {"ENGINE", "GRAPH", "ALGORITHMS"}); }

}  // namespace bkedittimecheck
