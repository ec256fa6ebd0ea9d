#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "src/algorithms/namecheck.h"
#include "src/editcodes.h"

namespace bkedittimecheck {

/// "orvanta.kabe.kb_0402": prohibited characters in block names; ports and plain subsystems are
/// left to their own checks. Severity 3; the violation type is "BlockNameViolation". Worker thread
/// only.
class BlockNameViolation : public NameCheck {
 public:
  static constexpr char kCheckId[] = "orvanta.kabe.kb_0402";
  static constexpr std::uint32_t kSeverity = Severity::kAuditorWarning;

  /// Any thread. Never throws beyond allocation.
  BlockNameViolation(const std::wstring& diagramName, std::uint32_t severity);

  /// The last expression read, shared by all instances and diagrams.
  static std::string prohibitedNamePattern;

  std::vector<std::string> violationTypes() const override { return {"BlockNameViolation"}; }

 protected:
  std::string& pattern() const override { return prohibitedNamePattern; }
  Verdict decideOne(const bkEditBlock& block) const override;
};

}  // namespace bkedittimecheck
