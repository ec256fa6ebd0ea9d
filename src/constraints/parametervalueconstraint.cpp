#include "src/constraints/parametervalueconstraint.h"

#include "src/constraints/constraintvaluearray.h"

namespace bkedittimecheck {

void ParameterValueConstraint::setCosConstraintValue(nxArrayProxy values) {
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

void ParameterValueConstraint::addToCosConstraintValueVector(nxArrayProxy value) {
  if (auto item = constraintValueFromArray(value.array(), ParameterDataType)) {
    constraintValues.push_back(std::move(*item));
  }
}

nxArrayProxy ParameterValueConstraint::getCosConstraintValue() const {
  return constraintValuesToArray(constraintValues, ParameterDataType, IsConstraintValueRowVector());
}

bool ParameterValueConstraint::judge(bool positive) {
  setWasChecked(true);
  const bool matches = matchesConstraintValues(valueUnderJudgement(), constraintValues,
                                               ValueOperator, ParameterDataType);
  setStatus(positive ? matches : !matches);
  return getStatus();
}

}  // namespace bkedittimecheck
