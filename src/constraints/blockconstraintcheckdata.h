#pragma once

#include <boost/property_tree/ptree.hpp>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "src/constraints/blockparameterconstraint.h"
#include "src/constraints/compositeconstraint.h"
#include "src/constraints/constraint.h"
#include "src/constraints/modelparameterconstraint.h"

namespace bkedittimecheck {

class bkEditBlock;

/// The constraints of one constraint check: what the "Data File" parameter of its
/// "InputParameters" holds, read, linked and indexed for the evaluation of a block.
///
/// Thread contract: built on the thread that processes the engine's events while a
/// configuration is loaded; afterwards held by shared pointer, and evaluated (`checkBlock`) by
/// the worker alone, with no lock: the constraints it holds keep per-run state.
class BlockConstraintCheckData {
 public:
  /// Reads `inputParameters`, the "InputParameters" element of a check: every "InputParameter"
  /// named "Data File" adds the children of its "BlockConstraints" (which must exist, else
  /// boost::property_tree::ptree_bad_path). Then links prerequisites and composite children by
  /// ID, dropping unknown IDs in silence. Children of "BlockConstraints" that are no constraint
  /// element (comments included) are passed over.
  explicit BlockConstraintCheckData(const boost::property_tree::ptree& inputParameters);
  BlockConstraintCheckData(const BlockConstraintCheckData&) = delete;
  BlockConstraintCheckData& operator=(const BlockConstraintCheckData&) = delete;
  /// Unlinks the prerequisites: a file may make constraints depend on each other in a circle,
  /// which shared ownership alone would never free.
  ~BlockConstraintCheckData();

  /// True when the data gave at least one composite; a check without one does nothing.
  bool hasCompositeConstraints() const { return !compositeConstraints.empty(); }

  /// Whether `block` (which must have its rule-auditor snapshot) passes every composite. Each
  /// composite sees only the IDs that concern the block: the block parameter constraints of its
  /// type and all block type constraints; model parameter constraints act only as
  /// prerequisites. Stops at the first failing composite. Exceptions of a constraint pass
  /// through. Worker.
  bool checkBlock(std::shared_ptr<bkEditBlock> block);

  const std::vector<std::shared_ptr<CompositeConstraint>>& getCompositeConstraints() const {
    return compositeConstraints;
  }
  const std::map<std::string, std::shared_ptr<Constraint>>& getConstraintsById() const {
    return constraintsById;
  }
  const std::map<std::string, std::set<std::string>>& getConstraintIdsByBlockType() const {
    return constraintIdsByBlockType;
  }
  const std::map<std::string, std::vector<std::shared_ptr<BlockParameterConstraint>>>&
  getBlockParameterConstraintsByBlockType() const {
    return blockParameterConstraintsByBlockType;
  }
  const ModelParameterConstraintsByName& getModelParameterConstraintsByName() const {
    return modelParameterConstraintsByName;
  }
  const std::set<std::string>& getBlockTypeConstraintIds() const { return blockTypeConstraintIds; }
  const std::vector<std::string>& getBlockTypeNames() const { return blockTypeNames; }
  const std::vector<std::string>& getModelParameterNames() const { return modelParameterNames; }

 private:
  void parseConstraintFile(const boost::property_tree::ptree& inputParameters);
  void readConstraintElement(const std::string& element, const boost::property_tree::ptree& node);
  void resolvePrerequisites();
  void resolveCompositeChildren();

  std::vector<std::shared_ptr<CompositeConstraint>> compositeConstraints;
  std::map<std::string, std::shared_ptr<Constraint>> constraintsById;
  std::map<std::string, std::set<std::string>> constraintIdsByBlockType;
  std::map<std::string, std::vector<std::shared_ptr<BlockParameterConstraint>>>
      blockParameterConstraintsByBlockType;
  ModelParameterConstraintsByName modelParameterConstraintsByName;
  std::set<std::string> blockTypeConstraintIds;
  std::vector<std::string> blockTypeNames;
  std::vector<std::string> modelParameterNames;
};

}  // namespace bkedittimecheck
