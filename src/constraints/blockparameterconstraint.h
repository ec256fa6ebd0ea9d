#pragma once

#include <boost/property_tree/ptree.hpp>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/language/nxarray.h"
#include "src/constraints/constraint.h"
#include "src/constraints/constraintvalue.h"
#include "src/constraints/parametervalue.h"

class BKBlock;

namespace bkedittimecheck {

/// A rule on the value of one dialog parameter of blocks of one type. The value is the one the
/// block's snapshot captured; all comparisons are `matchesConstraintValues`.
///
/// Thread contract as `Constraint`: the `Cos` members run on the main thread (they ask the
/// host); `check` and `setCurrentValue(block)` on the worker, with no lock.
class BlockParameterConstraint : public Constraint {
 public:
  const std::string& getBlockType() const { return BlockType; }
  void setBlockType(std::string type) { BlockType = std::move(type); }
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

  const ParameterValue& getCurrentValue() const { return CurrentValue; }
  /// Refreshes, then stores the value under judgement.
  void setCurrentValue(ParameterValue value);
  /// Refreshes, then takes the block's captured value of `ParameterName`. A block without one
  /// leaves the current value as it is: it is judged by the value of the block judged last.
  void setCurrentValue(std::shared_ptr<bkEditBlock> block) override;

  // The host-language forms. Main thread. Each validates and throws the message-ID errors of
  // constrainterrors.h.

  /// Stores `type` when "built-in/<type>" is a built-in block (a type the host does not know
  /// throws UnknownBuiltInBlock; a path of another kind changes nothing). When a parameter name
  /// is already set and is no visible dialog parameter of the type, empties `BlockType` and
  /// throws InvalidBlockParameterName(name, type).
  void setCosBlockType(std::string type);
  /// Stores `name` when it is a visible dialog parameter of `BlockType` (any name while no block
  /// type is set); throws InvalidBlockParameterName(name, BlockType) otherwise.
  void setCosParameterName(std::string name);
  /// Stores `op` when it fits the number of values held: see checkOperatorAgainstCount.
  void setCosValueOperator(std::string op);
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
  BlockParameterConstraint() = default;
  BlockParameterConstraint(const BlockParameterConstraint&) = default;
  BlockParameterConstraint& operator=(const BlockParameterConstraint&) = default;
  /// The file constructor's common part: ID, children, then the attribute "BlockType".
  void readNode(const boost::property_tree::ptree& tree, const std::string& id);

 private:
  bool isValidBlock(const std::string& blockType);
  bool isValidParameter(const std::string& name) const;
  // Kept without a caller: the value lists of the host language are validated by
  // setCosConstraintValue. Drops its argument and answers false.
  bool isValidConstraintValue(std::vector<ConstraintValue> values) const;

  std::string BlockType;
  // Set by isValidBlock, for the validation of the Cos members only.
  std::int32_t blockHandleIsValid = 0;
  const BKBlock* builtInBlockHandle = nullptr;
  std::vector<ConstraintValue> constraintValues;  // the field `ConstraintValue`
  std::string ParameterName;
  ParameterValue CurrentValue;
  // Proposed to the user as the repair; carried and shown, never compared.
  std::string FixValue;
  std::string ValueOperator = "or";
  std::string ParameterDataType = "string";
};

/// The parameter's value must match the constraint values.
class PositiveBlockParameterConstraint : public BlockParameterConstraint {
 public:
  PositiveBlockParameterConstraint() = default;
  /// Reads a "PositiveBlockParameterConstraint" element of the data file; nothing is validated.
  PositiveBlockParameterConstraint(const boost::property_tree::ptree& tree, const std::string& id);

  bool check() override;
  void scanDOMNode(boost::property_tree::ptree tree) override;
  const std::string getFullyQualifiedNcosTypeName() const override;

 private:
  void deleteTheDummyBPC(ncos::COSInterfacePtr object);
};

/// The parameter's value must not match the constraint values.
class NegativeBlockParameterConstraint : public BlockParameterConstraint {
 public:
  NegativeBlockParameterConstraint() = default;
  /// Reads a "NegativeBlockParameterConstraint" element of the data file; nothing is validated.
  NegativeBlockParameterConstraint(const boost::property_tree::ptree& tree, const std::string& id);

  bool check() override;
  void scanDOMNode(boost::property_tree::ptree tree) override;
  const std::string getFullyQualifiedNcosTypeName() const override;

 private:
  void deleteTheDummyBPC(ncos::COSInterfacePtr object);
};

}  // namespace bkedittimecheck
