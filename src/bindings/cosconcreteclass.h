#pragma once

// The members every positive and negative constraint class has: the shared form of their
// class infos. Main thread.

#include <memory>
#include <utility>

#include "host/language/cosclassinfo.h"
#include "host/language/cosvalue.h"
#include "src/bindings/cosconstraintclasses.h"

namespace bkedittimecheck::mi::detail {

/// The adding method of the parameter constraints: one value in its host-language form.
template <class Native>
void addCosValue(Native* self, nxArrayProxy value) {
  self->addToCosConstraintValueVector(std::move(value));
}

/// Gives `info` its superclass, the constructor of `Native`, the value property of type
/// `ValueProp` named `valueProperty`, and the hidden method `addingMethod` that takes the object
/// and one value of host-language type `valueType` and hands them to `add`.
template <class Native, class ValueProp, class Value>
void populateConcreteClass(ncos::factory::NcosFactoryClassInfo& info, const char* superclass,
                           const char* className, const char* valueProperty,
                           const char* addingMethod, const char* valueType,
                           void (*add)(Native*, Value)) {
  using Invoker = ncos::factory::impl::Invoker;
  ncos::factory::detail::initStringDataTypes();
  info.addSuperclass(ncos::COSNameID(superclass), 1, 0, 1);
  info.addConstructor(ncos::factory::makeConstructor<Native>(className));
  info.addProperty(std::make_unique<ValueProp>(valueProperty, 0));
  const auto signature = Invoker::createSignature("void", nullptr, {className, valueType});
  info.addMethod(addingMethod, hiddenStaticMethod(), signature,
                 ncos::factory::makeMethodImpl(signature, add));
}

}  // namespace bkedittimecheck::mi::detail
