// "Auditor.authoring.BlockParameterConstraint" and its positive and negative classes.
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "host/language/cosvalue.h"
#include "src/bindings/constraintvalueprop.h"
#include "src/bindings/cosconcreteclass.h"
#include "src/bindings/cosconstraintclasses.h"
#include "src/constraints/blockparameterconstraint.h"

namespace bkedittimecheck::mi {

namespace {

using ncos::factory::ClassGetter;
using ncos::factory::ClassSetter;
using Text = ncos::factory::PropertyImpl<BlockParameterConstraint, std::string>;
using Getter = ClassGetter<BlockParameterConstraint, std::string>;
using Setter = ClassSetter<BlockParameterConstraint, std::string>;

constexpr unsigned kHiddenProperty = 2048;

std::string currentText(BlockParameterConstraint* self) {
  const ParameterValue& current = self->getCurrentValue();
  const std::string* text = std::get_if<std::string>(&current);
  return text ? *text : std::string();
}

void setCurrentText(BlockParameterConstraint* self, const std::string& text) {
  self->setCurrentValue(ParameterValue(text));
}

template <class Native, class ValueProp>
void populateConcrete(ncos::factory::NcosFactoryClassInfo& info, const char* className,
                      const char* valueProperty, const char* addingMethod) {
  detail::populateConcreteClass<Native, ValueProp>(info, kBlockParameterConstraintClass, className,
                                                   valueProperty, addingMethod, "any",
                                                   &detail::addCosValue<Native>);
}

}  // namespace

CosBlockParameterConstraint::CosBlockParameterConstraint()
    : NcosFactoryClassInfo("BlockParameterConstraint", "EditTime BlockParameterConstraint object") {
}

void CosBlockParameterConstraint::populate() {
  ncos::factory::detail::initStringDataTypes();
  addSuperclass(ncos::COSNameID(kConstraintClass), 1, 0, 1);
  addProperty(std::make_unique<Text>("BlockType", 0,
                                     Getter(&BlockParameterConstraint::getBlockType),
                                     Setter(&BlockParameterConstraint::setCosBlockType)));
  addProperty(std::make_unique<Text>("ParameterName", 0,
                                     Getter(&BlockParameterConstraint::getParameterName),
                                     Setter(&BlockParameterConstraint::setCosParameterName)));
  addProperty(std::make_unique<Text>("ValueOperator", 0,
                                     Getter(&BlockParameterConstraint::getValueOperator),
                                     Setter(&BlockParameterConstraint::setCosValueOperator)));
  addProperty(std::make_unique<Text>(
      "CurrentValue", kHiddenProperty,
      ncos::factory::AdaptedClassGetter<BlockParameterConstraint, std::string>(&currentText),
      ncos::factory::AdaptedClassSetter<BlockParameterConstraint, std::string>(&setCurrentText)));
  addProperty(std::make_unique<Text>("ParameterDataType", kHiddenProperty,
                                     Getter(&BlockParameterConstraint::getParameterDataType),
                                     Setter(&BlockParameterConstraint::setParameterDataType)));
}

CosPositiveBlockParameterConstraint::CosPositiveBlockParameterConstraint()
    : NcosFactoryClassInfo("PositiveBlockParameterConstraint",
                           "EditTime PositiveBlockParameterConstraint object") {}

void CosPositiveBlockParameterConstraint::populate() {
  populateConcrete<PositiveBlockParameterConstraint, SupportedValuePropB>(
      *this, kPositiveBlockParameterConstraintClass, "SupportedParameterValues",
      "addSupportedParameterValue");
}

CosNegativeBlockParameterConstraint::CosNegativeBlockParameterConstraint()
    : NcosFactoryClassInfo("NegativeBlockParameterConstraint",
                           "EditTime NegativeBlockParameterConstraint object") {}

void CosNegativeBlockParameterConstraint::populate() {
  populateConcrete<NegativeBlockParameterConstraint, UnsupportedValuePropB>(
      *this, kNegativeBlockParameterConstraintClass, "UnsupportedParameterValues",
      "addUnsupportedParameterValue");
}

}  // namespace bkedittimecheck::mi
