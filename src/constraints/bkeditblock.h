#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "src/constraints/bkdefaulteditblock.h"
#include "src/constraints/bkraeditblock.h"
#include "src/constraints/blockarastatemappinginfo.h"
#include "src/constraints/parametervalue.h"

class BKBlock;

namespace bkedittimecheck {

class BlockParameterConstraint;

/// The snapshot of one block: everything a check on the worker may know of it, taken on the
/// main thread when the block was added or changed. Shared by shared pointer.
///
/// Thread contract: built on the main thread; afterwards read-only for every thread, except
/// that the worker's `Setup` may still write `fullPath`, `isCommented`, the state owner in the
/// default part (`stringParam0`), and drop the rule-auditor part at the end of a pass.
class bkEditBlock {
 public:
  /// Main thread. Takes the snapshot of `block`; with `wantRaEditBlock` also the rule-auditor
  /// part. Host exceptions pass to the caller.
  bkEditBlock(BKBlock* block, bool wantRaEditBlock);

  /// Any thread. A snapshot made of plain values, for blocks that the host no longer offers.
  bkEditBlock(double blockHandle, std::string blockName, std::int32_t blockKind,
              std::wstring fullPath, bool isCommented, bool isLinked);

  bkEditBlock(const bkEditBlock&) = delete;
  bkEditBlock& operator=(const bkEditBlock&) = delete;

  double getBlockHandle() const { return blockHandle; }
  const std::string& getBlockName() const { return blockName; }
  std::int32_t getBlockKind() const { return blockKind; }
  /// The routing, store and state part; null for blocks of other kinds.
  const bkDefaultEditBlock* getDefaultEditBlock() const {
    return hasDefaultEditBlock != 0 ? &defaultEditBlock : nullptr;
  }
  bkDefaultEditBlock* getDefaultEditBlock() {
    return hasDefaultEditBlock != 0 ? &defaultEditBlock : nullptr;
  }
  const bkRAEditBlock* getRaEditBlock() const { return raEditBlock.get(); }
  const std::wstring& getFullPath() const { return fullPath; }
  bool getIsCommented() const { return isCommented != 0; }
  bool getIsLinked() const { return isLinked != 0; }

  /// True when the rule-auditor part was taken; checks skip a block without it.
  bool hasRaEditBlock() const { return raEditBlock != nullptr; }
  /// The block's type name; only after `hasRaEditBlock()`.
  const std::wstring& getBlockType() const { return raEditBlock->blockType; }
  /// The block's mask type; only after `hasRaEditBlock()`.
  const std::wstring& getMaskType() const { return raEditBlock->maskType; }
  /// A copy of the captured parameter values.
  std::map<std::string, ParameterValue> getCapturedParameterValues() const {
    return rare ? rare->capturedParameterValues : CapturedValues{};
  }

  /// Main thread, before the snapshot is queued. Reads the parameter that each constraint names,
  /// in order, into the captured values: a parameter of a text type code (1, 2, 5, 6, 11, 12,
  /// 14) as its text; any other by the constraint's data type, "struct" as the fields of its
  /// first record, "array" as a cell's elements (empty when the value is no such thing), any
  /// other data type not at all. A parameter the block lacks stores nothing. A later read of the
  /// same name replaces an earlier one. Host exceptions pass to the caller.
  void captureConstraintParameters(
      const BKBlock* block,
      const std::vector<std::shared_ptr<BlockParameterConstraint>>& constraints);

  /// Worker. `Setup` updates the path after a rename of a subsystem above the block.
  void setFullPath(std::wstring path) { fullPath = std::move(path); }
  /// Worker. `Setup` updates the comment state after a subsystem above was (un)commented.
  void setIsCommented(bool commented) { isCommented = commented ? 1 : 0; }
  /// Any thread. The state a port of a Blockara-based state belongs to; null for other blocks.
  const BlockaraStatePortInfo* getChartInputData() const {
    return rare ? rare->chartInputData.get() : nullptr;
  }
  /// Any thread. The declared data of a Blockara-based state subsystem; null for other blocks.
  const BlockaraStateMappingInfo* getChartRecord() const {
    return rare ? rare->chartRecord.get() : nullptr;
  }
  /// Any thread. True when the snapshot carries either chart object; such blocks stay in the
  /// block map between passes.
  bool hasChartData() const {
    return getChartInputData() != nullptr || getChartRecord() != nullptr;
  }
  /// Worker. Drops the rule-auditor part between passes.
  void dropRaEditBlock() { raEditBlock.reset(); }

 private:
  using CapturedValues = std::map<std::string, ParameterValue>;
  // What few blocks carry lives apart, so that the snapshot of every block (and of the routing
  // blocks kept between passes) stays small.
  struct Rare {
    CapturedValues capturedParameterValues;
    std::unique_ptr<BlockaraStatePortInfo> chartInputData;
    std::unique_ptr<BlockaraStateMappingInfo> chartRecord;
  };
  Rare& rareData();  // made at first use

  double blockHandle;
  std::string blockName;
  bkDefaultEditBlock defaultEditBlock;  // present when `hasDefaultEditBlock`
  std::unique_ptr<bkRAEditBlock> raEditBlock;
  std::unique_ptr<Rare> rare;
  std::wstring fullPath;
  std::int32_t blockKind;  // beside the flags, so that the snapshot packs without holes
  std::uint8_t isCommented;
  std::uint8_t isLinked;
  std::uint8_t hasDefaultEditBlock = 0;  // a flag of its own in the padding beside the others
};

}  // namespace bkedittimecheck
