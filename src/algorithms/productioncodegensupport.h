#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "src/algorithms/blockcheck.h"
#include "src/algorithms/codegenfootnotes.h"
#include "src/editcodes.h"

namespace bkedittimecheck {

/// "orvanta.codegen.PCGSupport": blocks that code generation ("CodeGenSupport") or production
/// code deployment ("ProductionCodeDeployement") does not support, from the block's capability
/// values and footnotes. Severity 3. Reads no parameters at all, not even the scope pair, so its
/// scope is whatever the shared map holds. Worker thread only.
class ProductionCodeGenSupport : public BlockCheck {
 public:
  static constexpr char kCheckId[] = "orvanta.codegen.PCGSupport";
  static constexpr std::uint32_t kSeverity = Severity::kAuditorWarning;

  /// Any thread. Never throws beyond allocation.
  ProductionCodeGenSupport(const std::wstring& diagramName, std::uint32_t severity);

  std::vector<std::string> violationTypes() const override {
    return {"CodeGenSupport", "ProductionCodeDeployement"};
  }

  void decide(const bkEditBlock& block, std::vector<Verdict>& verdicts) const override;

 protected:
  bool wantsParameters() const override { return false; }

 private:
  const FootnoteTags& codegenFootnoteTags;  // the process's one set
};

}  // namespace bkedittimecheck
