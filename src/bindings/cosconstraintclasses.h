#pragma once

// The host-language classes of the constraint family: one class info per class, declared in
// the object system's tables, which the Lua bridge walks. Main thread.

#include "host/language/cosclassinfo.h"

namespace bkedittimecheck::mi {

/// The full names of the classes, as the object system knows them.
inline constexpr const char* kConstraintClass = "Auditor.authoring.internal.Constraint";
inline constexpr const char* kBlockParameterConstraintClass =
    "Auditor.authoring.BlockParameterConstraint";
inline constexpr const char* kPositiveBlockParameterConstraintClass =
    "Auditor.authoring.PositiveBlockParameterConstraint";
inline constexpr const char* kNegativeBlockParameterConstraintClass =
    "Auditor.authoring.NegativeBlockParameterConstraint";
inline constexpr const char* kBlockTypeConstraintClass = "Auditor.authoring.BlockTypeConstraint";
inline constexpr const char* kPositiveBlockTypeConstraintClass =
    "Auditor.authoring.PositiveBlockTypeConstraint";
inline constexpr const char* kNegativeBlockTypeConstraintClass =
    "Auditor.authoring.NegativeBlockTypeConstraint";
inline constexpr const char* kModelParameterConstraintClass =
    "Auditor.authoring.internal.ModelParameterConstraint";
inline constexpr const char* kPositiveModelParameterConstraintClass =
    "Auditor.authoring.internal.PositiveModelParameterConstraint";
inline constexpr const char* kNegativeModelParameterConstraintClass =
    "Auditor.authoring.internal.NegativeModelParameterConstraint";

#define BKETC_CONSTRAINT_CLASS_INFO(NAME)                   \
  class NAME : public ncos::factory::NcosFactoryClassInfo { \
   public:                                                  \
    NAME();                                                 \
                                                            \
   protected:                                               \
    void populate() override;                               \
  }

/// "Auditor.authoring.internal.Constraint": abstract; flags, ID, prerequisites.
BKETC_CONSTRAINT_CLASS_INFO(CosConstraint);
/// "Auditor.authoring.BlockParameterConstraint": abstract; block type, parameter, operator.
BKETC_CONSTRAINT_CLASS_INFO(CosBlockParameterConstraint);
/// "Auditor.authoring.PositiveBlockParameterConstraint": "SupportedParameterValues".
BKETC_CONSTRAINT_CLASS_INFO(CosPositiveBlockParameterConstraint);
/// "Auditor.authoring.NegativeBlockParameterConstraint": "UnsupportedParameterValues".
BKETC_CONSTRAINT_CLASS_INFO(CosNegativeBlockParameterConstraint);
/// "Auditor.authoring.BlockTypeConstraint": abstract; "setCurrentBlockType".
BKETC_CONSTRAINT_CLASS_INFO(CosBlockTypeConstraint);
/// "Auditor.authoring.PositiveBlockTypeConstraint": "SupportedBlockTypes".
BKETC_CONSTRAINT_CLASS_INFO(CosPositiveBlockTypeConstraint);
/// "Auditor.authoring.NegativeBlockTypeConstraint": "UnsupportedBlockTypes".
BKETC_CONSTRAINT_CLASS_INFO(CosNegativeBlockTypeConstraint);
/// "Auditor.authoring.internal.ModelParameterConstraint": abstract; parameter, operator, value.
BKETC_CONSTRAINT_CLASS_INFO(CosModelParameterConstraint);
/// "Auditor.authoring.internal.PositiveModelParameterConstraint": "SupportedParameterValues".
BKETC_CONSTRAINT_CLASS_INFO(CosPositiveModelParameterConstraint);
/// "Auditor.authoring.internal.NegativeModelParameterConstraint": "UnsupportedParameterValues".
BKETC_CONSTRAINT_CLASS_INFO(CosNegativeModelParameterConstraint);

#undef BKETC_CONSTRAINT_CLASS_INFO

/// Registers the ten classes: in "Auditor.authoring" BlockParameterConstraint,
/// BlockTypeConstraint, PositiveBlockParameterConstraint, NegativeBlockParameterConstraint,
/// PositiveBlockTypeConstraint, NegativeBlockTypeConstraint; in "Auditor.authoring.internal"
/// Constraint, ModelParameterConstraint, PositiveModelParameterConstraint,
/// NegativeModelParameterConstraint. A class already registered (a second initialization of
/// the module) is left as it is. Main thread.
void registerConstraintClasses();

namespace detail {
/// The attribute word of an instance method: `ForceMembership` taken out.
ncos::factory::MethodAttributes instanceMethod();
/// The attribute word of a method in static form (the object as first argument), hidden.
ncos::factory::MethodAttributes hiddenStaticMethod();
}  // namespace detail

}  // namespace bkedittimecheck::mi
