// "Auditor.authoring.BlockTypeConstraint" and its positive and negative classes.
#include <memory>
#include <string>

#include "host/language/cosvalue.h"
#include "src/bindings/constraintvalueprop.h"
#include "src/bindings/cosconcreteclass.h"
#include "src/bindings/cosconstraintclasses.h"
#include "src/constraints/blocktypeconstraint.h"

namespace bkedittimecheck::mi {

namespace {

using ncos::factory::makeMethodImpl;
using Invoker = ncos::factory::impl::Invoker;

void setCurrentBlockType(BlockTypeConstraint* self, std::string blockType) {
  self->setCurrentBlockType(std::move(blockType));
}

// The adding method takes a block type alone: the pair of that type without a mask.
template <class Native>
void addBlockType(Native* self, std::string blockType) {
  self->addBlockMaskPairToList(std::move(blockType), "");
}

template <class Native, class ValueProp>
void populateConcrete(ncos::factory::NcosFactoryClassInfo& info, const char* className,
                      const char* valueProperty, const char* addingMethod) {
  detail::populateConcreteClass<Native, ValueProp>(info, kBlockTypeConstraintClass, className,
                                                   valueProperty, addingMethod, "char",
                                                   &addBlockType<Native>);
}

}  // namespace

CosBlockTypeConstraint::CosBlockTypeConstraint()
    : NcosFactoryClassInfo("BlockTypeConstraint", "EditTime BlockTypeConstraint object") {}

void CosBlockTypeConstraint::populate() {
  ncos::factory::detail::initStringDataTypes();
  addSuperclass(ncos::COSNameID(kConstraintClass), 1, 0, 1);
  const auto signature =
      Invoker::createSignature("void", nullptr, {kBlockTypeConstraintClass, "char"});
  addMethod("setCurrentBlockType", detail::hiddenStaticMethod(), signature,
            makeMethodImpl(signature, &setCurrentBlockType));
}

CosPositiveBlockTypeConstraint::CosPositiveBlockTypeConstraint()
    : NcosFactoryClassInfo("PositiveBlockTypeConstraint",
                           "EditTime PositiveBlockTypeConstraint object") {}

void CosPositiveBlockTypeConstraint::populate() {
  populateConcrete<PositiveBlockTypeConstraint, SupportedValueProp>(
      *this, kPositiveBlockTypeConstraintClass, "SupportedBlockTypes", "addSupportedBlockType");
}

CosNegativeBlockTypeConstraint::CosNegativeBlockTypeConstraint()
    : NcosFactoryClassInfo("NegativeBlockTypeConstraint",
                           "EditTime NegativeBlockTypeConstraint object") {}

void CosNegativeBlockTypeConstraint::populate() {
  populateConcrete<NegativeBlockTypeConstraint, UnsupportedValueProp>(
      *this, kNegativeBlockTypeConstraintClass, "UnsupportedBlockTypes", "addUnsupportedBlockType");
}

}  // namespace bkedittimecheck::mi
