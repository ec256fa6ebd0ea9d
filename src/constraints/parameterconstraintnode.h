#pragma once

// The data file children of the four parameter constraint elements, read in file order. Shared
// by the block and model parameter constraints, whose elements have the same form.

#include <boost/property_tree/ptree.hpp>
#include <string>

#include "src/constraints/constraintvalue.h"

namespace bkedittimecheck {

/// One "value" element as an item of `dataType`: for "struct" each child element is a field
/// (name and text), for "array" each "element" child an element, for any other word the text.
ConstraintValue constraintValueFromNode(const boost::property_tree::ptree& value,
                                        const std::string& dataType);

/// Reads "parameter" (text and attribute "type", empty or missing read as "string"), "value"
/// (by the data type known at that moment, so that a value before "parameter" is a string),
/// "operator" (empty text read as "or"), "fixvalue" and "dependson"; other children are passed
/// over. The plain setters are used: nothing is validated.
template <class ParameterConstraint>
void scanParameterConstraintNode(ParameterConstraint& constraint,
                                 const boost::property_tree::ptree& tree) {
  for (const auto& [name, child] : tree) {
    if (name == "parameter") {
      constraint.setParameterName(child.data());
      const std::string type = child.template get<std::string>("<xmlattr>.type", "");
      constraint.setParameterDataType(type.empty() ? "string" : type);
    } else if (name == "value") {
      constraint.addToConstraintValueVector(
          constraintValueFromNode(child, constraint.getParameterDataType()));
    } else if (name == "operator") {
      constraint.setValueOperator(child.data().empty() ? "or" : child.data());
    } else if (name == "fixvalue") {
      constraint.setFixValue(child.data());
    } else if (name == "dependson") {
      constraint.addPreRequisiteConstraintID(child.data());
    }
  }
}

}  // namespace bkedittimecheck
