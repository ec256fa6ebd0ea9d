#include "src/algorithms/prohibitedsinks.h"

#include <utility>

namespace bkedittimecheck {

BlockTypeList ProhibitedSinks::blockTypeList;
bool ProhibitedSinks::treatListAsProhibited = true;

ProhibitedSinks::ProhibitedSinks(const std::wstring& diagramName, std::uint32_t severity)
    : ProhibitedListCheck(kCheckId, diagramName, severity) {}

}  // namespace bkedittimecheck
