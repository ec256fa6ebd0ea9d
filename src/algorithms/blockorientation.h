#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "src/algorithms/blockcheck.h"
#include "src/editcodes.h"

namespace bkedittimecheck {

/// "orvanta.kabe.kb_0403": a subsystem turned away from the default direction. Severity 3; the
/// violation type is "BlockOrientation". Reads only the scope pair. Worker thread only.
class BlockOrientation : public BlockCheck {
 public:
  static constexpr char kCheckId[] = "orvanta.kabe.kb_0403";
  static constexpr std::uint32_t kSeverity = Severity::kAuditorWarning;

  /// Any thread. Never throws beyond allocation.
  BlockOrientation(const std::wstring& diagramName, std::uint32_t severity);

  std::vector<std::string> violationTypes() const override { return {"BlockOrientation"}; }

 protected:
  Verdict decideOne(const bkEditBlock& block) const override;
};

}  // namespace bkedittimecheck
