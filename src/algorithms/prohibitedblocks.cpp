#include "src/algorithms/prohibitedblocks.h"

#include <utility>

namespace bkedittimecheck {

BlockTypeList ProhibitedBlocks::blockTypeList;
bool ProhibitedBlocks::treatListAsProhibited = true;

ProhibitedBlocks::ProhibitedBlocks(std::wstring diagramName, std::uint32_t severity)
    : ProhibitedListCheck(kCheckId, std::move(diagramName), severity) {}

}  // namespace bkedittimecheck
