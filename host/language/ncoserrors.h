#pragma once

// The object system's own message-ID errors, component "blockara:ncos".

#include "host/language/messageid.h"

namespace ncos {
/// A method or property used on a dead or missing object.
BKMSG_DECLARE_ERROR(InvalidObject, "blockara:ncos");
/// Arguments: member name, class name.
BKMSG_DECLARE_ERROR(UnknownMember, "blockara:ncos");
/// Arguments: property name, class name.
BKMSG_DECLARE_ERROR(ReadOnlyProperty, "blockara:ncos");
/// Arguments: method name, class name, the classes of the arguments given.
BKMSG_DECLARE_ERROR(NoMatchingSignature, "blockara:ncos");
/// Arguments: class name.
BKMSG_DECLARE_ERROR(NotConstructible, "blockara:ncos");
/// Arguments: class name.
BKMSG_DECLARE_ERROR(UnknownClass, "blockara:ncos");
/// Arguments: what could not be converted.
BKMSG_DECLARE_ERROR(ConversionFailed, "blockara:ncos");
}  // namespace ncos
