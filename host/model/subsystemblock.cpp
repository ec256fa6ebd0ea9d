#include "host/model/subsystemblock.h"

#include "host/model/bkgraph.h"

namespace {

std::string textOf(const BKBlock* block, const std::string& name) {
  const BlockParamValue* value = block ? block->getParam(name) : nullptr;
  const auto* text = value ? std::get_if<std::string>(value) : nullptr;
  return text ? *text : std::string();
}

bool isSubsystem(const BKBlock* block) { return block && block->getTypeCode() == 131; }

}  // namespace

SubsystemBlock::SubsystemBlock(const BlockTypeInfo& type, bksvString name)
    : BKBlock(type, std::move(name)), graphInside(std::make_unique<bkGraph>(nullptr, this)) {}

SubsystemBlock::~SubsystemBlock() = default;

SubsystemBlock* SubsystemBlock::from(BKBlock* block) { return dynamic_cast<SubsystemBlock*>(block); }

const SubsystemBlock* SubsystemBlock::from(const BKBlock* block) {
  return dynamic_cast<const SubsystemBlock*>(block);
}

bool SubsystemBlock::IsVariantSubsystem(const BKBlock* block) {
  return isSubsystem(block) && textOf(block, "Variant") == "on";
}

bool SubsystemBlock::getIsBlockaraFunction(const BKBlock* block) {
  return isSubsystem(block) && textOf(block, "IsBlockaraFunction") == "on";
}

int SubsystemBlock::getSubsystemType(const BKBlock* block) {
  if (!isSubsystem(block)) return 0;
  try {
    return std::stoi(textOf(block, "SubsystemType"));
  } catch (const std::exception&) {
    return 0;
  }
}

bool SubsystemBlock::determineIsAtomicUnit(const BKBlock* block) {
  return isSubsystem(block) && textOf(block, "TreatAsAtomicUnit") == "on";
}

bool SubsystemBlock::IsCodeAuto(const BKBlock* block) {
  return isSubsystem(block) && textOf(block, "FunctionPackaging") == "Auto";
}

bool SubsystemBlock::IsSetAsFunction(const BKBlock* block) {
  return isSubsystem(block) && textOf(block, "FunctionPackaging") == "Nonreusable function";
}

bool SubsystemBlock::IsSetAsReusableFunction(const BKBlock* block) {
  return isSubsystem(block) && textOf(block, "FunctionPackaging") == "Reusable function";
}
