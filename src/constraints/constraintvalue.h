#pragma once

#include <boost/any.hpp>
#include <map>
#include <string>
#include <vector>

#include "src/constraints/parametervalue.h"

namespace bkedittimecheck {

/// One supported or unsupported value of a parameter constraint: a text, a struct's fields or an
/// array's elements, the same three alternatives as `ParameterValue`. Which one an item holds
/// follows from the constraint's `ParameterDataType` when the item was made ("struct" makes
/// maps, "array" vectors, anything else strings). Copies clone the held value. Any thread.
class ConstraintValue {
 public:
  using Map = std::map<std::string, std::string>;
  using Vector = std::vector<std::string>;

  ConstraintValue() : held(std::string()) {}
  explicit ConstraintValue(std::string text) : held(std::move(text)) {}
  explicit ConstraintValue(Map fields) : held(std::move(fields)) {}
  explicit ConstraintValue(Vector elements) : held(std::move(elements)) {}

  /// The held text; throws boost::bad_any_cast when the item holds something else.
  const std::string& asString() const { return boost::any_cast<const std::string&>(held); }
  /// The held fields; throws boost::bad_any_cast when the item holds something else.
  const Map& asMap() const { return boost::any_cast<const Map&>(held); }
  /// The held elements; throws boost::bad_any_cast when the item holds something else.
  const Vector& asVector() const { return boost::any_cast<const Vector&>(held); }

  bool holdsString() const { return held.type() == typeid(std::string); }
  bool holdsMap() const { return held.type() == typeid(Map); }
  bool holdsVector() const { return held.type() == typeid(Vector); }

  bool operator==(const ConstraintValue& other) const;

 private:
  boost::any held;
};

/// Whether `current` matches `values` under `valueOperator` and `dataType`: the comparison of
/// block and model parameter constraints, before a negative constraint negates it.
///
/// False when any of `values`, `valueOperator`, `dataType` is empty, when the first value is one
/// of the reserved words "Selected" and "Unselected", for an operator word it does not know, and
/// for "range" with fewer than two values. "struct" and "array" compare only under "or";
/// "nxarray" never matches. Throws boost::bad_any_cast for an item of another alternative than
/// `dataType` makes, std::bad_variant_access for a current value of another alternative,
/// boost::regex_error for a malformed "regex" value and std::runtime_error when a "regex" match
/// grows too complex. Works on copies of its inputs. Any thread.
bool matchesConstraintValues(ParameterValue current, std::vector<ConstraintValue> values,
                             std::string valueOperator, std::string dataType);

}  // namespace bkedittimecheck
