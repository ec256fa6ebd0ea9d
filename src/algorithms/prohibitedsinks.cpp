#include "src/algorithms/prohibitedsinks.h"

#include <utility>

#include "src/algorithms/blocktypelistreader.h"

namespace bkedittimecheck {

BlockTypeList ProhibitedSinks::blockTypeList;
bool ProhibitedSinks::treatListAsProhibited = true;

ProhibitedSinks::ProhibitedSinks(std::wstring diagramName, std::uint32_t severity)
    : BlockListCheck("orvanta.kabe.kb_0408", std::move(diagramName), severity) {}

void ProhibitedSinks::readParameters(const boost::property_tree::ptree& configuration) {
  readInputParameters(configuration);
  readBlockTypeList(configuration, blockTypeList, treatListAsProhibited);
}

Verdict ProhibitedSinks::decideOne(const bkEditBlock& block) const {
  return decideByList(block, blockTypeList, treatListAsProhibited);
}

}  // namespace bkedittimecheck
