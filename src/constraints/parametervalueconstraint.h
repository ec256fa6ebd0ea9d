#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/language/nxarray.h"
#include "src/constraints/constraint.h"
#include "src/constraints/constraintvalue.h"
#include "src/constraints/parametervalue.h"

namespace bkedittimecheck {

/// What the block and the model parameter constraints share: the parameter's name and data
/// type, the constraint values with their operator, the repair value, and the host-language
/// forms of the values. The subject classes add the value under judgement.
///
/// Thread contract as `Constraint`: the `Cos` members run on the main thread.
class ParameterValueConstraint : public Constraint {
 public:
  const std::string& getParameterName() const { return ParameterName; }
  void setParameterName(std::string name) { ParameterName = std::move(name); }
  const std::string& getValueOperator() const { return ValueOperator; }
  void setValueOperator(std::string op) { ValueOperator = std::move(op); }
  const std::string& getParameterDataType() const { return ParameterDataType; }
  void setParameterDataType(std::string type) { ParameterDataType = std::move(type); }
  const std::string& getFixValue() const { return FixValue; }
  void setFixValue(std::string value) { FixValue = std::move(value); }

  const std::vector<ConstraintValue>& getConstraintValue() const { return constraintValues; }
  void setConstraintValue(std::vector<ConstraintValue> values) {
    constraintValues = std::move(values);
  }
  void addToConstraintValueVector(ConstraintValue value) {
    constraintValues.push_back(std::move(value));
  }
  void clearConstraintValues() { constraintValues.clear(); }

  // The host-language forms. Main thread. Each validates and throws the message-ID errors of
  // constrainterrors.h.

  /// Replaces the values by the cells of a cell row or column, converted by the data type. The
  /// values stay empty when it throws InvalidParameterValueInput,
  /// UnsupportedNumberOfConstraintValues, UnsupportedValueOperator or UnsupportedParamValue; an
  /// empty array just empties them.
  void setCosConstraintValue(nxArrayProxy values);
  /// Appends one value converted by the data type; throws UnsupportedParamValue. Under
  /// "nxarray" the value is ignored.
  void addToCosConstraintValueVector(nxArrayProxy value);
  /// The values in the shape they were given in (row or column); null for "nxarray".
  nxArrayProxy getCosConstraintValue() const;
  /// Runs `check` and drops its result.
  void cosCheck() { check(); }

 protected:
  ParameterValueConstraint() = default;
  ParameterValueConstraint(const ParameterValueConstraint&) = default;
  ParameterValueConstraint& operator=(const ParameterValueConstraint&) = default;

  /// Worker. The verdict: marks the constraint checked, then takes the value under judgement
  /// and stores and returns the status, whether that value matches the constraint values
  /// (`positive`) or does not. The mark comes first so that a refresh made meanwhile, which
  /// clears it, makes the constraint judge again. What the comparison throws passes through.
  bool judge(bool positive);
  /// A copy of the value `judge` compares.
  virtual ParameterValue valueUnderJudgement() const = 0;

 private:
  std::string ParameterName;
  // Proposed to the user as the repair; carried and shown, never compared.
  std::string FixValue;
  std::string ValueOperator = "or";
  std::vector<ConstraintValue> constraintValues;  // the field `ConstraintValue`
  std::string ParameterDataType = "string";
};

}  // namespace bkedittimecheck
