#include "src/constraints/blockparamconstraintdata.h"

namespace bkedittimecheck {

using boost::property_tree::ptree;

BlockParamConstraintData::BlockParamConstraintData(const ptree& configuration) {
  for (const auto& [name, check] : configuration.get_child("RAConfiguration.CheckCellArray")) {
    if (name != "Check") continue;
    // Children in document order: an "InputParameters" counts only after the "ID" that made
    // this a constraint check.
    bool isConstraintCheck = false;
    std::string checkId;
    for (const auto& [childName, child] : check) {
      if (childName == "ID") {
        if (child.get<std::string>("<xmlattr>.checkType", "") == "BlockConstraintCheck") {
          isConstraintCheck = true;
          checkId = child.data();
        }
      } else if (childName == "InputParameters" && isConstraintCheck) {
        addCheck(checkId, child);
      }
    }
  }
}

void BlockParamConstraintData::addCheck(const std::string& checkId, const ptree& inputParameters) {
  auto data = std::make_shared<BlockConstraintCheckData>(inputParameters);
  constraintDataByCheckId.emplace(checkId, data);
  for (const auto& [blockType, constraints] : data->getBlockParameterConstraintsByBlockType()) {
    auto& joined = allBlockParameterConstraints[blockType];
    joined.insert(joined.end(), constraints.begin(), constraints.end());
  }
  for (const auto& [parameterName, constraints] : data->getModelParameterConstraintsByName()) {
    auto& joined = allModelParameterConstraints[parameterName];
    joined.insert(joined.end(), constraints.begin(), constraints.end());
  }
  constraintCheckIds.push_back(checkId);
  for (const auto& entry : data->getModelParameterConstraintsByName()) {
    checkIdsByModelParameter[entry.first].push_back(checkId);
  }
}

std::vector<std::string> BlockParamConstraintData::getCheckIdsByModelParameter(
    const std::string& name) const {
  auto found = checkIdsByModelParameter.find(name);
  return found == checkIdsByModelParameter.end() ? std::vector<std::string>() : found->second;
}

std::shared_ptr<BlockConstraintCheckData> BlockParamConstraintData::getCheckData(
    const std::string& checkId) const {
  auto found = constraintDataByCheckId.find(checkId);
  return found == constraintDataByCheckId.end() ? nullptr : found->second;
}

std::vector<std::shared_ptr<ModelParameterConstraint>>
BlockParamConstraintData::getModelParameterConstraints(const std::string& name) const {
  auto found = allModelParameterConstraints.find(name);
  return found == allModelParameterConstraints.end()
             ? std::vector<std::shared_ptr<ModelParameterConstraint>>()
             : found->second;
}

}  // namespace bkedittimecheck
