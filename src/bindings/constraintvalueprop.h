#pragma once

#include <string>

#include "host/language/cosclassinfo.h"

namespace bkedittimecheck::mi {

/// The property that holds a constraint's values as an uninterpreted host-language array: the
/// property-info interface answered with constants, and get and set of the value handed to the
/// native object found by its class's full name. Subclasses name the class and the accessors.
/// Main thread.
class ConstraintValueProp : public ncos::COSPropInfo {
 public:
  ConstraintValueProp(const char* name, unsigned word) : propName(name), word(word) {}

  const char* getName() const override { return propName.c_str(); }
  unsigned getAttributes() const override { return word; }
  bool isReadable() const override { return true; }
  bool isWritable() const override { return true; }
  nxArrayProxy getValue(const ncos::COSInterfacePtr& object) const override {
    return getConstraintValue(object);
  }
  void setValue(const ncos::COSInterfacePtr& object, const nxArrayProxy& value) const override {
    setConstraintValue(object, value);
  }

  /// The value of `object`; throws "blockara:ncos:InvalidObject" for a dead or foreign object
  /// and what the native accessor throws.
  virtual nxArrayProxy getConstraintValue(const ncos::COSInterfacePtr& object) const = 0;
  /// Sets the value of `object`; throws as `getConstraintValue`.
  virtual void setConstraintValue(const ncos::COSInterfacePtr& object,
                                  const nxArrayProxy& value) const = 0;

 private:
  const std::string propName;
  const unsigned word;
};

#define BKETC_CONSTRAINT_VALUE_PROP(NAME)                                                \
  class NAME : public ConstraintValueProp {                                              \
   public:                                                                               \
    using ConstraintValueProp::ConstraintValueProp;                                      \
    nxArrayProxy getConstraintValue(const ncos::COSInterfacePtr& object) const override; \
    void setConstraintValue(const ncos::COSInterfacePtr& object,                         \
                            const nxArrayProxy& value) const override;                   \
  }

/// "SupportedParameterValues" of PositiveBlockParameterConstraint.
BKETC_CONSTRAINT_VALUE_PROP(SupportedValuePropB);
/// "UnsupportedParameterValues" of NegativeBlockParameterConstraint.
BKETC_CONSTRAINT_VALUE_PROP(UnsupportedValuePropB);
/// "SupportedParameterValues" of PositiveModelParameterConstraint.
BKETC_CONSTRAINT_VALUE_PROP(SupportedValuePropM);
/// "UnsupportedParameterValues" of NegativeModelParameterConstraint.
BKETC_CONSTRAINT_VALUE_PROP(UnsupportedValuePropM);
/// "SupportedBlockTypes" of PositiveBlockTypeConstraint.
BKETC_CONSTRAINT_VALUE_PROP(SupportedValueProp);
/// "UnsupportedBlockTypes" of NegativeBlockTypeConstraint.
BKETC_CONSTRAINT_VALUE_PROP(UnsupportedValueProp);

#undef BKETC_CONSTRAINT_VALUE_PROP

}  // namespace bkedittimecheck::mi
