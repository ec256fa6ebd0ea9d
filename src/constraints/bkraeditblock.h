#pragma once

#include <cstdint>
#include <string>

namespace bkedittimecheck {

/// What the rule-auditor checks want of a block, taken on the main thread with the snapshot when
/// the diagram is under the rule auditor. Read-only afterwards, by any thread.
struct bkRAEditBlock {
  std::wstring maskType;  // empty when the block has no mask
  std::wstring blockType;
  std::int32_t enumParameterValue = 0;
  std::int32_t orientation = 0;
  bool rawFlagBit2 = false;
  std::int32_t functionPackaging = 0;
  std::int32_t capabilitySupport8 = 0;
  std::int32_t capabilitySupport9 = 0;
  std::string codegenFootnote;
  std::string productionFootnote;
  bool rawFlagBit1 = false;
  bool isBlockaraFunction = false;
  std::int32_t subsystemType = 0;
};

}  // namespace bkedittimecheck
