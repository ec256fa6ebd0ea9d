#include "src/bindings/cosedittimecontroller.h"

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/language/cosinterface.h"
#include "src/edittimecontroller.h"
#include "src/hostinterface.h"

namespace bkedittimecheck::mi {

namespace {

using ncos::factory::CallFrame;
using ncos::factory::MethodAttributes;
using ncos::factory::MethodImpl;
using Invoker = ncos::factory::impl::Invoker;

constexpr const char* kClassName = "bkedittimecheck.EditTimeController";
constexpr const char* kWide = "NcosFactoryString scalar";

// The native controller behind the call's first argument; null for a null or dead object.
EditTimeController* selfPointer(const CallFrame& frame) {
  if (frame.prhs.empty() || frame.prhs[0].isEmpty()) return nullptr;
  return omGetArrayElement(frame.prhs[0], 0)
      ->getInterfaceAs<EditTimeController>(ncos::COSNameID(kClassName));
}

// Calls `fn` on the controller once the arguments are converted: the arguments are evaluated
// before this body runs, so a bad argument is reported before a bad object, which raises the
// host's own "InvalidObject".
template <typename Fn, typename... Args>
decltype(auto) onSelf(const CallFrame& frame, Fn fn, Args&&... args) {
  EditTimeController* self = selfPointer(frame);
  ncos::validateSelfPointer(self);
  return (self->*fn)(std::forward<Args>(args)...);
}

std::wstring wideArg(const CallFrame& frame, std::size_t i) {
  return toWide(frame.prhs.at(i).toUtf16String());
}

void setResult(CallFrame& frame, const nxArray& value) {
  frame.plhs.assign(1, value);
  if (frame.nlhs == 0) frame.nlhs = 1;
}

MethodAttributes instanceAttributes() {
  return MethodAttributes().remove(MethodAttributes::ForceMembership);
}

}  // namespace

COSEditTimeController::COSEditTimeController()
    : NcosFactoryClassInfo("EditTimeController", "EditTime Controller object") {}

void COSEditTimeController::populate() {
  ncos::factory::detail::initStringDataTypes();
  addSuperclass(ncos::COSNameID("numeria.mixin.Heterogeneous"), 1, 0, 1);

  using Fn1 = void (EditTimeController::*)(const std::wstring&);
  auto oneName = [this](const char* name, Fn1 fn) {
    addMethod(name, instanceAttributes(), Invoker::createSignature("void", kClassName, {kWide}),
              MethodImpl{[fn](CallFrame& f) { onSelf(f, fn, wideArg(f, 1)); }});
  };

  addMethod("getInstance",
            MethodAttributes().remove(MethodAttributes::ForceMembership).add(MethodAttributes::Static),
            Invoker::createSignature(kClassName, nullptr), MethodImpl{[](CallFrame& f) {
              auto cls = ncos::COSPackage::findClass(kClassName);
              setResult(f, nxArray::objectScalar(ncos::COSInterface::makeBorrowed(
                               cls, &EditTimeController::instance())));
            }});
  addMethod("applyStyle", instanceAttributes(),
            Invoker::createSignature("void", kClassName, {kWide, "uint32 scalar"}),
            MethodImpl{[](CallFrame& f) {
              const nxArray& id = f.prhs.at(2);
              const auto engineId = id.classID() == nxClassID::UInt32
                                        ? id.getUInt32(0)
                                        : static_cast<std::uint32_t>(id.getDouble(0));
              onSelf(f, &EditTimeController::applyStyle, wideArg(f, 1), engineId);
            }});
  oneName("updateDiagnostic", &EditTimeController::updateDiagnostic);
  oneName("refreshExclusions", &EditTimeController::refreshExclusions);
  addMethod("refreshExclusionsWithPartFile", instanceAttributes(),
            Invoker::createSignature("void", kClassName, {kWide, kWide}),
            MethodImpl{[](CallFrame& f) {
              onSelf(f, &EditTimeController::refreshExclusionsWithPartFile, wideArg(f, 1),
                     wideArg(f, 2));
            }});
  addMethod("getViolations", instanceAttributes(),
            Invoker::createSignature("void", kClassName, {"char"}), MethodImpl{[](CallFrame& f) {
              using Print = void (EditTimeController::*)(const std::string&);
              onSelf(f, static_cast<Print>(&EditTimeController::getViolations),
                     f.prhs.at(1).toUtf8String());
            }});
  addMethod("getViolations", instanceAttributes(),
            Invoker::createSignature("NcosFactoryString vector", kClassName,
                                     {kWide, "double scalar"}),
            MethodImpl{[](CallFrame& f) {
              using Strings = std::vector<std::string> (EditTimeController::*)(const std::wstring&,
                                                                               double);
              std::vector<nxArray> cells;
              for (const std::string& s :
                   onSelf(f, static_cast<Strings>(&EditTimeController::getViolations),
                          wideArg(f, 1), f.prhs.at(2).getDouble(0))) {
                cells.push_back(nxArray::charRow(toUtf16(s)));
              }
              setResult(f, nxArray::cellRow(std::move(cells)));
            }});
  oneName("on", &EditTimeController::on);
  oneName("off", &EditTimeController::off);
  oneName("enableRA", &EditTimeController::enableRA);
  oneName("disableRA", &EditTimeController::disableRA);
  oneName("turnOffErrorsAndWarnings", &EditTimeController::turnOffErrorsAndWarnings);
  oneName("turnOnErrorsAndWarnings", &EditTimeController::turnOnErrorsAndWarnings);
  oneName("turnOnErrors", &EditTimeController::turnOnErrors);
  oneName("turnOffErrors", &EditTimeController::turnOffErrors);
  // Declared a second time with the same native function; the class keeps both declarations.
  oneName("turnOnErrors", &EditTimeController::turnOnErrors);
  oneName("turnOffWarnings", &EditTimeController::turnOffWarnings);
  oneName("turnOnWarnings", &EditTimeController::turnOnWarnings);
  addMethod("postNameChange", instanceAttributes(),
            Invoker::createSignature("void", kClassName, {kWide, kWide}),
            MethodImpl{[](CallFrame& f) {
              onSelf(f, &EditTimeController::postNameChange, wideArg(f, 1), wideArg(f, 2));
            }});
  addMethod("switchConfiguration", instanceAttributes(),
            Invoker::createSignature("void", kClassName, {kWide, kWide}),
            MethodImpl{[](CallFrame& f) {
              onSelf(f, &EditTimeController::switchConfiguration, wideArg(f, 1), wideArg(f, 2));
            }});
  oneName("loadDefaultConfiguration", &EditTimeController::loadDefaultConfiguration);
  oneName("handleNewWindowOpen", &EditTimeController::handleNewWindowOpen);
  addMethod("refreshBlockaraStatePortChecks", instanceAttributes(),
            Invoker::createSignature("void", kClassName, {kWide, "double scalar"}),
            MethodImpl{[](CallFrame& f) {
              onSelf(f, &EditTimeController::refreshBlockaraStatePortChecks, wideArg(f, 1),
                     f.prhs.at(2).getDouble(0));
            }});
  oneName("refreshWorkspaceChecks", &EditTimeController::refreshWorkspaceChecks);
}

CosEditTimeCheckPackage::CosEditTimeCheckPackage() : ncos::COSPackageInfo("bkedittimecheck") {}

void CosEditTimeCheckPackage::populate(ncos::COSPackage& package) {
  package.addClass(ncos::factory::allocate<COSEditTimeController>());
}

}  // namespace bkedittimecheck::mi
