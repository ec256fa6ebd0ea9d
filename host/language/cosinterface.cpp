#include "host/language/cosinterface.h"

#include <stdexcept>

#include "host/language/cosclassinfo.h"
#include "host/language/ncoserrors.h"

namespace ncos {

Wrappable::Wrappable() : token(std::make_shared<int>(0)) {}
Wrappable::~Wrappable() = default;
Wrappable::Wrappable(const Wrappable&) : token(std::make_shared<int>(0)) {}
Wrappable& Wrappable::operator=(const Wrappable&) { return *this; }

COSInterfacePtr COSInterface::makeOwned(std::shared_ptr<const factory::NcosFactoryClassInfo> cls,
                                        std::shared_ptr<Wrappable> native) {
  if (!cls || !native) throw std::invalid_argument("COSInterface: class and object are required");
  COSInterfacePtr object(new COSInterface());
  object->cls = std::move(cls);
  object->raw = native.get();
  object->alive = native->lifeToken();
  object->owned = std::move(native);
  return object;
}

COSInterfacePtr COSInterface::makeBorrowed(std::shared_ptr<const factory::NcosFactoryClassInfo> cls,
                                           Wrappable* native) {
  if (!cls) throw std::invalid_argument("COSInterface: a class is required");
  COSInterfacePtr object(new COSInterface());
  object->cls = std::move(cls);
  object->raw = native;
  if (native) object->alive = native->lifeToken();
  return object;
}

const std::string& COSInterface::className() const { return cls->getFullName(); }

bool COSInterface::isa(const COSNameID& name) const { return cls->isa(name.str()); }

bool COSInterface::isAlive() const { return raw != nullptr && !alive.expired(); }

Wrappable* COSInterface::native() const { return isAlive() ? raw : nullptr; }

Wrappable* COSInterface::getInterface(const COSNameID& name) const {
  return isa(name) ? native() : nullptr;
}

nxArray COSInterface::getProperty(const std::string& name) const {
  const COSPropInfo* prop = cls->findProperty(name);
  if (!prop) throw UnknownMember(name, className());
  if (!isAlive()) throw InvalidObject();
  return prop->getValue(std::const_pointer_cast<COSInterface>(shared_from_this())).array();
}

void COSInterface::setProperty(const std::string& name, const nxArray& value) const {
  const COSPropInfo* prop = cls->findProperty(name);
  if (!prop) throw UnknownMember(name, className());
  if (!prop->isWritable()) throw ReadOnlyProperty(name, className());
  if (!isAlive()) throw InvalidObject();
  prop->setValue(std::const_pointer_cast<COSInterface>(shared_from_this()), nxArrayProxy(value));
}

BindingRegistry& BindingRegistry::instance() {
  static BindingRegistry registry;
  return registry;
}

void BindingRegistry::announceForConstructor(BindingRegistry& registry,
                                             const std::string& className, const nxArray& self,
                                             int count) {
  if (!self.isObject() || self.numel() < static_cast<std::size_t>(count)) {
    throw std::invalid_argument("announceForConstructor: not an object array of " + className);
  }
  for (int i = 0; i < count; ++i) {
    const COSInterfacePtr& object = self.getObject(static_cast<std::size_t>(i));
    if (!object->isa(COSNameID(className))) {
      throw std::invalid_argument("announceForConstructor: object of " + object->className() +
                                  " announced as " + className);
    }
    object->markAnnounced();
    ++registry.announcedObjects;
  }
}

void validateSelfPointer(const void* self) {
  if (self == nullptr) throw InvalidObject();
}

}  // namespace ncos

nxArray omGetProperty(const nxArray& array, const std::string& name) {
  if (array.isStruct()) {
    const nxArray* field = array.getField(0, name);
    if (!field) throw ncos::UnknownMember(name, "struct");
    return *field;
  }
  return omGetArrayElement(array, 0)->getProperty(name);
}
