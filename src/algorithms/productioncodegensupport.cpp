#include "src/algorithms/productioncodegensupport.h"

#include <utility>

#include "src/constraints/bkeditblock.h"

namespace bkedittimecheck {

ProductionCodeGenSupport::ProductionCodeGenSupport(const std::wstring& diagramName,
                                                   std::uint32_t severity)
    : BlockCheck(kCheckId, diagramName, severity), codegenFootnoteTags(codegenSupportTags()) {}

void ProductionCodeGenSupport::decide(const bkEditBlock& block,
                                      std::vector<Verdict>& verdicts) const {
  const bkRAEditBlock& ra = *block.getRaEditBlock();
  Verdict& codeGen = verdicts[0];
  Verdict& production = verdicts[1];
  if (!ra.codegenFootnote.empty() || !ra.productionFootnote.empty()) {
    // Only known footnotes mean support; both lists are looked up among the code generation tags.
    bool allKnown = true;
    for (const std::string* footnote : {&ra.codegenFootnote, &ra.productionFootnote}) {
      for (const std::string& tag : footnoteTokens(*footnote)) {
        if (codegenFootnoteTags.count(tag) == 0) allKnown = false;
      }
    }
    if (allKnown) {
      codeGen = production = Verdict::Remove;
      return;
    }
  }
  if (ra.capabilitySupport8 == 0) {
    // Nothing is said about deployment then: a record of an earlier run stays.
    codeGen = Verdict::Add;
    production = Verdict::Leave;
  } else {
    production = ra.capabilitySupport9 == 0 ? Verdict::Add : Verdict::Remove;
    codeGen = Verdict::Remove;
  }
}

}  // namespace bkedittimecheck
