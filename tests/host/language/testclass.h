#pragma once

// A class declared through the factory the way the engine declares its classes: properties of
// each form, static and hidden methods, an overloaded method, a constructor.

#include <string>
#include <vector>

#include "host/language/cospackage.h"
#include "host/language/cosvalue.h"
#include "host/language/messageid.h"

namespace testclass {

BKMSG_DECLARE_ERROR(UnsupportedValueOperator, "bkedittimecheck:edittimecheck");

class Widget : public ncos::Wrappable {
 public:
  const std::string& getName() const { return name; }
  void setName(std::string n) { name = std::move(n); }
  bool getEnabled() const { return enabled; }
  void setEnabled(bool e) { enabled = e; }
  std::vector<std::string> getTags() const { return tags; }
  void setTags(std::vector<std::string> t) { tags = std::move(t); }
  void setOperator(std::string op) {
    if (op != "eq" && op != "or") throw UnsupportedValueOperator(op);
    name = op;
  }
  std::string describe(std::string text) { return "char:" + text; }
  std::string describe(double value) { return "double:" + std::to_string(static_cast<int>(value)); }
  std::u16string greet(std::u16string who, std::uint32_t times) {
    std::u16string out;
    for (std::uint32_t i = 0; i < times; ++i) out += u"hi " + who + u";";
    return out;
  }
  nxArrayProxy value;
  std::string name;
  bool enabled = false;
  std::vector<std::string> tags;
};

inline Widget* sharedWidget() {
  static Widget w;
  return &w;
}

/// Whether the static getter below returns a live object; tests flip it.
inline std::unique_ptr<Widget>& transientWidget() {
  static std::unique_ptr<Widget> w;
  return w;
}

class ValueProp : public ncos::COSPropInfo {
 public:
  const char* getName() const override { return "Value"; }
  unsigned getAttributes() const override { return 2048; }
  nxArrayProxy getValue(const ncos::COSInterfacePtr& object) const override {
    return object->getInterfaceAs<Widget>(ncos::COSNameID("Test.pkg.Widget"))->value;
  }
  void setValue(const ncos::COSInterfacePtr& object, const nxArrayProxy& v) const override {
    object->getInterfaceAs<Widget>(ncos::COSNameID("Test.pkg.Widget"))->value = v;
  }
};

inline std::vector<std::string> tagsOf(Widget* w) { return w->tags; }
inline void setTagsOf(Widget* w, std::vector<std::string> t) { w->tags = std::move(t); }
inline Widget* getShared() { return sharedWidget(); }
inline Widget* getTransient() { return transientWidget().get(); }
inline void addTag(Widget* w, std::string tag) { w->tags.push_back(std::move(tag)); }

class CosWidget : public ncos::factory::NcosFactoryClassInfo {
 public:
  CosWidget() : NcosFactoryClassInfo("Widget", "Test widget") {}

 protected:
  void populate() override {
    using namespace ncos::factory;
    detail::initStringDataTypes();
    addSuperclass(ncos::COSNameID("numeria.mixin.Heterogeneous"), 1, 0, 1);
    addConstructor(makeConstructor<Widget>("Test.pkg.Widget"));
    addProperty(std::make_unique<PropertyImpl<Widget, std::string>>(
        "Name", 0, ClassGetter<Widget, std::string>(&Widget::getName),
        ClassSetter<Widget, std::string>(&Widget::setName)));
    addProperty(std::make_unique<PropertyImpl<Widget, bool>>(
        "Enabled", 2048, ClassGetter<Widget, bool>(&Widget::getEnabled),
        ClassSetter<Widget, bool>(&Widget::setEnabled)));
    addProperty(std::make_unique<PropertyImpl<Widget, std::vector<std::string>>>(
        "Tags", 0x2000800, AdaptedClassGetter<Widget, std::vector<std::string>>(&tagsOf),
        AdaptedClassSetter<Widget, std::vector<std::string>>(&setTagsOf)));
    addProperty(std::make_unique<ValueProp>());
    auto attrs = [] { return MethodAttributes().remove(MethodAttributes::ForceMembership); };
    auto sig = &impl::Invoker::createSignature;
    Signature s1 = sig("char", "Test.pkg.Widget", {"char"});
    addMethod("describe", attrs(), s1,
              makeMethodImpl(s1, static_cast<std::string (Widget::*)(std::string)>(&Widget::describe)));
    Signature s2 = sig("char", "Test.pkg.Widget", {"double scalar"});
    addMethod("describe", attrs(), s2,
              makeMethodImpl(s2, static_cast<std::string (Widget::*)(double)>(&Widget::describe)));
    Signature s3 = sig("NcosFactoryString scalar", "Test.pkg.Widget",
                       {"NcosFactoryString scalar", "uint32 scalar"});
    addMethod("greet", attrs(), s3, makeMethodImpl(s3, &Widget::greet));
    Signature s4 = sig("void", "Test.pkg.Widget", {"char"});
    addMethod("setOperator", attrs(), s4, makeMethodImpl(s4, &Widget::setOperator));
    Signature s5 = sig("Test.pkg.Widget", nullptr, {});
    addMethod("getShared", attrs().add(MethodAttributes::Static), s5, makeMethodImpl(s5, &getShared));
    Signature s6 = sig("Test.pkg.Widget", nullptr, {});
    addMethod("getTransient", attrs().add(MethodAttributes::Static), s6,
              makeMethodImpl(s6, &getTransient));
    Signature s7 = sig("void", nullptr, {"Test.pkg.Widget", "char"});
    addMethod("addTag", attrs().add(MethodAttributes::Static).add(MethodAttributes::Hidden), s7,
              makeMethodImpl(s7, &addTag));
  }
};

class TestPackage : public ncos::COSPackageInfo {
 public:
  TestPackage() : COSPackageInfo("Test.pkg") {}
  void populate(ncos::COSPackage& package) override {
    package.addClass(ncos::factory::allocate<CosWidget>());
  }
};

inline void registerTestPackage() {
  if (!ncos::COSPackage::findClass("Test.pkg.Widget")) {
    ncos::COSPackage::addPackage(std::make_unique<TestPackage>());
  }
}

}  // namespace testclass
