#include "src/constraints/constraint.h"

#include <algorithm>

namespace bkedittimecheck {

void Constraint::addPreRequisiteConstraint(std::shared_ptr<Constraint> prerequisite) {
  const std::string id = prerequisite ? prerequisite->getID() : std::string();
  PreRequisiteConstraintObjects.push_back(std::move(prerequisite));
  if (std::find(PreRequisiteConstraintIDs.begin(), PreRequisiteConstraintIDs.end(), id) ==
      PreRequisiteConstraintIDs.end()) {
    PreRequisiteConstraintIDs.push_back(id);
  }
}

void Constraint::resetPrerequisites() {
  PreRequisiteConstraintIDs.clear();
  PreRequisiteConstraintObjects.clear();
}

}  // namespace bkedittimecheck
