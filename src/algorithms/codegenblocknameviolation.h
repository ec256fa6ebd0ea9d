#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "src/algorithms/codegenfootnotes.h"
#include "src/algorithms/namecheck.h"
#include "src/editcodes.h"

namespace bkedittimecheck {

/// "orvanta.codegen.BlockNames": names of blocks that code generation accepts, searched line by
/// line. Severity 3; the violation type is "CodegenBlockNameViolation". Worker thread only.
class CodegenBlockNameViolation : public NameCheck {
 public:
  static constexpr char kCheckId[] = "orvanta.codegen.BlockNames";
  static constexpr std::uint32_t kSeverity = Severity::kAuditorWarning;

  /// Any thread. Never throws beyond allocation.
  CodegenBlockNameViolation(const std::wstring& diagramName, std::uint32_t severity);

  /// The last expression read, shared by all instances and diagrams.
  static std::string prohibitedNamePattern;

  std::vector<std::string> violationTypes() const override { return {"CodegenBlockNameViolation"}; }

 protected:
  std::string& pattern() const override { return prohibitedNamePattern; }
  Verdict decideOne(const bkEditBlock& block) const override;

 private:
  const FootnoteTags& codegenFootnoteTags;  // the process's one set
};

}  // namespace bkedittimecheck
