#include "src/algorithms/prohibitedlistcheck.h"

#include <algorithm>
#include <string>

#include "src/constraints/bkeditblock.h"
#include "src/hostinterface.h"

namespace bkedittimecheck {

void ProhibitedListCheck::readParameters(const boost::property_tree::ptree& configuration) {
  readInputParameters(configuration);
  BlockTypeList& list = blockTypes();
  bool& prohibited = listIsProhibited();
  list.clear();
  forEachInputParameter(configuration, [&](const std::string& name, const auto& parameter) {
    const bool isTreatAs = name == "Treat blocktype list as";
    for (const auto& [key, value] : parameter) {
      if (key != "Value") continue;
      if (isTreatAs) prohibited = value.data() != "Allowed";
      appendListEntries(value, list);
    }
  });
}

Verdict ProhibitedListCheck::decideOne(const bkEditBlock& block) const {
  const BlockTypeList& list = blockTypes();
  const auto entry = list.find(toNarrow(block.getRaEditBlock()->blockType));
  const std::string maskType = toNarrow(block.getRaEditBlock()->maskType);
  const bool listed = entry != list.end() && std::find(entry->second.begin(), entry->second.end(),
                                                       maskType) != entry->second.end();
  return listed == listIsProhibited() ? Verdict::Add : Verdict::Remove;
}

}  // namespace bkedittimecheck
