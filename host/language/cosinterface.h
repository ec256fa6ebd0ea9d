#pragma once

#include <memory>
#include <string>

#include "host/language/nxarray.h"

namespace ncos {

namespace factory {
class NcosFactoryClassInfo;
}

/// The full dotted name of a class, such as "Auditor.authoring.internal.Constraint".
class COSNameID {
 public:
  explicit COSNameID(std::string fullName) : name(std::move(fullName)) {}
  const std::string& str() const { return name; }
  bool operator==(const COSNameID& other) const = default;

 private:
  std::string name;
};

/// Base of every native class offered to the host language. It carries a life token, so that a
/// host-language object that outlives its native object is seen as dead instead of dangling.
/// Main thread.
class Wrappable {
 public:
  Wrappable();
  virtual ~Wrappable();
  // A copy is a new native object with a life of its own.
  Wrappable(const Wrappable&);
  Wrappable& operator=(const Wrappable&);

  /// Expires when this object is destroyed.
  std::weak_ptr<void> lifeToken() const { return token; }

 private:
  std::shared_ptr<int> token;
};

/// One host-language object: its class and its native object, which it either owns (objects
/// made by a host-language constructor) or borrows (singletons, objects owned by other native
/// objects). Main thread only.
class COSInterface : public std::enable_shared_from_this<COSInterface> {
 public:
  /// An object that owns its native object. `native` must not be null.
  static COSInterfacePtr makeOwned(std::shared_ptr<const factory::NcosFactoryClassInfo> cls,
                                   std::shared_ptr<Wrappable> native);
  /// An object over a native object owned elsewhere; dead once that object is destroyed.
  /// A null `native` gives a dead object.
  static COSInterfacePtr makeBorrowed(std::shared_ptr<const factory::NcosFactoryClassInfo> cls,
                                      Wrappable* native);

  COSInterface(const COSInterface&) = delete;
  COSInterface& operator=(const COSInterface&) = delete;

  const factory::NcosFactoryClassInfo& classInfo() const { return *cls; }
  const std::shared_ptr<const factory::NcosFactoryClassInfo>& classInfoPtr() const { return cls; }
  /// The full dotted class name.
  const std::string& className() const;
  /// True when the class is `name` or derives from it.
  bool isa(const COSNameID& name) const;
  /// True while the native object exists.
  bool isAlive() const;
  /// The native object, or null when it is dead.
  Wrappable* native() const;
  /// The native object when the class is `name` or derives from it and the object is alive;
  /// null otherwise.
  Wrappable* getInterface(const COSNameID& name) const;
  /// getInterface, cast to the native class (null when the cast fails).
  template <class T>
  T* getInterfaceAs(const COSNameID& name) const {
    return dynamic_cast<T*>(getInterface(name));
  }

  /// Property access through the class's property table. Throws message-ID errors
  /// "blockara:ncos:UnknownMember", "ReadOnlyProperty", "InvalidObject".
  nxArray getProperty(const std::string& name) const;
  void setProperty(const std::string& name, const nxArray& value) const;

  /// Set by BindingRegistry::announceForConstructor.
  bool isAnnounced() const { return announced; }
  void markAnnounced() { announced = true; }

 private:
  COSInterface() = default;

  std::shared_ptr<const factory::NcosFactoryClassInfo> cls;
  std::shared_ptr<Wrappable> owned;
  Wrappable* raw = nullptr;
  std::weak_ptr<void> alive;
  bool announced = false;
};

/// Records which host-language objects their constructors have announced. Main thread.
class BindingRegistry {
 public:
  /// The process-wide registry.
  static BindingRegistry& instance();

  BindingRegistry(const BindingRegistry&) = delete;
  BindingRegistry& operator=(const BindingRegistry&) = delete;

  /// Called by a constructor wrapper with the array the object system made: marks its first
  /// `count` objects as constructed objects of `className`. Throws std::invalid_argument when
  /// the array is not an object array of that class with at least `count` elements.
  static void announceForConstructor(BindingRegistry& registry, const std::string& className,
                                     const nxArray& self, int count);

  /// How many objects have been announced in this process.
  std::size_t announcedCount() const { return announcedObjects; }

 private:
  BindingRegistry() = default;
  std::size_t announcedObjects = 0;  // main thread only
};

/// Throws the message-ID error "blockara:ncos:InvalidObject" when `self` is null: a method was
/// called on a dead or missing object. Main thread.
void validateSelfPointer(const void* self);

}  // namespace ncos
