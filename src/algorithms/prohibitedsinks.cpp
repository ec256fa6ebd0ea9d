#include "src/algorithms/prohibitedsinks.h"

#include <utility>

namespace bkedittimecheck {

BlockTypeList ProhibitedSinks::blockTypeList;
bool ProhibitedSinks::treatListAsProhibited = true;

ProhibitedSinks::ProhibitedSinks(std::wstring diagramName, std::uint32_t severity)
    : ProhibitedListCheck(kCheckId, std::move(diagramName), severity) {}

}  // namespace bkedittimecheck
