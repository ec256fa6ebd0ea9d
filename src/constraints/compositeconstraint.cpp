#include "src/constraints/compositeconstraint.h"

#include <boost/algorithm/string/predicate.hpp>

namespace bkedittimecheck {

CompositeConstraint::CompositeConstraint(const boost::property_tree::ptree& tree) {
  scanDOMNode(tree);
}

void CompositeConstraint::scanDOMNode(boost::property_tree::ptree tree) {
  for (const auto& [name, child] : tree) {
    if (name == "ID") {
      addConstraintID(child.data());
    } else if (name == "operator") {
      setCompositeOperator(child.data().empty() ? "and" : child.data());
    }
  }
}

bool CompositeConstraint::check(std::shared_ptr<bkEditBlock> block, std::set<std::string> ids) {
  bool result = true;
  for (const std::shared_ptr<Constraint>& child : constraints) {
    if (ids.count(child->getID()) == 0) continue;
    // "or" shares its start value with "and": with result true no child is ever evaluated.
    if (boost::algorithm::iequals(compositeOperator, "or")) {
      if (!result) result = checkConstraint(block, child);
    } else if (boost::algorithm::iequals(compositeOperator, "and")) {
      if (result) result = checkConstraint(block, child);
    }
  }
  return result;
}

bool CompositeConstraint::checkConstraint(std::shared_ptr<bkEditBlock> block,
                                          std::shared_ptr<Constraint> constraint) {
  bool allPrerequisitesHold = true;
  const std::vector<std::shared_ptr<Constraint>> prerequisites =
      constraint->getPreRequisiteConstraints();
  for (const std::shared_ptr<Constraint>& prerequisite : prerequisites) {
    if (!allPrerequisitesHold) break;
    allPrerequisitesHold = checkConstraint(block, prerequisite);
  }
  if (!allPrerequisitesHold) return true;
  constraint->setCurrentValue(block);
  if (!constraint->WasChecked()) return constraint->check();
  return constraint->getStatus();
}

const std::string CompositeConstraint::getFullyQualifiedNcosTypeName() const {
  return "Auditor.authoring.CompositeConstraint";
}

}  // namespace bkedittimecheck
