#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "src/algorithms/namecheck.h"
#include "src/editcodes.h"

namespace bkedittimecheck {

/// "orvanta.kabe.kb_0405": names of port blocks (kinds 66, 67, 88), searched whole. Severity 3; the
/// violation type is "PortNameViolation". Worker thread only.
class PortNameViolation : public NameCheck {
 public:
  static constexpr char kCheckId[] = "orvanta.kabe.kb_0405";
  static constexpr std::uint32_t kSeverity = Severity::kAuditorWarning;

  /// Any thread. Never throws beyond allocation.
  PortNameViolation(const std::wstring& diagramName, std::uint32_t severity);

  /// The last expression read, shared by all instances and diagrams.
  static std::string prohibitedNamePattern;

  std::vector<std::string> violationTypes() const override { return {"PortNameViolation"}; }

 protected:
  std::string& pattern() const override { return prohibitedNamePattern; }
  bool considers(const bkEditBlock& block) const override;
  Verdict decideOne(const bkEditBlock& block) const override;
};

}  // namespace bkedittimecheck
