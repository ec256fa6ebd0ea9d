#include "src/algorithms/bkciunsupportedblocks.h"

#include <utility>

#include "src/constraints/bkeditblock.h"
#include "src/hostinterface.h"

namespace bkedittimecheck {

BlockTypeList BKCIUnsupportedBlocks::blockTypeList;

BKCIUnsupportedBlocks::BKCIUnsupportedBlocks(const std::wstring& diagramName,
                                             std::uint32_t severity)
    : BlockListCheck(kCheckId, diagramName, severity) {}

void BKCIUnsupportedBlocks::readParameters(const boost::property_tree::ptree& configuration) {
  blockTypeList.clear();
  readInputParameters(configuration);
  forEachInputParameter(configuration, [](const std::string& name, const auto& parameter) {
    if (name != "Block type list") return;
    for (const auto& [key, value] : parameter) {
      if (key == "Value") appendListEntries(value, blockTypeList);
    }
  });
}

Verdict BKCIUnsupportedBlocks::decideOne(const bkEditBlock& block) const {
  const std::string type = toNarrow(block.getRaEditBlock()->blockType);
  if (type == "Reference") return Verdict::Remove;
  if (type == "SubSystem" &&
      toNarrow(block.getRaEditBlock()->maskType) == "Environment Controller") {
    return Verdict::Add;
  }
  return blockTypeList.count(type) == 0 ? Verdict::Add : Verdict::Remove;
}

}  // namespace bkedittimecheck
