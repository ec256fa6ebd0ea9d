#include "host/language/cosclassinfo.h"

#include <stdexcept>

#include "host/language/cospackage.h"

namespace ncos::factory {

namespace detail {
void initStringDataTypes() {
  // Strings need no set-up in this object system; the call stays so that population functions
  // written against any object system run unchanged.
}
}  // namespace detail

TypeSpec TypeSpec::parse(const std::string& text) {
  TypeSpec t;
  t.text = text;
  static const std::pair<const char*, TypeKind> words[] = {
      {"NcosFactoryString scalar", TypeKind::WideString},
      {"NcosFactoryString vector", TypeKind::StringVector},
      {"char", TypeKind::Char},
      {"logical scalar", TypeKind::Logical},
      {"double scalar", TypeKind::Double},
      {"uint32 scalar", TypeKind::UInt32},
      {"any", TypeKind::Any},
      {"void", TypeKind::Void},
  };
  for (const auto& [word, kind] : words) {
    if (text == word) {
      t.kind = kind;
      return t;
    }
  }
  const std::string suffix = " vector";
  if (text.size() > suffix.size() && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0) {
    t.kind = TypeKind::ObjectVector;
    t.className = text.substr(0, text.size() - suffix.size());
  } else {
    t.kind = TypeKind::Object;
    t.className = text;
  }
  return t;
}

namespace {
bool isVectorShape(const nxArray& v) { return v.rows() <= 1 || v.cols() <= 1; }
bool isCharRow(const nxArray& v) { return v.isChar() && v.rows() <= 1; }
}  // namespace

bool TypeSpec::accepts(const nxArray& value) const {
  switch (kind) {
    case TypeKind::WideString:
    case TypeKind::Char:
      return isCharRow(value);
    case TypeKind::StringVector:
      if (isCharRow(value)) return true;
      if (!value.isCell() || !isVectorShape(value)) return false;
      for (std::size_t i = 0; i < value.numel(); ++i) {
        if (!isCharRow(value.getCell(i))) return false;
      }
      return true;
    case TypeKind::Logical:
      return value.isScalar() &&
             (value.classID() == nxClassID::Logical || value.classID() == nxClassID::Double);
    case TypeKind::Double:
      return value.isScalar() &&
             (value.classID() == nxClassID::Double || value.classID() == nxClassID::UInt32);
    case TypeKind::UInt32:
      if (!value.isScalar()) return false;
      if (value.classID() == nxClassID::UInt32) return true;
      if (value.classID() == nxClassID::Double) {
        double d = value.getDouble(0);
        return d >= 0 && d <= 4294967295.0 && d == static_cast<double>(static_cast<std::uint64_t>(d));
      }
      return false;
    case TypeKind::Any:
      return true;
    case TypeKind::Void:
      return false;
    case TypeKind::Object:
      return value.isObject() && value.numel() == 1 &&
             value.getObject(0)->isa(COSNameID(className));
    case TypeKind::ObjectVector:
      if (value.isEmpty()) return value.isObject() || value.classID() == nxClassID::Double;
      if (!value.isObject() || !isVectorShape(value)) return false;
      for (std::size_t i = 0; i < value.numel(); ++i) {
        if (!value.getObject(i)->isa(COSNameID(className))) return false;
      }
      return true;
  }
  return false;
}

namespace impl {
Signature Invoker::createSignature(const char* result, const char* self,
                                   std::vector<std::string> args) {
  Signature sig;
  sig.result = TypeSpec::parse(result ? result : "void");
  sig.self = self ? self : "";
  for (const auto& a : args) sig.args.push_back(TypeSpec::parse(a));
  return sig;
}
}  // namespace impl

NcosFactoryClassInfo::NcosFactoryClassInfo(std::string shortName_, std::string description_)
    : shortName(std::move(shortName_)), description(std::move(description_)), fullName(shortName) {}

NcosFactoryClassInfo::~NcosFactoryClassInfo() = default;

void NcosFactoryClassInfo::addSuperclass(const COSNameID& name, int relation, int flagA,
                                         int flagB) {
  supers.push_back(SuperclassInfo{name, relation, flagA, flagB});
}

void NcosFactoryClassInfo::addProperty(std::unique_ptr<COSPropInfo> property) {
  if (!property) throw std::invalid_argument("addProperty: null property of " + fullName);
  props.push_back(std::move(property));
}

void NcosFactoryClassInfo::addMethod(const String& name, MethodAttributes attributes,
                                     Signature signature, MethodImpl impl) {
  if (!impl.invoke) throw std::invalid_argument("addMethod: " + name + " of " + fullName + " has no wrapper");
  meths.push_back(MethodInfo{name, attributes, std::move(signature), std::move(impl)});
}

void NcosFactoryClassInfo::addConstructor(NcosConstructor constructor) {
  if (!constructor.create || !constructor.wrapper.invoke) {
    throw std::invalid_argument("addConstructor: incomplete constructor of " + fullName);
  }
  ctors.push_back(std::move(constructor));
}

void NcosFactoryClassInfo::ensurePopulated() const {
  if (populated || populating) return;
  populating = true;
  try {
    const_cast<NcosFactoryClassInfo*>(this)->populate();
  } catch (...) {
    populating = false;
    throw;
  }
  populating = false;
  populated = true;
}

const std::vector<SuperclassInfo>& NcosFactoryClassInfo::superclasses() const {
  ensurePopulated();
  return supers;
}
const std::vector<std::unique_ptr<COSPropInfo>>& NcosFactoryClassInfo::properties() const {
  ensurePopulated();
  return props;
}
const std::vector<MethodInfo>& NcosFactoryClassInfo::methods() const {
  ensurePopulated();
  return meths;
}
const std::vector<NcosConstructor>& NcosFactoryClassInfo::constructors() const {
  ensurePopulated();
  return ctors;
}

const COSPropInfo* NcosFactoryClassInfo::findProperty(const std::string& name) const {
  for (const auto& p : properties()) {
    if (name == p->getName()) return p.get();
  }
  for (const auto& s : superclasses()) {
    auto super = COSPackage::findClass(s.name.str());
    if (super) {
      if (const COSPropInfo* p = super->findProperty(name)) return p;
    }
  }
  return nullptr;
}

std::vector<const MethodInfo*> NcosFactoryClassInfo::findMethods(const std::string& name) const {
  std::vector<const MethodInfo*> found;
  for (const auto& m : methods()) {
    if (m.name == name) found.push_back(&m);
  }
  for (const auto& s : superclasses()) {
    auto super = COSPackage::findClass(s.name.str());
    if (super) {
      for (const MethodInfo* m : super->findMethods(name)) found.push_back(m);
    }
  }
  return found;
}

bool NcosFactoryClassInfo::isa(const std::string& name) const {
  if (name == fullName) return true;
  for (const auto& s : superclasses()) {
    if (s.name.str() == name) return true;
    auto super = COSPackage::findClass(s.name.str());
    if (super && super->isa(name)) return true;
  }
  return false;
}

}  // namespace ncos::factory
