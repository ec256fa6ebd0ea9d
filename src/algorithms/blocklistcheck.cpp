#include "src/algorithms/blocklistcheck.h"

namespace bkedittimecheck {

void BlockListCheck::appendListEntries(const boost::property_tree::ptree& value,
                                       BlockTypeList& list) {
  for (const auto& [key, entry] : value) {
    if (key == "<xmlattr>" || entry.data().empty()) continue;
    list[entry.data()].push_back(entry.get<std::string>("<xmlattr>.MaskType", ""));
  }
}

bool BlockListCheck::wantsParameters() const {
  return blockTypes().empty() || inputParametersChanged();
}

}  // namespace bkedittimecheck
