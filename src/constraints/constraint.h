#pragma once

#include <atomic>
#include <boost/property_tree/ptree.hpp>
#include <memory>
#include <string>
#include <vector>

#include "host/language/cosinterface.h"

namespace bkedittimecheck {

class bkEditBlock;

/// The root of the data-driven rule family: one rule that a block or a model satisfies or not.
/// It carries the identity, the prerequisite graph and the memory of the last evaluation; the
/// subject classes add the value under judgement and `check` gives the verdict.
///
/// Thread contract: built and linked by the configuration reader (the engine's event thread) or
/// by the host language (main thread); during a run evaluated by the single worker thread only,
/// with no lock. That one thread is what makes the stateful protocol (`WasChecked`, `Status`,
/// the current value) safe. Model parameter values alone are written from outside a run, on the
/// thread that processes the engine's events, possibly while the worker judges them: so the two
/// flags of the evaluation are atomic, and that subject guards its value.
///
/// Constraints are always owned by shared pointers (`shared_from_this` gives the owner to a
/// host-language caller that links one object to another by pointer).
class Constraint : public ncos::Wrappable, public std::enable_shared_from_this<Constraint> {
 public:
  Constraint() = default;
  /// Memberwise.
  Constraint(const Constraint& other);
  Constraint& operator=(const Constraint& other);
  ~Constraint() override = default;

  /// Sets `WasChecked`, computes the verdict, stores it in `Status` and returns it: true when
  /// the constraint holds. Exceptions of the value comparison pass through.
  virtual bool check() = 0;
  /// Reads the constraint's own children of its data file element (see the reader).
  virtual void scanDOMNode(boost::property_tree::ptree tree) = 0;
  /// Takes the value under judgement from `block`; subjects differ in whether that refreshes.
  virtual void setCurrentValue(std::shared_ptr<bkEditBlock> block) = 0;
  /// The full host-language class name of the object's class.
  virtual const std::string getFullyQualifiedNcosTypeName() const = 0;

  const std::string& getID() const { return ID; }
  void setID(std::string id) { ID = std::move(id); }

  const std::vector<std::string>& getPreRequisiteConstraintIDs() const {
    return PreRequisiteConstraintIDs;
  }
  void setPreRequisiteConstraintIDs(std::vector<std::string> ids) {
    PreRequisiteConstraintIDs = std::move(ids);
  }
  const std::vector<std::shared_ptr<Constraint>>& getPreRequisiteConstraints() const {
    return PreRequisiteConstraintObjects;
  }
  void setPreRequisiteConstraints(std::vector<std::shared_ptr<Constraint>> objects) {
    PreRequisiteConstraintObjects = std::move(objects);
  }
  /// Appends `id`, also when it is already listed.
  void addPreRequisiteConstraintID(std::string id) {
    PreRequisiteConstraintIDs.push_back(std::move(id));
  }
  /// Appends the object always, and its ID only when the ID list lacks it: linking a
  /// prerequisite that the file named does not double its ID.
  void addPreRequisiteConstraint(std::shared_ptr<Constraint> prerequisite);
  /// Empties both lists; no flag changes, here or in the former prerequisites.
  void resetPrerequisites();

  const bool& IsRootConstraint() const { return isRootConstraint; }
  void setIsRootConstraint(bool value) { isRootConstraint = value; }
  const bool& IsConstraintValueRowVector() const { return isConstraintValueRowVector; }
  void setIsConstraintValueRowVector(bool value) { isConstraintValueRowVector = value; }
  bool WasChecked() const { return wasChecked.load(); }
  void setWasChecked(bool value) { wasChecked.store(value); }
  bool getStatus() const { return status.load(); }
  void setStatus(bool value) { status.store(value); }

  /// Marks the verdict stale: `WasChecked` false, `Status` kept.
  void refresh() { wasChecked.store(false); }

 private:
  std::string ID;
  std::vector<std::string> PreRequisiteConstraintIDs;
  std::vector<std::shared_ptr<Constraint>> PreRequisiteConstraintObjects;
  // IsRootConstraint: informative only, shown to the host language; the evaluation never reads it.
  bool isRootConstraint = true;
  // Written by the worker's evaluation and by a model value's refresh on the event thread.
  std::atomic<bool> wasChecked{false};
  std::atomic<bool> status{false};
  // Whether the host language gave the values as a row; only used to give them back so.
  bool isConstraintValueRowVector = false;
};

}  // namespace bkedittimecheck
