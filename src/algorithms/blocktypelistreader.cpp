#include "src/algorithms/blocktypelistreader.h"

#include <algorithm>
#include <string>

#include "src/algorithms/edittimealgorithms.h"
#include "src/constraints/bkeditblock.h"
#include "src/hostinterface.h"

namespace bkedittimecheck {

void readBlockTypeList(const boost::property_tree::ptree& configuration, BlockTypeList& list,
                       bool& treatListAsProhibited) {
  list.clear();
  forEachInputParameter(configuration, [&](const std::string& name, const auto& parameter) {
    const bool isTreatAs = name == "Treat blocktype list as";
    for (const auto& [key, value] : parameter) {
      if (key != "Value") continue;
      if (isTreatAs) treatListAsProhibited = value.data() != "Allowed";
      BlockListCheck::appendListEntries(value, list);
    }
  });
}

Verdict decideByList(const bkEditBlock& block, const BlockTypeList& list,
                     bool treatListAsProhibited) {
  const auto entry = list.find(toNarrow(block.getRaEditBlock()->blockType));
  const std::string maskType = toNarrow(block.getRaEditBlock()->maskType);
  const bool listed = entry != list.end() && std::find(entry->second.begin(), entry->second.end(),
                                                       maskType) != entry->second.end();
  return listed == treatListAsProhibited ? Verdict::Add : Verdict::Remove;
}

}  // namespace bkedittimecheck
