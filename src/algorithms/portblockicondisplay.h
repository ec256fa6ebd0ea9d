#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "src/algorithms/blockcheck.h"
#include "src/editcodes.h"

namespace bkedittimecheck {

/// "orvanta.kabe.kb_0404": what the icon of an Inport (66) or Outport (88) shows. Severity 3; the
/// violation type is "PortBlockIconDisplay". Reads only the scope pair. Worker thread only.
class PortBlockIconDisplay : public BlockCheck {
 public:
  static constexpr char kCheckId[] = "orvanta.kabe.kb_0404";
  static constexpr std::uint32_t kSeverity = Severity::kAuditorWarning;

  /// Any thread. Never throws beyond allocation.
  PortBlockIconDisplay(const std::wstring& diagramName, std::uint32_t severity);

  std::vector<std::string> violationTypes() const override { return {"PortBlockIconDisplay"}; }

 protected:
  bool considers(const bkEditBlock& block) const override;
  Verdict decideOne(const bkEditBlock& block) const override;
};

}  // namespace bkedittimecheck
