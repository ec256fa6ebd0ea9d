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
    : Constraint(other),
      ParameterName(other.ParameterName),
      CurrentValue(other.getCurrentValue()),
      FixValue(other.FixValue),
      ValueOperator(other.ValueOperator),
      constraintValues(other.constraintValues),
      reservedFlagA(other.reservedFlagA),
      reservedFlagB(other.reservedFlagB),
      ParameterDataType(other.ParameterDataType) {}

ModelParameterConstraint& ModelParameterConstraint::operator=(
    const ModelParameterConstraint& other) {
  if (this == &other) return *this;
  Constraint::operator=(other);
  ParameterName = other.ParameterName;
  ParameterValue value = other.getCurrentValue();
  {
    std::lock_guard<std::mutex> lock(currentValueMutex);
    CurrentValue = std::move(value);
  }
  FixValue = other.FixValue;
  ValueOperator = other.ValueOperator;
  constraintValues = other.constraintValues;
  reservedFlagA = other.reservedFlagA;
  reservedFlagB = other.reservedFlagB;
  ParameterDataType = other.ParameterDataType;
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

void ModelParameterConstraint::setCosConstraintValue(nxArrayProxy values) {
  constraintValues.clear();
  const nxArray& array = values.array();
  if (array.isEmpty()) return;
  bool isRow = false;
  const std::size_t count = cellVectorLength(array, isRow);
  setIsConstraintValueRowVector(isRow);
  if (!ValueOperator.empty()) checkOperatorAgainstCount(ValueOperator, count);
  std::vector<ConstraintValue> converted;
  for (std::size_t i = 0; i < array.numel(); ++i) {
    if (auto item = constraintValueFromArray(array.getCell(i), ParameterDataType)) {
      converted.push_back(std::move(*item));
    }
  }
  constraintValues = std::move(converted);
}

void ModelParameterConstraint::addToCosConstraintValueVector(nxArrayProxy value) {
  if (auto item = constraintValueFromArray(value.array(), ParameterDataType)) {
    constraintValues.push_back(std::move(*item));
  }
}

nxArrayProxy ModelParameterConstraint::getCosConstraintValue() const {
  return constraintValuesToArray(constraintValues, ParameterDataType, IsConstraintValueRowVector());
}

PositiveModelParameterConstraint::PositiveModelParameterConstraint(
    const boost::property_tree::ptree& tree, const std::string& id) {
  setID(id);
  scanDOMNode(tree);
}

bool PositiveModelParameterConstraint::check() {
  setWasChecked(true);
  setStatus(matchesConstraintValues(getCurrentValue(), getConstraintValue(), getValueOperator(),
                                    getParameterDataType()));
  return getStatus();
}

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

bool NegativeModelParameterConstraint::check() {
  setWasChecked(true);
  setStatus(!matchesConstraintValues(getCurrentValue(), getConstraintValue(), getValueOperator(),
                                     getParameterDataType()));
  return getStatus();
}

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
