#pragma once

// Conversions between constraint values and host-language arrays, shared by the host-language
// forms of the block and model parameter constraints, and the checks of an operator against
// the number of values that those forms make. Main thread (arrays may hold objects).

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/language/nxarray.h"
#include "host/model/bkblock.h"
#include "src/constraints/constraintvalue.h"

namespace bkedittimecheck {

/// A host-language value as text: a char array's characters, a numeric scalar in its shortest
/// decimal form, a logical scalar as "1" or "0", anything else the empty string.
std::string textOfArray(const nxArray& value);

/// A host parameter value as a host-language array, as the host's array read of a parameter
/// gives it: text as a char row, a record list as a 1xN struct array (fields of every record, in
/// first-seen order; a record lacking one has it empty).
nxArray blockParamValueToArray(const BlockParamValue& value);

/// A struct's (or an object's) fields of the first element, in field order, each as text; an
/// empty map for any other value. Of two equal field names the last wins.
ConstraintValue::Map structToMap(const nxArray& value);

/// A cell array's elements, in order, each as text; an empty vector for any other value.
ConstraintValue::Vector cellToVector(const nxArray& value);

/// Checks `valueOperator` against `count` values already held: "range" needs 2, "eq", "gt",
/// "ge", "lt", "le" and "regex" at most 1, "or" any. Throws UnsupportedNumberOfConstraintValues
/// or UnsupportedValueOperator. Nothing is checked for a count of 0.
void checkOperatorAgainstCount(const std::string& valueOperator, std::size_t count);

/// The number of cells of a constraint value list, which must be a cell array of one row or one
/// column; `isRow` tells which (a 1x1 cell is a row). Throws InvalidParameterValueInput.
std::size_t cellVectorLength(const nxArray& value, bool& isRow);

/// One host-language value converted by `dataType`: "struct" takes a struct or object and makes
/// a map, "array" a cell array and makes a vector, "nxarray" anything and makes nothing, any
/// other word a char array and makes a string. Throws UnsupportedParamValue.
std::optional<ConstraintValue> constraintValueFromArray(const nxArray& value,
                                                        const std::string& dataType);

/// The values as a host-language cell row or column (`isRow`): a 1x1 struct per map, a cell row
/// of strings per vector, a char row per string. "nxarray" gives the null proxy.
nxArrayProxy constraintValuesToArray(const std::vector<ConstraintValue>& values,
                                     const std::string& dataType, bool isRow);

}  // namespace bkedittimecheck
