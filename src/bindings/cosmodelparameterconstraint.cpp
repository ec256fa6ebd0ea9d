// "Auditor.authoring.internal.ModelParameterConstraint" and its positive and negative classes.
#include <memory>
#include <string>

#include "host/language/cosvalue.h"
#include "src/bindings/constraintvalueprop.h"
#include "src/bindings/cosconcreteclass.h"
#include "src/bindings/cosconstraintclasses.h"
#include "src/constraints/constraintvaluearray.h"
#include "src/constraints/modelparameterconstraint.h"

namespace bkedittimecheck::mi {

namespace {

using ncos::factory::ClassGetter;
using ncos::factory::ClassSetter;
using ncos::factory::makeMethodImpl;
using Invoker = ncos::factory::impl::Invoker;
using Text = ncos::factory::PropertyImpl<ModelParameterConstraint, std::string>;
using Getter = ClassGetter<ModelParameterConstraint, std::string>;
using Setter = ClassSetter<ModelParameterConstraint, std::string>;

constexpr unsigned kHiddenProperty = 2048;

void setCurrentText(ModelParameterConstraint* self, std::string text) {
  self->setCurrentValue(ParameterValue(std::move(text)));
}

// Any other value by its form: a struct's (or object's) fields, a cell's elements, else text.
void setCurrentArray(ModelParameterConstraint* self, const nxArray& value) {
  if (value.isStruct() || value.isObject()) {
    self->setCurrentValue(ParameterValue(structToMap(value)));
  } else if (value.isCell()) {
    self->setCurrentValue(ParameterValue(cellToVector(value)));
  } else {
    self->setCurrentValue(ParameterValue(textOfArray(value)));
  }
}

template <class Native, class ValueProp>
void populateConcrete(ncos::factory::NcosFactoryClassInfo& info, const char* className,
                      const char* valueProperty, const char* addingMethod) {
  detail::populateConcreteClass<Native, ValueProp>(info, kModelParameterConstraintClass, className,
                                                   valueProperty, addingMethod, "any",
                                                   &detail::addCosValue<Native>);
}

}  // namespace

CosModelParameterConstraint::CosModelParameterConstraint()
    : NcosFactoryClassInfo("ModelParameterConstraint", "EditTime ModelParameterConstraint object") {
}

void CosModelParameterConstraint::populate() {
  ncos::factory::detail::initStringDataTypes();
  addSuperclass(ncos::COSNameID(kConstraintClass), 1, 0, 1);
  addProperty(std::make_unique<Text>("ParameterName", 0,
                                     Getter(&ModelParameterConstraint::getParameterName),
                                     Setter(&ModelParameterConstraint::setParameterName)));
  addProperty(std::make_unique<Text>("ValueOperator", kHiddenProperty,
                                     Getter(&ModelParameterConstraint::getValueOperator),
                                     Setter(&ModelParameterConstraint::setValueOperator)));
  const auto textSignature =
      Invoker::createSignature("void", nullptr, {kModelParameterConstraintClass, "char"});
  addMethod("setCurrentValue", detail::hiddenStaticMethod(), textSignature,
            makeMethodImpl(textSignature, &setCurrentText));
  const auto anySignature =
      Invoker::createSignature("void", nullptr, {kModelParameterConstraintClass, "any"});
  addMethod("setCurrentValue", detail::hiddenStaticMethod(), anySignature,
            makeMethodImpl(anySignature, &setCurrentArray));
  addProperty(std::make_unique<Text>("ParameterDataType", kHiddenProperty,
                                     Getter(&ModelParameterConstraint::getParameterDataType),
                                     Setter(&ModelParameterConstraint::setParameterDataType)));
}

CosPositiveModelParameterConstraint::CosPositiveModelParameterConstraint()
    : NcosFactoryClassInfo("PositiveModelParameterConstraint",
                           "EditTime PositiveModelParameterConstraint object") {}

void CosPositiveModelParameterConstraint::populate() {
  populateConcrete<PositiveModelParameterConstraint, SupportedValuePropM>(
      *this, kPositiveModelParameterConstraintClass, "SupportedParameterValues",
      "addSupportedParameterValue");
}

CosNegativeModelParameterConstraint::CosNegativeModelParameterConstraint()
    : NcosFactoryClassInfo("NegativeModelParameterConstraint",
                           "EditTime NegativeModelParameterConstraint object") {}

void CosNegativeModelParameterConstraint::populate() {
  populateConcrete<NegativeModelParameterConstraint, UnsupportedValuePropM>(
      *this, kNegativeModelParameterConstraintClass, "UnsupportedParameterValues",
      "addUnsupportedParameterValue");
}

}  // namespace bkedittimecheck::mi
