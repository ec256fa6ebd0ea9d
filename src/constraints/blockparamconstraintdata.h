#pragma once

#include <boost/property_tree/ptree.hpp>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "src/constraints/blockconstraintcheckdata.h"

namespace bkedittimecheck {

using BlockParameterConstraintsByBlockType =
    std::map<std::string, std::vector<std::shared_ptr<BlockParameterConstraint>>>;

/// The constraint data of a whole configuration: one `BlockConstraintCheckData` for each check
/// whose "ID" carries the check type "BlockConstraintCheck", and the indexes over all of them
/// that the engine hands on (block parameter constraints for the capture of parameters, model
/// parameter constraints for reading model values, the check IDs for the algorithm table).
///
/// Thread contract: built on the thread that processes the engine's events and owned by the
/// engine by shared pointer; read-only afterwards. Every diagram's engine has its own.
class BlockParamConstraintData {
 public:
  /// Reads `configuration`, the root of the customization tree. Walks
  /// "RAConfiguration.CheckCellArray" (which must exist: boost::property_tree::ptree_bad_path
  /// otherwise) and, in each "Check", its children in order: an "ID" with "checkType"
  /// "BlockConstraintCheck" makes a later "InputParameters" the constraints of that ID. A check ID
  /// that is already known keeps its first data; the data of the repeat is still merged into the
  /// indexes. A "BlockConstraints" that is missing passes its bad-path exception through.
  explicit BlockParamConstraintData(const boost::property_tree::ptree& configuration);
  BlockParamConstraintData(const BlockParamConstraintData&) = delete;
  BlockParamConstraintData& operator=(const BlockParamConstraintData&) = delete;

  /// Copies of the indexes over all checks.
  BlockParameterConstraintsByBlockType getAllBlockParameterConstraints() const {
    return allBlockParameterConstraints;
  }
  ModelParameterConstraintsByName getAllModelParameterConstraints() const {
    return allModelParameterConstraints;
  }
  std::vector<std::string> getConstraintCheckIds() const { return constraintCheckIds; }
  /// The check IDs whose constraints read the model parameter `name`, in file order.
  std::vector<std::string> getCheckIdsByModelParameter(const std::string& name) const;
  /// The data of one check, or null when the ID is not a constraint check.
  std::shared_ptr<BlockConstraintCheckData> getCheckData(const std::string& checkId) const;
  /// A copy of the model parameter constraints on `name`; empty when none.
  std::vector<std::shared_ptr<ModelParameterConstraint>> getModelParameterConstraints(
      const std::string& name) const;

 private:
  void addCheck(const std::string& checkId, const boost::property_tree::ptree& inputParameters);

  std::map<std::string, std::shared_ptr<BlockConstraintCheckData>> constraintDataByCheckId;
  BlockParameterConstraintsByBlockType allBlockParameterConstraints;
  ModelParameterConstraintsByName allModelParameterConstraints;
  std::vector<std::string> constraintCheckIds;
  std::map<std::string, std::vector<std::string>> checkIdsByModelParameter;
};

}  // namespace bkedittimecheck
