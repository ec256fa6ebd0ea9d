#pragma once

// A subclass of the test widget: inherited members, a constructor with arguments, a read-only
// property, object and object-vector members, and methods that fail in native ways or call back
// into the host language.

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/language/feval.h"
#include "testclass.h"

namespace testclass {

class Gadget : public Widget {
 public:
  std::uint32_t getCount() const { return count; }
  void setCount(const std::uint32_t& c) { count = c; }
  std::uint32_t getSerial() const { return 42; }
  Widget* getParent() const { return parent; }
  void setParent(Widget* p) { parent = p; }
  std::vector<Widget*> getChildren() const { return children; }
  void setChildren(std::vector<Widget*> c) { children = std::move(c); }

  std::string describeFlag(bool flag) { return flag ? "logical:true" : "logical:false"; }
  void throwStd() { throw std::logic_error("native failure"); }
  void throwOther() { throw 42; }
  /// Calls a host-language function; gives its text result or the diagnostic's identifier.
  std::string callBack(std::string function) {
    std::vector<nxArray> out;
    auto diagnostic = bksvFEVAL_NoThrow(1, out, function, {nxArray::charRow("from native")});
    if (diagnostic) return "failed:" + diagnostic->identifier;
    return out.at(0).isChar() ? out[0].charData() : out[0].className();
  }

  std::uint32_t count = 0;
  Widget* parent = nullptr;
  std::vector<Widget*> children;
};

inline double liveCount(std::vector<Widget*> widgets) {
  double n = 0;
  for (Widget* w : widgets) n += w ? 1 : 0;
  return n;
}

class CosGadget : public ncos::factory::NcosFactoryClassInfo {
 public:
  CosGadget() : NcosFactoryClassInfo("Gadget", "Test gadget") {}

 protected:
  void populate() override {
    using namespace ncos::factory;
    addSuperclass(ncos::COSNameID("Test.pkg.Widget"), 1, 0, 1);
    addConstructor(makeConstructor<Gadget>("Test.pkg.Gadget"));
    // A second constructor takes the name.
    NcosConstructor named;
    named.signature =
        impl::Invoker::createSignature("Test.pkg.Gadget", "Test.pkg.Gadget", {"char"});
    named.create = [](const std::vector<nxArray>& args) {
      auto g = std::make_shared<Gadget>();
      g->name = "named:" + extractString(args.at(0));
      return g;
    };
    named.wrapper = makeConstructor<Gadget>("Test.pkg.Gadget").wrapper;
    addConstructor(std::move(named));

    addProperty(std::make_unique<PropertyImpl<Gadget, std::uint32_t>>(
        "Count", 0, ClassGetter<Gadget, std::uint32_t>(&Gadget::getCount),
        ClassSetter<Gadget, std::uint32_t>(&Gadget::setCount)));
    addProperty(std::make_unique<PropertyImpl<Gadget, std::uint32_t>>(
        "Serial", 0, ClassGetter<Gadget, std::uint32_t>(&Gadget::getSerial)));
    addProperty(std::make_unique<PropertyImpl<Gadget, Widget*>>(
        "Parent", 0, ClassGetter<Gadget, Widget*>(&Gadget::getParent),
        ClassSetter<Gadget, Widget*>(&Gadget::setParent), "Test.pkg.Widget"));
    addProperty(std::make_unique<PropertyImpl<Gadget, std::vector<Widget*>>>(
        "Children", 0, ClassGetter<Gadget, std::vector<Widget*>>(&Gadget::getChildren),
        ClassSetter<Gadget, std::vector<Widget*>>(&Gadget::setChildren), "Test.pkg.Widget vector"));

    auto attrs = [] { return MethodAttributes().remove(MethodAttributes::ForceMembership); };
    auto sig = &impl::Invoker::createSignature;
    // Declared here, so it is tried before the widget's own forms of "describe".
    Signature d = sig("char", "Test.pkg.Gadget", {"logical scalar"});
    addMethod("describe", attrs(), d, makeMethodImpl(d, &Gadget::describeFlag));
    Signature v = sig("void", "Test.pkg.Gadget", {});
    addMethod("throwStd", attrs(), v, makeMethodImpl(v, &Gadget::throwStd));
    addMethod("throwOther", attrs(), v, makeMethodImpl(v, &Gadget::throwOther));
    Signature c = sig("char", "Test.pkg.Gadget", {"char"});
    addMethod("callBack", attrs(), c, makeMethodImpl(c, &Gadget::callBack));
    Signature n = sig("double scalar", nullptr, {"Test.pkg.Widget vector"});
    addMethod("liveCount", attrs().add(MethodAttributes::Static), n, makeMethodImpl(n, &liveCount));
  }
};

class GadgetPackage : public ncos::COSPackageInfo {
 public:
  GadgetPackage() : COSPackageInfo("Test.pkg") {}
  void populate(ncos::COSPackage& package) override {
    package.addClass(ncos::factory::allocate<CosGadget>());
  }
};

/// Registers the widget and the gadget.
inline void registerGadget() {
  registerTestPackage();
  if (!ncos::COSPackage::findClass("Test.pkg.Gadget")) {
    ncos::COSPackage::addPackage(std::make_unique<GadgetPackage>());
  }
}

}  // namespace testclass
