#include "src/constraints/constraint.h"

#include <algorithm>

namespace bkedittimecheck {

Constraint::Constraint(const Constraint& other)
    : ncos::Wrappable(other),
      std::enable_shared_from_this<Constraint>(other),
      ID(other.ID),
      PreRequisiteConstraintIDs(other.PreRequisiteConstraintIDs),
      PreRequisiteConstraintObjects(other.PreRequisiteConstraintObjects),
      isRootConstraint(other.isRootConstraint),
      wasChecked(other.wasChecked.load()),
      status(other.status.load()),
      isConstraintValueRowVector(other.isConstraintValueRowVector) {}

Constraint& Constraint::operator=(const Constraint& other) {
  if (this == &other) return *this;
  ncos::Wrappable::operator=(other);
  ID = other.ID;
  PreRequisiteConstraintIDs = other.PreRequisiteConstraintIDs;
  PreRequisiteConstraintObjects = other.PreRequisiteConstraintObjects;
  isRootConstraint = other.isRootConstraint;
  wasChecked.store(other.wasChecked.load());
  status.store(other.status.load());
  isConstraintValueRowVector = other.isConstraintValueRowVector;
  return *this;
}

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
