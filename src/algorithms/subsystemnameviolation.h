#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "src/algorithms/namecheck.h"
#include "src/editcodes.h"

namespace bkedittimecheck {

/// "orvanta.kabe.kb_0406": names of plain subsystems that are not inlined or packaged as functions.
/// Severity 3; the violation type is "SubsystemNameViolation". Worker thread only.
class SubsystemNameViolation : public NameCheck {
 public:
  static constexpr char kCheckId[] = "orvanta.kabe.kb_0406";
  static constexpr std::uint32_t kSeverity = Severity::kAuditorWarning;

  /// Any thread. Never throws beyond allocation.
  SubsystemNameViolation(const std::wstring& diagramName, std::uint32_t severity);

  /// The last expression read, shared by all instances and diagrams.
  static std::string prohibitedNamePattern;

  std::vector<std::string> violationTypes() const override { return {"SubsystemNameViolation"}; }

 protected:
  std::string& pattern() const override { return prohibitedNamePattern; }
  Verdict decideOne(const bkEditBlock& block) const override;
};

}  // namespace bkedittimecheck
