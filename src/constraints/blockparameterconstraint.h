#pragma once

#include <boost/property_tree/ptree.hpp>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "src/constraints/parametervalue.h"
#include "src/constraints/parametervalueconstraint.h"

class BKBlock;

namespace bkedittimecheck {

/// A rule on the value of one dialog parameter of blocks of one type. The value is the one the
/// block's snapshot captured; all comparisons are `matchesConstraintValues`.
///
/// Thread contract as `Constraint`: the `Cos` members run on the main thread (they ask the
/// host); `check` and `setCurrentValue(block)` on the worker, with no lock.
class BlockParameterConstraint : public ParameterValueConstraint {
 public:
  const std::string& getBlockType() const { return BlockType; }
  void setBlockType(std::string type) { BlockType = std::move(type); }

  const ParameterValue& getCurrentValue() const { return CurrentValue; }
  /// Refreshes, then stores the value under judgement.
  void setCurrentValue(ParameterValue value);
  /// Refreshes, then takes the block's captured value of `ParameterName`. A block without one
  /// leaves the current value as it is: it is judged by the value of the block judged last.
  void setCurrentValue(std::shared_ptr<bkEditBlock> block) override;

  // The host-language forms of the block type, the parameter and the operator; the values'
  // forms are the base's. Main thread.

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

 protected:
  BlockParameterConstraint() = default;
  BlockParameterConstraint(const BlockParameterConstraint&) = default;
  BlockParameterConstraint& operator=(const BlockParameterConstraint&) = default;
  /// The file constructor's common part: ID, children, then the attribute "BlockType".
  void readNode(const boost::property_tree::ptree& tree, const std::string& id);
  ParameterValue valueUnderJudgement() const override { return CurrentValue; }

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
  ParameterValue CurrentValue;
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
