#pragma once

// Classes declared through the factory the way the engine declares its classes. The widget has
// accessor properties of each form, static and hidden methods, an overloaded method and a
// constructor; the gadget, its subclass, adds a constructor of its own, a read-only property,
// object and object-vector members, and methods that fail in native ways or call back into the
// host language. A property of its own kind and message-ID errors of native methods are shown by
// the engine's constraint classes (their binding tests and the authoring scenario).

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/language/cospackage.h"
#include "host/language/cosvalue.h"
#include "host/language/feval.h"

namespace testclass {

class Widget : public ncos::Wrappable {
 public:
  const std::string& getName() const { return name; }
  void setName(std::string n) { name = std::move(n); }
  bool getEnabled() const { return enabled; }
  void setEnabled(bool e) { enabled = e; }
  std::string describe(std::string text) { return "char:" + text; }
  std::string describe(double value) { return "double:" + std::to_string(static_cast<int>(value)); }
  std::u16string greet(std::u16string who, std::uint32_t times) {
    std::u16string out;
    for (std::uint32_t i = 0; i < times; ++i) out += u"hi " + who + u";";
    return out;
  }
  std::string name;
  bool enabled = false;
  std::vector<std::string> tags;
};

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

inline Widget* sharedWidget() {
  static Widget w;
  return &w;
}
/// What the static getter "getTransient" returns; tests make and destroy it.
inline std::unique_ptr<Widget>& transientWidget() {
  static std::unique_ptr<Widget> w;
  return w;
}
inline std::vector<std::string> tagsOf(Widget* w) { return w->tags; }
inline void setTagsOf(Widget* w, std::vector<std::string> t) { w->tags = std::move(t); }
inline Widget* getShared() { return sharedWidget(); }
inline Widget* getTransient() { return transientWidget().get(); }
inline void addTag(Widget* w, std::string tag) { w->tags.push_back(std::move(tag)); }
inline double liveCount(std::vector<Widget*> widgets) {
  return static_cast<double>(widgets.size() - std::count(widgets.begin(), widgets.end(), nullptr));
}

using ncos::factory::MethodAttributes;
inline constexpr auto sig = &ncos::factory::impl::Invoker::createSignature;

/// A class info whose `method` declares a method over a native function, with the attribute
/// flags given (none: an instance method).
class TestClassInfo : public ncos::factory::NcosFactoryClassInfo {
 protected:
  using NcosFactoryClassInfo::NcosFactoryClassInfo;
  template <class F>
  void method(const char* name, ncos::factory::Signature s, F fn, unsigned flags = 0) {
    addMethod(name, MethodAttributes(flags), s, ncos::factory::makeMethodImpl(s, fn));
  }
};

class CosWidget : public TestClassInfo {
 public:
  CosWidget() : TestClassInfo("Widget", "Test widget") {}

 protected:
  void populate() override {
    using namespace ncos::factory;
    detail::initStringDataTypes();
    addSuperclass(ncos::COSNameID("numeria.mixin.Heterogeneous"), 1, 0, 1);
    addConstructor(makeConstructor<Widget>("Test.pkg.Widget"));
    addProperty(std::make_unique<PropertyImpl<Widget, std::string>>("Name", 0, &Widget::getName,
                                                                    &Widget::setName));
    addProperty(std::make_unique<PropertyImpl<Widget, bool>>("Enabled", 2048, &Widget::getEnabled,
                                                             &Widget::setEnabled));
    addProperty(std::make_unique<PropertyImpl<Widget, std::vector<std::string>>>(
        "Tags", 0x2000800, &tagsOf, &setTagsOf));
    method("describe", sig("char", "Test.pkg.Widget", {"char"}),
           static_cast<std::string (Widget::*)(std::string)>(&Widget::describe));
    method("describe", sig("char", "Test.pkg.Widget", {"double scalar"}),
           static_cast<std::string (Widget::*)(double)>(&Widget::describe));
    method("greet", sig("NcosFactoryString scalar", "Test.pkg.Widget",
                        {"NcosFactoryString scalar", "uint32 scalar"}), &Widget::greet);
    method("getShared", sig("Test.pkg.Widget", nullptr, {}), &getShared, MethodAttributes::Static);
    method("getTransient", sig("Test.pkg.Widget", nullptr, {}), &getTransient,
           MethodAttributes::Static);
    method("addTag", sig("void", nullptr, {"Test.pkg.Widget", "char"}), &addTag,
           MethodAttributes::Static | MethodAttributes::Hidden);
  }
};

class CosGadget : public TestClassInfo {
 public:
  CosGadget() : TestClassInfo("Gadget", "Test gadget") {}

 protected:
  void populate() override {
    using namespace ncos::factory;
    addSuperclass(ncos::COSNameID("Test.pkg.Widget"), 1, 0, 1);
    addConstructor(makeConstructor<Gadget>("Test.pkg.Gadget"));
    addProperty(std::make_unique<PropertyImpl<Gadget, std::uint32_t>>("Count", 0, &Gadget::getCount,
                                                                      &Gadget::setCount));
    addProperty(
        std::make_unique<PropertyImpl<Gadget, std::uint32_t>>("Serial", 0, &Gadget::getSerial));
    addProperty(std::make_unique<PropertyImpl<Gadget, Widget*>>(
        "Parent", 0, &Gadget::getParent, &Gadget::setParent, "Test.pkg.Widget"));
    addProperty(std::make_unique<PropertyImpl<Gadget, std::vector<Widget*>>>(
        "Children", 0, &Gadget::getChildren, &Gadget::setChildren, "Test.pkg.Widget vector"));
    // Declared here, so it is tried before the widget's own forms of "describe".
    method("describe", sig("char", "Test.pkg.Gadget", {"logical scalar"}), &Gadget::describeFlag);
    method("throwStd", sig("void", "Test.pkg.Gadget", {}), &Gadget::throwStd);
    method("throwOther", sig("void", "Test.pkg.Gadget", {}), &Gadget::throwOther);
    method("callBack", sig("char", "Test.pkg.Gadget", {"char"}), &Gadget::callBack);
    method("liveCount", sig("double scalar", nullptr, {"Test.pkg.Widget vector"}), &liveCount,
           MethodAttributes::Static);
  }
};

class TestPackage : public ncos::COSPackageInfo {
 public:
  TestPackage() : COSPackageInfo("Test.pkg") {}
  void populate(ncos::COSPackage& package) override {
    package.addClass(ncos::factory::allocate<CosWidget>());
    package.addClass(ncos::factory::allocate<CosGadget>());
  }
};

/// Registers the widget and the gadget, once per process.
inline void registerTestPackage() {
  if (!ncos::COSPackage::findClass("Test.pkg.Widget")) {
    ncos::COSPackage::addPackage(std::make_unique<TestPackage>());
  }
}

}  // namespace testclass
