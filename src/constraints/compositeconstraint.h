#pragma once

#include <boost/property_tree/ptree.hpp>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "host/language/cosinterface.h"
#include "src/constraints/constraint.h"

namespace bkedittimecheck {

class bkEditBlock;

/// A named set of constraint IDs with an operator: the unit that a constraint check runs for
/// each block. It is not a `Constraint`: it has no ID, no status and no prerequisites. It owns
/// the evaluation protocol `checkConstraint`.
///
/// Thread contract: built by the configuration reader; `check` and `checkConstraint` run on the
/// worker only, with no lock. A composite keeps no state between calls.
class CompositeConstraint : public ncos::Wrappable {
 public:
  CompositeConstraint() = default;
  /// Reads a "CompositeConstraint" element of the data file.
  explicit CompositeConstraint(const boost::property_tree::ptree& tree);
  CompositeConstraint(const CompositeConstraint&) = default;
  CompositeConstraint& operator=(const CompositeConstraint&) = default;
  ~CompositeConstraint() override = default;

  /// Reads "ID" children (one child ID each; repeats have no effect) and "operator" (empty text
  /// read as "and"), in file order. Without "operator" the operator stays empty.
  void scanDOMNode(boost::property_tree::ptree tree);

  void addConstraint(std::shared_ptr<Constraint> constraint) {
    constraints.push_back(std::move(constraint));
  }
  void addConstraintID(std::string id) { constraintIds.insert(std::move(id)); }
  const std::vector<std::shared_ptr<Constraint>>& getConstraints() const { return constraints; }
  void setConstraints(std::vector<std::shared_ptr<Constraint>> children) {
    constraints = std::move(children);
  }
  const std::set<std::string>& getConstraintIDs() const { return constraintIds; }
  void setConstraintIDs(std::set<std::string> ids) { constraintIds = std::move(ids); }
  const std::string& getCompositeOperator() const { return compositeOperator; }
  void setCompositeOperator(std::string op) { compositeOperator = std::move(op); }

  /// Whether `block` passes: the children whose ID is in `ids`, in `constraints` order, under
  /// the operator compared without case. "and" stops at the first failing child. "or" starts
  /// from true like "and" and so evaluates nothing and always passes; so does any other word,
  /// the empty one included. Exceptions of a child pass through.
  bool check(std::shared_ptr<bkEditBlock> block, std::set<std::string> ids);

  /// The evaluation of one constraint for `block`: its prerequisites in order, by this same
  /// operation, until one gives false, and then true without touching the constraint (a failed
  /// prerequisite makes the constraint not apply). Otherwise the constraint takes the block's
  /// value and gives `check()`, or its kept `Status` when it is still evaluated. A `dependson`
  /// cycle recurses without bound.
  static bool checkConstraint(std::shared_ptr<bkEditBlock> block,
                              std::shared_ptr<Constraint> constraint);

  /// The name the class would have in the host language; no class of that name is declared,
  /// as composites exist only in the data file's world.
  virtual const std::string getFullyQualifiedNcosTypeName() const;

 private:
  std::set<std::string> constraintIds;
  // Filled by linking, which walks constraintIds: in ascending ID order.
  std::vector<std::shared_ptr<Constraint>> constraints;
  std::string compositeOperator;
};

}  // namespace bkedittimecheck
