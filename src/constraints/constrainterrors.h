#pragma once

// The errors that the host-language forms of the constraint classes raise. Each is a message-ID
// exception of component "bkedittimecheck:edittimecheck" whose text lies in the host's message
// catalogue (resources/messages.xml).

#include "host/language/messageid.h"

namespace bkedittimecheck {

/// Arguments: block type. "built-in/<type>" names nothing in the host.
BKMSG_DECLARE_ERROR(UnknownBuiltInBlock, "bkedittimecheck:edittimecheck");
/// Arguments: parameter name, block type.
BKMSG_DECLARE_ERROR(InvalidBlockParameterName, "bkedittimecheck:edittimecheck");
/// Arguments: operator, required count ("2" or "1").
BKMSG_DECLARE_ERROR(UnsupportedNumberOfConstraintValues, "bkedittimecheck:edittimecheck");
/// Arguments: operator.
BKMSG_DECLARE_ERROR(UnsupportedValueOperator, "bkedittimecheck:edittimecheck");
/// No arguments: constraint values that are not a cell vector.
BKMSG_DECLARE_ERROR(InvalidParameterValueInput, "bkedittimecheck:edittimecheck");
/// No arguments: a value that does not fit the parameter data type.
BKMSG_DECLARE_ERROR(UnsupportedParamValue, "bkedittimecheck:edittimecheck");
/// No arguments: a block type list cell that is no struct or object.
BKMSG_DECLARE_ERROR(InvalidParameterValueNonStruct, "bkedittimecheck:edittimecheck");
/// No arguments: a prerequisite that is no model parameter constraint object.
BKMSG_DECLARE_ERROR(UnsupportedPreReqType, "bkedittimecheck:edittimecheck");

}  // namespace bkedittimecheck
