#include "src/algorithms/prohibitedblocks.h"

#include <utility>

#include "src/algorithms/blocktypelistreader.h"

namespace bkedittimecheck {

BlockTypeList ProhibitedBlocks::blockTypeList;
bool ProhibitedBlocks::treatListAsProhibited = true;

ProhibitedBlocks::ProhibitedBlocks(std::wstring diagramName, std::uint32_t severity)
    : BlockListCheck("orvanta.kabe.kb_0407", std::move(diagramName), severity) {}

void ProhibitedBlocks::readParameters(const boost::property_tree::ptree& configuration) {
  readInputParameters(configuration);
  readBlockTypeList(configuration, blockTypeList, treatListAsProhibited);
}

Verdict ProhibitedBlocks::decideOne(const bkEditBlock& block) const {
  return decideByList(block, blockTypeList, treatListAsProhibited);
}

}  // namespace bkedittimecheck
