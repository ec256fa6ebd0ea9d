#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "src/algorithms/blockcheck.h"
#include "src/editcodes.h"

namespace bkedittimecheck {

/// "orvanta.kabe.kb_0401": a shown block name on the non-default side of its block. Severity 3; the
/// violation type is "BlockNamePosition". Reads only the scope pair. Worker thread only.
class BlockNamePosition : public BlockCheck {
 public:
  static constexpr char kCheckId[] = "orvanta.kabe.kb_0401";
  static constexpr std::uint32_t kSeverity = Severity::kAuditorWarning;

  /// Any thread. Never throws beyond allocation.
  BlockNamePosition(const std::wstring& diagramName, std::uint32_t severity);

  std::vector<std::string> violationTypes() const override { return {"BlockNamePosition"}; }

 protected:
  Verdict decideOne(const bkEditBlock& block) const override;
};

}  // namespace bkedittimecheck
