#include "src/presentation/edittimestyler.h"

#include <map>
#include <utility>

#include "host/style/classselector.h"
#include "host/style/glow.h"
#include "host/style/style.h"
#include "src/editcodes.h"
#include "src/violationdatabase.h"

namespace bkedittimecheck {
namespace {

namespace ds = diagram::style;

void addGlowRule(ds::Styler& styler, const wchar_t* className, const ds::Color& color) {
  const ds::Glow glow(color, 10, false, 1.0);
  ds::Style style;
  style.set("Glow", glow);
  styler.addRule(ds::ClassSelector(className, L""), style);
}

// The class names, made once: the styler takes them as strings, and a pass names them for every
// block it styles.
const std::wstring& warnClass() {
  static const std::wstring name = L"Warn";
  return name;
}

const std::wstring& errorClass() {
  static const std::wstring name = L"Error";
  return name;
}

}  // namespace

const std::wstring& editTimeStylerName() {
  static const std::wstring name = L"Orvanta.EditTimeCheckingStyler";
  return name;
}

ds::Styler* createEditTimeStyler() {
  // An earlier engine already put the rules in place; adding them again would double them.
  if (ds::Styler* existing = ds::getStyler(editTimeStylerName())) return existing;
  ds::createStyler(editTimeStylerName(), L"", 0.0);
  ds::Styler* styler = ds::getStyler(editTimeStylerName());
  addGlowRule(*styler, L"Warn", ds::Color(0.9, 0.5, 0.0, 0.9));
  addGlowRule(*styler, L"Error", ds::Color(1.0, 0.0, 0.0, 1.0));
  return styler;
}

const char* violationCategory(std::uint32_t severity) {
  switch (severity) {
    case Severity::kError:
      return "EDITTIME_ERROR";
    case Severity::kAuditorWarning:
      return "RAWARNING";
    case Severity::kAuditorError:
      return "RAERROR";
    default:
      return "EDITTIME_WARNING";
  }
}

EditTimeStyling::EditTimeStyling(ViolationDatabase& violations, ds::Styler& styler,
                                 BlockAlive isAlive, ViolationExcluded isExcluded,
                                 StandingRevision standing)
    : violations(violations),
      styler(styler),
      isAlive(std::move(isAlive)),
      isExcluded(std::move(isExcluded)),
      standing(std::move(standing)) {}

std::optional<EditTimeStyling::Baseline> EditTimeStyling::currentBaseline() const {
  if (!standing) return std::nullopt;
  return Baseline{styler.applyCalls() + styler.removeCalls(), standing()};
}

void EditTimeStyling::applyStyling() {
  std::vector<double> touched = violations.takeTouched();
  if (due.empty()) {
    due.swap(touched);
  } else {
    due.insert(due.end(), touched.begin(), touched.end());
  }
  const std::optional<Baseline> now = currentBaseline();
  const bool wholeStore = !now || !baseline || now->stylerCalls != baseline->stylerCalls ||
                          now->standing != baseline->standing;
  baseline.reset();  // until this pass completes
  if (wholeStore) {
    applyStylingToAll();
  } else {
    const std::vector<ViolationDatabase::StylingFacts> facts = violations.stylingFactsOf(due);
    for (std::size_t i = 0; i < due.size(); ++i) styleBlock(due[i], facts[i]);
    violations.clearPendingClears();
  }
  std::vector<double>().swap(due);  // the room of a large pass is not kept between passes
  baseline = currentBaseline();
}

void EditTimeStyling::styleBlock(double handle, const ViolationDatabase::StylingFacts& facts) {
  if (!isAlive(handle)) return;
  if (facts.pendingClear) {
    styler.removeClass(handle, warnClass());
    styler.removeClass(handle, errorClass());
  }
  if (facts.warning) {
    if (*facts.warning) {
      styler.removeClass(handle, warnClass());
    } else {
      styler.applyClass(handle, warnClass());
    }
  }
  for (const EditTimeViolation& record : facts.auditor) {
    if (!record.isCommented && !isExcluded(handle, record)) {
      styler.applyClass(handle, warnClass());
      break;
    }
    styler.removeClass(handle, warnClass());
  }
  if (facts.error) {
    if (*facts.error) {
      styler.removeClass(handle, errorClass());
    } else {
      styler.applyClass(handle, errorClass());
    }
  }
}

void EditTimeStyling::applyStylingToAll() {
  for (double handle : violations.pendingClears()) {
    if (!isAlive(handle)) continue;
    styler.removeClass(handle, warnClass());
    styler.removeClass(handle, errorClass());
  }
  violations.clearPendingClears();

  for (const auto& [handle, commented] : violations.blocksWithEditTimeWarnings()) {
    if (!isAlive(handle)) continue;
    if (commented) {
      styler.removeClass(handle, warnClass());
    } else {
      styler.applyClass(handle, warnClass());
    }
  }

  // Runs after the edit-time warnings on purpose: a commented or exempted rule-auditor
  // violation costs the block the "Warn" that the step above gave it.
  for (const auto& [handle, records] : violations.auditorViolations()) {
    if (!isAlive(handle)) continue;
    for (const EditTimeViolation& record : records) {
      if (!record.isCommented && !isExcluded(handle, record)) {
        styler.applyClass(handle, warnClass());
        break;
      }
      styler.removeClass(handle, warnClass());
    }
  }

  // Exclusions govern only "Warn": an exempted rule-auditor error still shows red.
  for (const auto& [handle, commented] : violations.blocksWithErrors()) {
    if (!isAlive(handle)) continue;
    if (commented) {
      styler.removeClass(handle, errorClass());
    } else {
      styler.applyClass(handle, errorClass());
    }
  }
}

void EditTimeStyling::removeStyling(std::uint32_t code) {
  violations.dropDeadBlocks(isAlive);
  const auto removeFrom = [this](const std::map<double, bool>& blocks,
                                 const std::wstring& className) {
    for (const auto& entry : blocks) styler.removeClass(entry.first, className);
  };
  switch (code) {
    case EditTimeEvent::kAuditorOff:
      // A block that also has an edit-time warning keeps its "Warn".
      removeFrom(violations.blocksWithOnlyAuditorViolations(), warnClass());
      violations.removeAuditorViolations();
      break;
    case EditTimeEvent::kErrorsOff:
      removeFrom(violations.blocksWithErrors(), errorClass());
      violations.removeErrors();
      break;
    case EditTimeEvent::kWarningsOff:
      removeFrom(violations.blocksWithEditTimeWarnings(), warnClass());
      violations.removeWarnings();
      break;
    default:
      removeFrom(violations.blocksWithEditTimeWarnings(), warnClass());
      removeFrom(violations.blocksWithErrors(), errorClass());
      break;
  }
}

void EditTimeStyling::removeBlockResults(double handle) {
  violations.removeAll(handle);
  if (!isAlive(handle)) return;
  styler.removeClass(handle, warnClass());
  styler.removeClass(handle, errorClass());
}

std::vector<std::string> EditTimeStyling::getBlockViolationStrings(double handle) const {
  std::vector<std::string> strings;
  if (!isAlive(handle)) return strings;
  for (const EditTimeViolation& record : violations.violationsOf(handle)) {
    // The comment state plays no part here: a commented block still reports.
    if (Severity::isAuditor(record.severity) && isExcluded(handle, record)) continue;
    strings.push_back(record.violationType);
    strings.push_back(record.checkId);
    strings.push_back(violationCategory(record.severity));
  }
  return strings;
}

}  // namespace bkedittimecheck
