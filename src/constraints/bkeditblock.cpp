#include "src/constraints/bkeditblock.h"

#include <utility>

#include "src/editcodes.h"
#include "src/features.h"
#include "src/hostinterface.h"

namespace bkedittimecheck {

namespace {

std::string tagVisibilityWord(const std::string& hostValue) {
  // The host keeps the visibility as an enumeration: local, scoped, global.
  if (hostValue == "local") return "TAG_LOCAL";
  if (hostValue == "scoped") return "TAG_SCOPED";
  if (hostValue == "global") return "TAG_GLOBAL";
  return "";
}

std::string dialogParameter(const BKBlock* block, const std::string& name) {
  for (const BKPrmDesc& desc : block->getDialogInfo()) {
    if (desc.name == name) return block->getParamText(name);
  }
  return "";
}

bkDefaultEditBlock makeDefaultEditBlock(BKBlock* block, int kind) {
  bkDefaultEditBlock data;
  switch (kind) {
    case BlockKind::kGoto:
      data.stringParam0 = tagVisibilityWord(dialogParameter(block, "TagVisibility"));
      data.stringParam1 = BKBlock::getGrParamValue(block, 0, 0);
      break;
    case BlockKind::kFrom:
    case BlockKind::kGotoTagVisibility:
      data.stringParam0 = dialogParameter(block, "GotoTag");
      break;
    case BlockKind::kDataStoreMemory:
      data.stringParam0 = dialogParameter(block, "DataStoreName");
      break;
    case BlockKind::kStateReader:
    case BlockKind::kStateWriter: {
      std::string owner = dialogParameter(block, "StateOwnerBlock");
      if (owner.compare(0, 3, "../") == 0) owner = resolveRelativeBlockPath(block, owner);
      data.stringParam0 = owner;
      data.ownerBlockId = stateOwnerBlockId(block, data.ownerBlockId);
      break;
    }
    default:
      break;
  }
  return data;
}

std::unique_ptr<bkRAEditBlock> makeRaEditBlock(BKBlock* block, int kind) {
  auto ra = std::make_unique<bkRAEditBlock>();
  if (const BKMask* mask = block->getMask()) ra->maskType = toWide(mask->type);
  ra->blockType = fromNarrow(typeNameOf(block));
  if (kind == BlockKind::kInport || kind == BlockKind::kInportShadow) {
    ra->enumParameterValue = block->getGrEnumPrmValue(6);
  }
  if (kind == BlockKind::kOutport) ra->enumParameterValue = block->getGrEnumPrmValue(10);
  ra->orientation = block->getGrOrientation();
  const unsigned flags = block->getPlatformFlags();
  ra->rawFlagBit1 = (flags & 0x2u) != 0;
  ra->rawFlagBit2 = (flags & 0x4u) != 0;
  if (kind == BlockKind::kSubSystem) {
    const SubsystemFacts facts = subsystemFactsOf(block);
    if (facts.isAtomic) {
      ra->functionPackaging = facts.isCodeAuto           ? FunctionPackaging::kAuto
                              : facts.isFunction         ? FunctionPackaging::kFunction
                              : facts.isReusableFunction ? FunctionPackaging::kReusableFunction
                                                         : FunctionPackaging::kInline;
    }
    ra->isBlockaraFunction = facts.isBlockaraFunction;
    ra->subsystemType = facts.subsystemType;
  }
  ra->capabilitySupport8 = block->getType().capability(kCodegenCapability);
  ra->capabilitySupport9 = block->getType().capability(kProductionCapability);
  ra->codegenFootnote = block->getType().footnote("codegen");
  ra->productionFootnote = block->getType().footnote("production");
  return ra;
}

bool needsDefaultEditBlock(int kind) { return BlockKind::isKeptAcrossPasses(kind); }

}  // namespace

bkEditBlock::bkEditBlock(BKBlock* block, bool wantRaEditBlock)
    : blockHandle(block->getHandle()),
      blockName(block->getGrNameNonUnicode()),
      fullPath(toWide(block->getFullPath(false))),
      blockKind(block->getTypeCode()),
      isCommented(block->isCommented() ? 1 : 0),
      isLinked(block->getLinkStatus() != "none" ? 1 : 0) {
  if (featureOn(BKFEAT_BlockaraEditTimeChecksForBlockaraBasedStates)) {
    if (isBlockaraStatePort(block)) {
      rareData().chartInputData =
          std::make_unique<BlockaraStatePortInfoImpl>(graphOwnerHandle(block));
    }
    if (isChartBasedSubsystem(block)) {
      rareData().chartRecord = std::make_unique<BlockaraStateMappingInfoImpl>(blockHandle);
    }
  }
  if (needsDefaultEditBlock(blockKind) || hasChartData()) {
    defaultEditBlock = makeDefaultEditBlock(block, blockKind);
    hasDefaultEditBlock = 1;
  }
  if (wantRaEditBlock) raEditBlock = makeRaEditBlock(block, blockKind);
}

bkEditBlock::Rare& bkEditBlock::rareData() {
  if (!rare) rare = std::make_unique<Rare>();
  return *rare;
}

bkEditBlock::bkEditBlock(double blockHandle, std::string blockName, std::int32_t blockKind,
                         std::wstring fullPath, bool isCommented, bool isLinked)
    : blockHandle(blockHandle),
      blockName(std::move(blockName)),
      fullPath(std::move(fullPath)),
      blockKind(blockKind),
      isCommented(isCommented ? 1 : 0),
      isLinked(isLinked ? 1 : 0) {}

}  // namespace bkedittimecheck
