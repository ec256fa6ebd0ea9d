#include "src/algorithms/prohibitedblocks.h"

#include <utility>

namespace bkedittimecheck {

BlockTypeList ProhibitedBlocks::blockTypeList;
bool ProhibitedBlocks::treatListAsProhibited = true;

ProhibitedBlocks::ProhibitedBlocks(const std::wstring& diagramName, std::uint32_t severity)
    : ProhibitedListCheck(kCheckId, diagramName, severity) {}

}  // namespace bkedittimecheck
