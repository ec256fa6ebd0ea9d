#include "src/constraints/modelparameterconstraint.h"

#include "host/model/blockqueries.h"
#include "host/model/configset.h"
#include "src/constraints/constraintvaluearray.h"
#include "src/constraints/parameterconstraintnode.h"

namespace bkedittimecheck {

namespace {

std::string readText(BKRootBD* diagram, const std::string& name) {
  try {
    return bkobject::blockDiagram::getParamAsStr(diagram, name);
  } catch (const bkHostException&) {
    try {
      const nxArray value =
          blockParamValueToArray(bkobject::blockDiagram::getParamValue(diagram, name));
      if (value.isChar()) return value.toUtf8String();
    } catch (const bkHostException&) {
      // Unreadable both ways: the parameter evaluates as the empty string.
    }
  }
  return {};
}

void refreshOne(BKRootBD* diagram, const ConfigSet& set, ModelParameterConstraint& constraint) {
  const std::string& name = constraint.getParameterName();
  if (!set.hasProp(name)) return;
  const std::string& type = constraint.getParameterDataType();
  if (type == "struct") {
    constraint.setCurrentValue(
        structToMap(blockParamValueToArray(bkobject::blockDiagram::getParamValue(diagram, name))));
  } else if (type == "array") {
    constraint.setCurrentValue(
        cellToVector(blockParamValueToArray(bkobject::blockDiagram::getParamValue(diagram, name))));
  } else if (type != "nxarray") {
    constraint.setCurrentValue(readText(diagram, name));
  }
  constraint.refresh();
}

}  // namespace

ModelParameterConstraint::ModelParameterConstraint(const ModelParameterConstraint& other)
    : ParameterValueConstraint(other),
      CurrentValue(other.getCurrentValue()),
      reservedFlagA(other.reservedFlagA),
      reservedFlagB(other.reservedFlagB) {}

ModelParameterConstraint& ModelParameterConstraint::operator=(
    const ModelParameterConstraint& other) {
  if (this == &other) return *this;
  ParameterValueConstraint::operator=(other);
  ParameterValue value = other.getCurrentValue();
  {
    std::lock_guard<std::mutex> lock(currentValueMutex);
    CurrentValue = std::move(value);
  }
  reservedFlagA = other.reservedFlagA;
  reservedFlagB = other.reservedFlagB;
  return *this;
}

ParameterValue ModelParameterConstraint::getCurrentValue() const {
  std::lock_guard<std::mutex> lock(currentValueMutex);
  return CurrentValue;
}

void ModelParameterConstraint::setCurrentValue(ParameterValue value) {
  std::lock_guard<std::mutex> lock(currentValueMutex);
  refresh();
  CurrentValue = std::move(value);
}

void ModelParameterConstraint::setCurrentValue(std::shared_ptr<bkEditBlock> /*block*/) {}

PositiveModelParameterConstraint::PositiveModelParameterConstraint(
    const boost::property_tree::ptree& tree, const std::string& id) {
  setID(id);
  scanDOMNode(tree);
}

bool PositiveModelParameterConstraint::check() { return judge(true); }

void PositiveModelParameterConstraint::scanDOMNode(boost::property_tree::ptree tree) {
  scanParameterConstraintNode(*this, tree);
}

const std::string PositiveModelParameterConstraint::getFullyQualifiedNcosTypeName() const {
  return "Auditor.authoring.internal.PositiveModelParameterConstraint";
}

void PositiveModelParameterConstraint::deleteTheDummyBPC(ncos::COSInterfacePtr object) {
  object.reset();
}

NegativeModelParameterConstraint::NegativeModelParameterConstraint(
    const boost::property_tree::ptree& tree, const std::string& id) {
  setID(id);
  scanDOMNode(tree);
}

bool NegativeModelParameterConstraint::check() { return judge(false); }

void NegativeModelParameterConstraint::scanDOMNode(boost::property_tree::ptree tree) {
  scanParameterConstraintNode(*this, tree);
}

const std::string NegativeModelParameterConstraint::getFullyQualifiedNcosTypeName() const {
  return "Auditor.authoring.internal.NegativeModelParameterConstraint";
}

void NegativeModelParameterConstraint::deleteTheDummyBPC(ncos::COSInterfacePtr object) {
  object.reset();
}

void refreshChangedModelParameterConstraints(
    BKRootBD* diagram, const std::vector<std::shared_ptr<ModelParameterConstraint>>& constraints) {
  const ConfigSet* set = nullptr;
  try {
    set = BDConfigSetInfo::get(diagram).getActiveSetObject();
  } catch (const NoActiveConfigSet&) {
    return;
  }
  if (!set) return;
  for (const auto& constraint : constraints) {
    if (constraint) refreshOne(diagram, *set, *constraint);
  }
}

void refreshModelParameterConstraints(BKRootBD* diagram,
                                      const ModelParameterConstraintsByName& constraintsByName) {
  for (const auto& [name, constraints] : constraintsByName) {
    refreshChangedModelParameterConstraints(diagram, constraints);
  }
}

}  // namespace bkedittimecheck
