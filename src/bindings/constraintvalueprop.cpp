#include "src/bindings/constraintvalueprop.h"

#include "host/language/cosinterface.h"
#include "src/bindings/cosconstraintclasses.h"
#include "src/constraints/blockparameterconstraint.h"
#include "src/constraints/blocktypeconstraint.h"
#include "src/constraints/modelparameterconstraint.h"

namespace bkedittimecheck::mi {

namespace {

// The native object behind `object`, asked for by the full name of its class.
template <class Native>
Native& nativeOf(const ncos::COSInterfacePtr& object, const char* className) {
  Native* native = object ? object->getInterfaceAs<Native>(ncos::COSNameID(className)) : nullptr;
  ncos::validateSelfPointer(native);
  return *native;
}

}  // namespace

#define BKETC_VALUE_ACCESSORS(PROP, NATIVE, CLASS, GET, SET)                                    \
  nxArrayProxy PROP::getConstraintValue(const ncos::COSInterfacePtr& object) const {            \
    return nativeOf<NATIVE>(object, CLASS).GET();                                               \
  }                                                                                             \
  void PROP::setConstraintValue(const ncos::COSInterfacePtr& object, const nxArrayProxy& value) \
      const {                                                                                   \
    nativeOf<NATIVE>(object, CLASS).SET(value);                                                 \
  }

BKETC_VALUE_ACCESSORS(SupportedValuePropB, PositiveBlockParameterConstraint,
                      kPositiveBlockParameterConstraintClass, getCosConstraintValue,
                      setCosConstraintValue)
BKETC_VALUE_ACCESSORS(UnsupportedValuePropB, NegativeBlockParameterConstraint,
                      kNegativeBlockParameterConstraintClass, getCosConstraintValue,
                      setCosConstraintValue)
BKETC_VALUE_ACCESSORS(SupportedValuePropM, PositiveModelParameterConstraint,
                      kPositiveModelParameterConstraintClass, getCosConstraintValue,
                      setCosConstraintValue)
BKETC_VALUE_ACCESSORS(UnsupportedValuePropM, NegativeModelParameterConstraint,
                      kNegativeModelParameterConstraintClass, getCosConstraintValue,
                      setCosConstraintValue)
BKETC_VALUE_ACCESSORS(SupportedValueProp, PositiveBlockTypeConstraint,
                      kPositiveBlockTypeConstraintClass, getCosBlockTypeMaskTypeList,
                      setCosBlockTypeMaskTypeList)
BKETC_VALUE_ACCESSORS(UnsupportedValueProp, NegativeBlockTypeConstraint,
                      kNegativeBlockTypeConstraintClass, getCosBlockTypeMaskTypeList,
                      setCosBlockTypeMaskTypeList)

#undef BKETC_VALUE_ACCESSORS

}  // namespace bkedittimecheck::mi
