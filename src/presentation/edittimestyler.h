#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/style/styler.h"
#include "src/edittimeviolation.h"

namespace bkedittimecheck {

class ViolationDatabase;

/// Main thread. The one process-wide styler "Orvanta.EditTimeCheckingStyler", created with its
/// two rules ("Warn" orange, then "Error" red, each a "Glow") on first use; later calls find it
/// by name and add no rules. The styling service owns it. Never returns null.
diagram::style::Styler* createEditTimeStyler();

/// Any thread. The styler's name, built once.
const std::wstring& editTimeStylerName();

/// Any thread. The category word of a severity: 1 "EDITTIME_ERROR", 3 "RAWARNING", 4 "RAERROR",
/// any other "EDITTIME_WARNING".
const char* violationCategory(std::uint32_t severity);

/// Whether a block still exists (`BKGlue::getBlockFromHandle` in the host).
using BlockAlive = std::function<bool(double handle)>;
/// Whether the exclusions exempt a rule-auditor violation of a block.
using ViolationExcluded = std::function<bool(double handle, const EditTimeViolation& violation)>;

/// The passes that turn stored violations into the style classes "Warn" and "Error". They keep
/// no record of what is styled: every pass recomputes from the store, and each store query
/// returns a copy, so the styling service and the exclusion test are never called with the
/// store locked.
///
/// Thread contract: main thread only, the only thread that calls the styling service.
/// Exceptions of the styling service or of the exclusion test pass to the caller.
class EditTimeStyling {
 public:
  /// Main thread. Keeps references to all four; they must outlive the object.
  EditTimeStyling(ViolationDatabase& violations, diagram::style::Styler& styler, BlockAlive isAlive,
                  ViolationExcluded isExcluded);
  EditTimeStyling(const EditTimeStyling&) = delete;
  EditTimeStyling& operator=(const EditTimeStyling&) = delete;

  /// Main thread. The styling pass: take the classes off the pending clears, then edit-time
  /// warnings, then rule-auditor violations, then errors, in that order, each step free to undo
  /// an earlier one. Handles that no longer resolve are skipped.
  void applyStyling();

  /// Main thread. The removal pass for an event code: 8 takes "Warn" off the blocks with only
  /// rule-auditor violations and drops those violations; 11 takes "Error" off and drops the
  /// first error of each block; 13 does the same for "Warn" and edit-time warnings; any other
  /// code takes both classes off and leaves the store. Dead blocks are forgotten first.
  void removeStyling(std::uint32_t code);

  /// Main thread. Forgets all violations of a block and, if it still exists, takes both classes
  /// off it.
  void removeBlockResults(double handle);

  /// Main thread. Three strings per reported violation of a block (type, check ID, category),
  /// exempted rule-auditor violations left out; empty when the block no longer exists.
  std::vector<std::string> getBlockViolationStrings(double handle) const;

 private:
  ViolationDatabase& violations;
  diagram::style::Styler& styler;
  BlockAlive isAlive;
  ViolationExcluded isExcluded;
};

}  // namespace bkedittimecheck
