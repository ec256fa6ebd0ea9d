#pragma once

#include <cstdint>
#include <string>

namespace bkedittimecheck {

/// The parameters that the cross-block checks compare (Goto/From tags, data store names, state
/// owners), taken on the main thread for the block kinds 22, 51, 56, 57, 123 and 125.
struct bkDefaultEditBlock {
  std::string stringParam0;
  std::string stringParam1;
  std::int32_t ownerBlockId = 0;
};

}  // namespace bkedittimecheck
