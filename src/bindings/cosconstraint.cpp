// "Auditor.authoring.internal.Constraint" and the registration of the constraint classes.
#include <memory>
#include <string>
#include <vector>

#include "host/language/cospackage.h"
#include "host/language/cosvalue.h"
#include "src/bindings/cosconstraintclasses.h"
#include "src/constraints/constrainterrors.h"
#include "src/constraints/modelparameterconstraint.h"

namespace bkedittimecheck::mi {

namespace {

using ncos::factory::ClassGetter;
using ncos::factory::ClassSetter;
using ncos::factory::makeMethodImpl;
using ncos::factory::PropertyImpl;
using Invoker = ncos::factory::impl::Invoker;
using ConstraintList = std::vector<Constraint*>;

constexpr unsigned kHiddenProperty = 2048;
constexpr unsigned kTransientProperty = 0x2000000;
constexpr unsigned kHiddenTransientProperty = 0x2000800;

// A prerequisite given by pointer shares the ownership of the object it points to: the host
// language's object and the linking constraint keep it alive together.
std::shared_ptr<Constraint> sharedOwner(Constraint* constraint) {
  ncos::validateSelfPointer(constraint);
  return constraint->shared_from_this();
}

ConstraintList prerequisiteHandles(Constraint* self) {
  ConstraintList out;
  for (const auto& p : self->getPreRequisiteConstraints()) out.push_back(p.get());
  return out;
}

void setPrerequisiteHandles(Constraint* self, const ConstraintList& prerequisites) {
  self->resetPrerequisites();
  for (Constraint* p : prerequisites) self->addPreRequisiteConstraint(sharedOwner(p));
}

std::vector<std::u16string> prerequisiteIDs(Constraint* self) {
  std::vector<std::u16string> out;
  for (const std::string& id : self->getPreRequisiteConstraintIDs()) out.push_back(toUtf16(id));
  return out;
}

void addPrerequisiteID(Constraint* self, std::string id) {
  self->addPreRequisiteConstraintID(std::move(id));
}

void addPrerequisiteObject(Constraint* self, Constraint* prerequisite) {
  self->addPreRequisiteConstraint(sharedOwner(prerequisite));
}

// A model parameter constraint of the host language's own classes (the names without
// ".internal"), copied into a new native object through its properties.
void addPrerequisiteValue(Constraint* self, const nxArray& value) {
  if (value.classID() != nxClassID::Object || value.isEmpty()) throw UnsupportedPreReqType();
  const std::string className = value.className();
  std::shared_ptr<ModelParameterConstraint> copy;
  std::string valuesProperty;
  if (className == "Auditor.authoring.NegativeModelParameterConstraint") {
    copy = std::make_shared<NegativeModelParameterConstraint>();
    valuesProperty = "UnsupportedParameterValues";
  } else if (className == "Auditor.authoring.PositiveModelParameterConstraint") {
    copy = std::make_shared<PositiveModelParameterConstraint>();
    valuesProperty = "SupportedParameterValues";
  } else {
    throw UnsupportedPreReqType();
  }
  const nxArray values = omGetProperty(value, valuesProperty);
  copy->setID(ncos::factory::extractString(omGetProperty(value, "ID")));
  copy->setParameterName(ncos::factory::extractString(omGetProperty(value, "ParameterName")));
  copy->setParameterDataType(
      ncos::factory::extractString(omGetProperty(value, "ParameterDataType")));
  copy->setCosConstraintValue(nxArrayProxy(values));
  self->addPreRequisiteConstraint(std::move(copy));
}

template <class Info>
void addClassOnce(ncos::COSPackage* package, const char* shortName) {
  if (!package->getClass(shortName)) package->addClass(ncos::factory::allocate<Info>());
}

}  // namespace

namespace detail {
ncos::factory::MethodAttributes instanceMethod() {
  return ncos::factory::MethodAttributes().remove(ncos::factory::MethodAttributes::ForceMembership);
}
ncos::factory::MethodAttributes hiddenStaticMethod() {
  return instanceMethod()
      .add(ncos::factory::MethodAttributes::Static)
      .add(ncos::factory::MethodAttributes::Hidden);
}
}  // namespace detail

CosConstraint::CosConstraint() : NcosFactoryClassInfo("Constraint", "EditTime Constraint object") {}

void CosConstraint::populate() {
  ncos::factory::detail::initStringDataTypes();
  addSuperclass(ncos::COSNameID("numeria.mixin.Heterogeneous"), 1, 0, 1);
  using Flag = PropertyImpl<Constraint, bool>;
  addProperty(
      std::make_unique<Flag>("IsRootConstraint", kHiddenProperty,
                             ClassGetter<Constraint, bool>(&Constraint::IsRootConstraint),
                             ClassSetter<Constraint, bool>(&Constraint::setIsRootConstraint)));
  addProperty(std::make_unique<Flag>("WasChecked", kHiddenProperty,
                                     ClassGetter<Constraint, bool>(&Constraint::WasChecked),
                                     ClassSetter<Constraint, bool>(&Constraint::setWasChecked)));
  addProperty(std::make_unique<Flag>("Status", kHiddenProperty,
                                     ClassGetter<Constraint, bool>(&Constraint::getStatus),
                                     ClassSetter<Constraint, bool>(&Constraint::setStatus)));
  addProperty(std::make_unique<PropertyImpl<Constraint, std::string>>(
      "ID", 0, ClassGetter<Constraint, std::string>(&Constraint::getID),
      ClassSetter<Constraint, std::string>(&Constraint::setID)));
  addProperty(std::make_unique<PropertyImpl<Constraint, std::vector<std::string>>>(
      "PreRequisiteConstraintIDs", kTransientProperty,
      ClassGetter<Constraint, std::vector<std::string>>(&Constraint::getPreRequisiteConstraintIDs),
      ClassSetter<Constraint, std::vector<std::string>>(
          &Constraint::setPreRequisiteConstraintIDs)));

  auto signature = [](const char* result, std::vector<std::string> args = {}) {
    return Invoker::createSignature(result, kConstraintClass, std::move(args));
  };
  auto staticForm = [](const char* result, std::vector<std::string> args) {
    args.insert(args.begin(), kConstraintClass);
    return Invoker::createSignature(result, nullptr, std::move(args));
  };
  addMethod("getID", detail::instanceMethod(), signature("char"),
            makeMethodImpl(signature("char"), &Constraint::getID));
  addMethod("refresh", detail::instanceMethod().add(ncos::factory::MethodAttributes::Hidden),
            signature("void"), makeMethodImpl(signature("void"), &Constraint::refresh));
  addMethod("check", detail::instanceMethod(), signature("logical scalar"),
            makeMethodImpl(signature("logical scalar"), &Constraint::check));
  addMethod("getPreRequisiteConstraintIDs", detail::instanceMethod(),
            signature("NcosFactoryString vector"),
            ncos::factory::MethodImpl{[](ncos::factory::CallFrame& frame) {
              Constraint* self =
                  ncos::factory::detail::selfFrom<Constraint>(frame.prhs.at(0), kConstraintClass);
              ncos::validateSelfPointer(self);
              frame.plhs.assign(1, ncos::factory::stringsToArray(prerequisiteIDs(self)));
              if (frame.nlhs == 0) frame.nlhs = 1;
            }});
  const std::string objectVector = std::string(kConstraintClass) + " vector";
  addMethod("getPreRequisiteConstraintObjects", detail::hiddenStaticMethod(),
            staticForm(objectVector.c_str(), {}),
            makeMethodImpl(staticForm(objectVector.c_str(), {}), &prerequisiteHandles));
  addProperty(std::make_unique<PropertyImpl<Constraint, ConstraintList>>(
      "PreRequisiteConstraintHandles", kHiddenTransientProperty,
      ncos::factory::AdaptedClassGetter<Constraint, ConstraintList>(&prerequisiteHandles),
      ncos::factory::AdaptedClassSetter<Constraint, ConstraintList>(&setPrerequisiteHandles),
      objectVector.c_str()));
  addMethod("addPreRequisiteConstraintID",
            detail::hiddenStaticMethod().remove(ncos::factory::MethodAttributes::Hidden),
            staticForm("void", {"char"}),
            makeMethodImpl(staticForm("void", {"char"}), &addPrerequisiteID));
  addMethod("addPreRequisiteConstraintObject", detail::hiddenStaticMethod(),
            staticForm("void", {kConstraintClass}),
            makeMethodImpl(staticForm("void", {kConstraintClass}), &addPrerequisiteObject));
  addMethod("addPreRequisiteConstraintObject", detail::hiddenStaticMethod(),
            staticForm("void", {"any"}),
            makeMethodImpl(staticForm("void", {"any"}), &addPrerequisiteValue));
}

void registerConstraintClasses() {
  ncos::COSPackage* authoring =
      ncos::omGetSubPackage(ncos::omGetGlobalPackage("Auditor"), "authoring");
  ncos::COSPackage* internal = ncos::omGetSubPackage(authoring, "internal");
  addClassOnce<CosBlockParameterConstraint>(authoring, "BlockParameterConstraint");
  addClassOnce<CosBlockTypeConstraint>(authoring, "BlockTypeConstraint");
  addClassOnce<CosPositiveBlockParameterConstraint>(authoring, "PositiveBlockParameterConstraint");
  addClassOnce<CosNegativeBlockParameterConstraint>(authoring, "NegativeBlockParameterConstraint");
  addClassOnce<CosPositiveBlockTypeConstraint>(authoring, "PositiveBlockTypeConstraint");
  addClassOnce<CosNegativeBlockTypeConstraint>(authoring, "NegativeBlockTypeConstraint");
  addClassOnce<CosConstraint>(internal, "Constraint");
  addClassOnce<CosModelParameterConstraint>(internal, "ModelParameterConstraint");
  addClassOnce<CosPositiveModelParameterConstraint>(internal, "PositiveModelParameterConstraint");
  addClassOnce<CosNegativeModelParameterConstraint>(internal, "NegativeModelParameterConstraint");
}

}  // namespace bkedittimecheck::mi
