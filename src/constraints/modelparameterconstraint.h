#pragma once

#include <boost/property_tree/ptree.hpp>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "src/constraints/parametervalue.h"
#include "src/constraints/parametervalueconstraint.h"

class BKRootBD;

namespace bkedittimecheck {

/// A rule on the value of one parameter of the diagram's active configuration set. The value is
/// read into the object when the constraints are loaded and when the parameter changes, and its
/// verdict serves every block until then: `setCurrentValue(block)` does nothing, not even a
/// refresh. It acts only as the prerequisite of block level constraints.
///
/// Thread contract: the value is written on the thread that processes the engine's events (the
/// main thread), also while a run on the worker reads it: `currentValueMutex` guards
/// `CurrentValue`, held only for a copy in or out, so that the worker judges either the old or
/// the new value and a refresh always makes it judge again.
class ModelParameterConstraint : public ParameterValueConstraint {
 public:
  /// A copy of the value under judgement.
  ParameterValue getCurrentValue() const;
  /// Refreshes, then stores the model parameter's value.
  void setCurrentValue(ParameterValue value);
  /// Does nothing: the value is the model's, and the verdict is reused until it is read again.
  void setCurrentValue(std::shared_ptr<bkEditBlock> block) override;

 protected:
  ModelParameterConstraint() = default;
  /// Memberwise (the guard is not copied).
  ModelParameterConstraint(const ModelParameterConstraint& other);
  ModelParameterConstraint& operator=(const ModelParameterConstraint& other);
  ParameterValue valueUnderJudgement() const override { return getCurrentValue(); }

 private:
  mutable std::mutex currentValueMutex;
  ParameterValue CurrentValue;  // guarded by currentValueMutex
  // Two flags that travel with the object and that no operation reads.
  bool reservedFlagA = false;
  bool reservedFlagB = true;
};

/// The model parameter's value must match the constraint values.
class PositiveModelParameterConstraint : public ModelParameterConstraint {
 public:
  PositiveModelParameterConstraint() = default;
  /// Reads a "PositiveModelParameterConstraint" element of the data file.
  PositiveModelParameterConstraint(const boost::property_tree::ptree& tree, const std::string& id);

  bool check() override;
  void scanDOMNode(boost::property_tree::ptree tree) override;
  const std::string getFullyQualifiedNcosTypeName() const override;

 private:
  void deleteTheDummyBPC(ncos::COSInterfacePtr object);
};

/// The model parameter's value must not match the constraint values.
class NegativeModelParameterConstraint : public ModelParameterConstraint {
 public:
  NegativeModelParameterConstraint() = default;
  /// Reads a "NegativeModelParameterConstraint" element of the data file.
  NegativeModelParameterConstraint(const boost::property_tree::ptree& tree, const std::string& id);

  bool check() override;
  void scanDOMNode(boost::property_tree::ptree tree) override;
  const std::string getFullyQualifiedNcosTypeName() const override;

 private:
  void deleteTheDummyBPC(ncos::COSInterfacePtr object);
};

using ModelParameterConstraintsByName =
    std::map<std::string, std::vector<std::shared_ptr<ModelParameterConstraint>>>;

/// Reads the value of each constraint's parameter from the diagram's active configuration set
/// and refreshes the constraint. With no active set nothing changes; a parameter the set lacks
/// keeps its constraint's value (and its verdict). "struct" and "array" read the parameter's
/// array form (exceptions pass through), "nxarray" reads nothing but refreshes, any other type
/// reads the text, falling back to a char array form, and takes the empty string when both fail.
/// Main thread: what bkEditBD runs when constraints are loaded.
void refreshModelParameterConstraints(BKRootBD* diagram,
                                      const ModelParameterConstraintsByName& constraintsByName);
/// The same for the constraints of one parameter, when that parameter changed. Main thread.
void refreshChangedModelParameterConstraints(
    BKRootBD* diagram, const std::vector<std::shared_ptr<ModelParameterConstraint>>& constraints);

}  // namespace bkedittimecheck
