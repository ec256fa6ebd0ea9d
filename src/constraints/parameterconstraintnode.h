#pragma once

// The data file children of the four parameter constraint elements, read in file order: the
// block and model parameter constraints' elements have the same form.

#include <boost/property_tree/ptree.hpp>
#include <string>

#include "src/constraints/constraintvalue.h"

namespace bkedittimecheck {

class ParameterValueConstraint;

/// One "value" element as an item of `dataType`: for "struct" each child element is a field
/// (name and text), for "array" each "element" child an element, for any other word the text.
ConstraintValue constraintValueFromNode(const boost::property_tree::ptree& value,
                                        const std::string& dataType);

/// Reads "parameter" (text and attribute "type", empty or missing read as "string"), "value"
/// (by the data type known at that moment, so that a value before "parameter" is a string),
/// "operator" (empty text read as "or"), "fixvalue" and "dependson"; other children are passed
/// over. The plain setters are used: nothing is validated.
void scanParameterConstraintNode(ParameterValueConstraint& constraint,
                                 const boost::property_tree::ptree& tree);

}  // namespace bkedittimecheck
