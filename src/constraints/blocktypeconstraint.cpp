#include "src/constraints/blocktypeconstraint.h"

#include <algorithm>

#include "host/language/cosinterface.h"
#include "src/constraints/bkeditblock.h"
#include "src/constraints/constrainterrors.h"
#include "src/constraints/constraintvaluearray.h"
#include "src/hostinterface.h"

namespace bkedittimecheck {

void BlockTypeConstraint::addBlockMaskPairToList(std::string blockType, std::string maskType) {
  ++blockMaskPairCount;
  blockTypeMaskTypeList[std::move(blockType)].push_back(std::move(maskType));
}

void BlockTypeConstraint::setCurrentBlockMaskPair(std::string blockType, std::string maskType) {
  refresh();
  currentBlockType = std::move(blockType);
  currentMaskType = std::move(maskType);
}

void BlockTypeConstraint::setCurrentBlockType(std::string blockType) {
  refresh();
  currentBlockType = std::move(blockType);
}

void BlockTypeConstraint::setCurrentValue(std::shared_ptr<bkEditBlock> block) {
  setCurrentBlockMaskPair(toNarrow(block->getBlockType()), toNarrow(block->getMaskType()));
}

void BlockTypeConstraint::scanDOMNode(boost::property_tree::ptree tree) {
  for (const auto& [name, child] : tree) {
    if (name == "BlockType") {
      if (child.data().empty()) continue;
      addBlockMaskPairToList(child.data(), child.get<std::string>("<xmlattr>.MaskType", ""));
    } else if (name == "dependson") {
      addPreRequisiteConstraintID(child.data());
    }
  }
}

bool BlockTypeConstraint::currentPairIsListed() const {
  const std::string blockType = currentBlockType;
  const std::string maskType = currentMaskType;
  auto found = blockTypeMaskTypeList.find(blockType);
  if (found == blockTypeMaskTypeList.end()) return false;
  return std::find(found->second.begin(), found->second.end(), maskType) != found->second.end();
}

nxArrayProxy BlockTypeConstraint::getCosBlockTypeMaskTypeList() const {
  std::vector<nxArray> cells;
  for (const auto& [blockType, maskTypes] : blockTypeMaskTypeList) {
    for (const std::string& maskType : maskTypes) {
      nxArray pair = nxArray::structMatrix(1, 1, {"BlockType", "MaskType"});
      pair.setField(0, "BlockType", nxArray::charRow(blockType));
      pair.setField(0, "MaskType", nxArray::charRow(maskType));
      cells.push_back(std::move(pair));
    }
  }
  return nxArrayProxy(IsConstraintValueRowVector() ? nxArray::cellRow(std::move(cells))
                                                   : nxArray::cellColumn(std::move(cells)));
}

void BlockTypeConstraint::setCosBlockTypeMaskTypeList(nxArrayProxy list) {
  blockTypeMaskTypeList.clear();
  blockMaskPairCount = 0;
  const nxArray& array = list.array();
  if (array.isEmpty()) return;
  bool isRow = false;
  const std::size_t count = cellVectorLength(array, isRow);
  setIsConstraintValueRowVector(isRow);
  for (std::size_t i = 0; i < count; ++i) {
    const nxArray& cell = array.getCell(i);
    if (!cell.isStruct() && !cell.isObject()) throw InvalidParameterValueNonStruct();
    addBlockMaskPairToList(textOfArray(omGetProperty(cell, "BlockType")),
                           textOfArray(omGetProperty(cell, "MaskType")));
  }
}

PositiveBlockTypeConstraint::PositiveBlockTypeConstraint(const boost::property_tree::ptree& tree,
                                                         const std::string& id) {
  setID(id);
  scanDOMNode(tree);
}

bool PositiveBlockTypeConstraint::check() {
  setWasChecked(true);
  setStatus(currentPairIsListed());
  return getStatus();
}

const std::string PositiveBlockTypeConstraint::getFullyQualifiedNcosTypeName() const {
  return "Auditor.authoring.PositiveBlockTypeConstraint";
}

NegativeBlockTypeConstraint::NegativeBlockTypeConstraint(const boost::property_tree::ptree& tree,
                                                         const std::string& id) {
  setID(id);
  scanDOMNode(tree);
}

bool NegativeBlockTypeConstraint::check() {
  setWasChecked(true);
  setStatus(!currentPairIsListed());
  return getStatus();
}

const std::string NegativeBlockTypeConstraint::getFullyQualifiedNcosTypeName() const {
  return "Auditor.authoring.NegativeBlockTypeConstraint";
}

}  // namespace bkedittimecheck
