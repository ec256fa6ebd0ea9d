#include "src/algorithms/codegenblocknameviolation.h"

#include <utility>

#include "src/constraints/bkeditblock.h"

namespace bkedittimecheck {

std::string CodegenBlockNameViolation::prohibitedNamePattern;

CodegenBlockNameViolation::CodegenBlockNameViolation(const std::wstring& diagramName,
                                                     std::uint32_t severity)
    : NameCheck(kCheckId, diagramName, severity), codegenFootnoteTags(codegenSupportTags()) {}

Verdict CodegenBlockNameViolation::decideOne(const bkEditBlock& block) const {
  const bkRAEditBlock& ra = *block.getRaEditBlock();
  if (!ra.rawFlagBit1) return Verdict::Remove;
  // Only blocks that code generation accepts, wholly or with harmless footnotes, are this check's;
  // the others keep whatever record they had, as ProductionCodeGenSupport speaks for them.
  if (ra.codegenFootnote.empty() && ra.productionFootnote.empty()) {
    if (ra.capabilitySupport8 == 0 || ra.capabilitySupport9 == 0) return Verdict::Leave;
  } else {
    // Both lists are looked up among the code generation tags, on purpose.
    for (const std::string* footnote : {&ra.codegenFootnote, &ra.productionFootnote}) {
      for (const std::string& tag : footnoteTokens(*footnote)) {
        if (codegenFootnoteTags.count(tag) == 0) return Verdict::Leave;
      }
    }
  }
  return searchByLines(compiled, block.getBlockName()) ? Verdict::Add : Verdict::Remove;
}

}  // namespace bkedittimecheck
