#include "src/constraints/blockconstraintcheckdata.h"

#include "src/constraints/bkeditblock.h"
#include "src/constraints/blocktypeconstraint.h"
#include "src/hostinterface.h"

namespace bkedittimecheck {

using boost::property_tree::ptree;

BlockConstraintCheckData::BlockConstraintCheckData(const ptree& inputParameters) {
  parseConstraintFile(inputParameters);
  resolvePrerequisites();
  resolveCompositeChildren();
}

void BlockConstraintCheckData::parseConstraintFile(const ptree& inputParameters) {
  for (const auto& [name, parameter] : inputParameters) {
    if (name != "InputParameter") continue;
    if (parameter.get<std::string>("<xmlattr>.Name", "") != "Data File") continue;
    for (const auto& [element, node] : parameter.get_child("BlockConstraints")) {
      readConstraintElement(element, node);
    }
  }
}

void BlockConstraintCheckData::readConstraintElement(const std::string& element,
                                                     const ptree& node) {
  if (element == "CompositeConstraint") {
    compositeConstraints.push_back(std::make_shared<CompositeConstraint>(node));
    return;
  }
  const std::string id = node.get<std::string>("<xmlattr>.id", "");
  std::shared_ptr<Constraint> constraint;
  std::shared_ptr<BlockParameterConstraint> blockParameter;
  std::shared_ptr<ModelParameterConstraint> modelParameter;
  if (element == "PositiveBlockParameterConstraint") {
    blockParameter = std::make_shared<PositiveBlockParameterConstraint>(node, id);
  } else if (element == "NegativeBlockParameterConstraint") {
    blockParameter = std::make_shared<NegativeBlockParameterConstraint>(node, id);
  } else if (element == "PositiveModelParameterConstraint") {
    modelParameter = std::make_shared<PositiveModelParameterConstraint>(node, id);
  } else if (element == "NegativeModelParameterConstraint") {
    modelParameter = std::make_shared<NegativeModelParameterConstraint>(node, id);
  } else if (element == "PositiveBlockTypeConstraint") {
    constraint = std::make_shared<PositiveBlockTypeConstraint>(node, id);
    blockTypeConstraintIds.insert(id);
  } else if (element == "NegativeBlockTypeConstraint") {
    constraint = std::make_shared<NegativeBlockTypeConstraint>(node, id);
    blockTypeConstraintIds.insert(id);
  } else {
    // Comments and unknown elements name no constraint.
    return;
  }
  if (blockParameter) {
    const std::string& blockType = blockParameter->getBlockType();
    constraintIdsByBlockType[blockType].insert(id);
    blockParameterConstraintsByBlockType[blockType].push_back(blockParameter);
    blockTypeNames.push_back(blockType);
    constraint = blockParameter;
  }
  if (modelParameter) {
    const std::string& parameterName = modelParameter->getParameterName();
    modelParameterConstraintsByName[parameterName].push_back(modelParameter);
    modelParameterNames.push_back(parameterName);
    constraint = modelParameter;
  }
  // A repeated ID keeps the first constraint here; the later one stays in the lists above.
  constraintsById.emplace(id, constraint);
}

void BlockConstraintCheckData::resolvePrerequisites() {
  for (const auto& [id, constraint] : constraintsById) {
    const std::vector<std::string> prerequisiteIds = constraint->getPreRequisiteConstraintIDs();
    for (const std::string& prerequisiteId : prerequisiteIds) {
      auto found = constraintsById.find(prerequisiteId);
      if (found == constraintsById.end()) continue;
      found->second->setIsRootConstraint(false);
      constraint->addPreRequisiteConstraint(found->second);
    }
  }
}

void BlockConstraintCheckData::resolveCompositeChildren() {
  for (const auto& composite : compositeConstraints) {
    const std::set<std::string> childIds = composite->getConstraintIDs();
    for (const std::string& childId : childIds) {
      auto found = constraintsById.find(childId);
      if (found != constraintsById.end()) composite->addConstraint(found->second);
    }
  }
}

BlockConstraintCheckData::~BlockConstraintCheckData() {
  for (const auto& entry : constraintsById) {
    if (entry.second) entry.second->setPreRequisiteConstraints({});
  }
}

bool BlockConstraintCheckData::checkBlock(std::shared_ptr<bkEditBlock> block) {
  const std::string blockType = toNarrow(block->getBlockType());
  std::set<std::string> ids;
  auto found = constraintIdsByBlockType.find(blockType);
  if (found != constraintIdsByBlockType.end()) ids = found->second;
  ids.insert(blockTypeConstraintIds.begin(), blockTypeConstraintIds.end());
  bool passed = true;
  for (const auto& composite : compositeConstraints) {
    if (!passed) break;
    passed = composite->check(block, ids);
  }
  return passed;
}

}  // namespace bkedittimecheck
