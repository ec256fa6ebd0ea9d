#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/style/styler.h"
#include "src/edittimeviolation.h"
#include "src/violationdatabase.h"

namespace bkedittimecheck {

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
/// A count that moves whenever `BlockAlive` or `ViolationExcluded` may answer differently for a
/// block whose records did not change (blocks made or destroyed, paths, masks or library links
/// changed, exclusions reloaded).
using StandingRevision = std::function<std::uint64_t()>;

/// The passes that turn stored violations into the style classes "Warn" and "Error". A pass
/// gives every block of the store the classes its records call for, as if it recomputed from the
/// whole store, but it visits only the blocks whose records changed since the last pass, unless
/// something else may have changed a block's classes or what the two tests answer: the first
/// pass, a class change by anyone else (the styler's call count moved), a move of the standing
/// revision (or no revision given), or a pass that failed. Those passes recompute from the whole
/// store. A block's classes depend on that block's records alone, so both give the same classes.
/// Store queries return copies, so the styling service and the exclusion test are never called
/// with the store locked.
///
/// Thread contract: main thread only, the only thread that calls the styling service.
/// Exceptions of the styling service or of the exclusion test pass to the caller; the blocks of
/// that pass are styled again at the next.
class EditTimeStyling {
 public:
  /// Main thread. Keeps references to all four; they must outlive the object.
  EditTimeStyling(ViolationDatabase& violations, diagram::style::Styler& styler, BlockAlive isAlive,
                  ViolationExcluded isExcluded, StandingRevision standing = {});
  EditTimeStyling(const EditTimeStyling&) = delete;
  EditTimeStyling& operator=(const EditTimeStyling&) = delete;

  /// Main thread. The styling pass: take the classes off the pending clears, then edit-time
  /// warnings, then rule-auditor violations, then errors, in that order, each step free to undo
  /// an earlier one. Handles that no longer resolve are skipped.
  void applyStyling();
  /// Main thread. The same pass over the whole store, whatever changed.
  void applyStylingToAll();

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
  // The four steps for one block, as the whole-store pass takes them.
  void styleBlock(double handle, const ViolationDatabase::StylingFacts& facts);
  // The styler's call count and the standing revision as the last complete pass left them.
  struct Baseline {
    std::uint64_t stylerCalls;
    std::uint64_t standing;
  };
  std::optional<Baseline> currentBaseline() const;

  BlockAlive isAlive;
  ViolationExcluded isExcluded;
  StandingRevision standing;
  std::optional<Baseline> baseline;  // none before the first complete pass, or after a failure
  // Touched handles that no complete pass has styled yet. Each pass's are distinct; a handle is
  // here twice only after a pass that did not complete, and styling it twice is harmless.
  std::vector<double> due;
};

}  // namespace bkedittimecheck
