#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/language/cosinterface.h"
#include "host/language/nxarray.h"

namespace ncos {

/// Attribute bits of a property word, as this object system reads them.
namespace PropertyAttributes {
/// Left out of listings of the class's properties (still readable and writable by name).
inline constexpr unsigned Hidden = 0x800;
/// Not part of the object's saved state; Blockara saves no objects, so it changes nothing.
inline constexpr unsigned Transient = 0x2000000;
}  // namespace PropertyAttributes

/// A property of a class, as the object system sees it. Subclasses answer with constants and
/// implement get and set. Main thread.
class COSPropInfo {
 public:
  virtual ~COSPropInfo() = default;
  /// The property's name.
  virtual const char* getName() const = 0;
  /// The attribute word (PropertyAttributes bits).
  virtual unsigned getAttributes() const = 0;
  virtual bool isReadable() const { return true; }
  virtual bool isWritable() const { return true; }
  /// Reads the value of `object`. Throws what the native accessor throws.
  virtual nxArrayProxy getValue(const COSInterfacePtr& object) const = 0;
  /// Writes the value of `object`. Throws what the native accessor throws.
  virtual void setValue(const COSInterfacePtr& object, const nxArrayProxy& value) const = 0;
};

namespace factory {

/// The name of a member.
using String = std::string;

namespace detail {
/// Prepares the string data types of the factory; idempotent. Main thread.
void initStringDataTypes();
}  // namespace detail

/// The attribute word of a method. A new word holds `ForceMembership`.
class MethodAttributes {
 public:
  enum Flag : unsigned { ForceMembership = 0x1, Static = 0x2, Hidden = 0x4 };
  MethodAttributes() : bits(ForceMembership) {}
  explicit MethodAttributes(unsigned word) : bits(word) {}
  MethodAttributes& add(Flag flag) { bits |= flag; return *this; }
  MethodAttributes& remove(Flag flag) { bits &= ~static_cast<unsigned>(flag); return *this; }
  bool has(Flag flag) const { return (bits & flag) != 0; }
  unsigned word() const { return bits; }

 private:
  unsigned bits;
};

/// The kind of a type string.
enum class TypeKind {
  WideString,    // "NcosFactoryString scalar"
  StringVector,  // "NcosFactoryString vector"
  Char,          // "char"
  Logical,       // "logical scalar"
  Double,        // "double scalar"
  UInt32,        // "uint32 scalar"
  Any,           // "any"
  Void,          // "void"
  Object,        // a full class name
  ObjectVector,  // a full class name followed by " vector"
};

/// A parsed type string.
struct TypeSpec {
  TypeKind kind = TypeKind::Void;
  std::string className;  // Object and ObjectVector only
  std::string text;       // the type string as written

  /// Parses a type string; any string that is not one of the fixed words is a class name.
  static TypeSpec parse(const std::string& text);
  /// True when `value` can be passed where this type is declared. Main thread (object isa tests).
  bool accepts(const nxArray& value) const;
};

/// The signature of a method: result, self (empty for a static method) and argument types.
struct Signature {
  TypeSpec result;
  std::string self;  // full class name, empty for static methods
  std::vector<TypeSpec> args;
};

namespace impl {
class Invoker {
 public:
  /// Builds a signature from the type strings. `self` is null for a static method.
  static Signature createSignature(const char* result, const char* self,
                                   std::vector<std::string> args = {});
};
}  // namespace impl

/// One call: `prhs` holds the self array first (instance methods and constructors) and then the
/// arguments; a wrapper stores results in `plhs` and sets `nlhs` to 1 if it was 0 when it has one.
struct CallFrame {
  int nlhs = 0;
  std::vector<nxArray> plhs;
  std::vector<nxArray> prhs;
};

/// A method's implementation: the wrapper that converts and calls the native function.
struct MethodImpl {
  std::function<void(CallFrame&)> invoke;
};

/// A declared method.
struct MethodInfo {
  String name;
  MethodAttributes attributes;
  Signature signature;
  MethodImpl impl;
  bool isStatic() const { return attributes.has(MethodAttributes::Static); }
  bool isHidden() const { return attributes.has(MethodAttributes::Hidden); }
};

/// A declared constructor: `create` makes the native object from the arguments, then the object
/// system wraps it in an object array and calls `wrapper` with that array first in `prhs`.
struct NcosConstructor {
  Signature signature;
  std::function<std::shared_ptr<Wrappable>(const std::vector<nxArray>& args)> create;
  MethodImpl wrapper;
};

/// A superclass declaration.
struct SuperclassInfo {
  COSNameID name;
  int relation;
  int flagA;
  int flagB;
};

/// The description of one class. A subclass implements `populate`, which the object system
/// calls once, when the class is first needed, and which declares superclasses, constructors,
/// properties and methods in their visible order. Main thread.
class NcosFactoryClassInfo {
 public:
  NcosFactoryClassInfo(std::string shortName, std::string description);
  virtual ~NcosFactoryClassInfo();
  NcosFactoryClassInfo(const NcosFactoryClassInfo&) = delete;
  NcosFactoryClassInfo& operator=(const NcosFactoryClassInfo&) = delete;

  const std::string& getShortName() const { return shortName; }
  const std::string& getDescription() const { return description; }
  /// The full dotted name; set when the class is added to a package (the short name before).
  const std::string& getFullName() const { return fullName; }
  void setFullName(std::string name) { fullName = std::move(name); }

  // Population operations, for `populate`.
  void addSuperclass(const COSNameID& name, int relation, int flagA, int flagB);
  void addProperty(std::unique_ptr<COSPropInfo> property);
  void addMethod(const String& name, MethodAttributes attributes, Signature signature,
                 MethodImpl impl);
  void addConstructor(NcosConstructor constructor);

  // Queries; each runs `populate` first if it has not run.
  const std::vector<SuperclassInfo>& superclasses() const;
  const std::vector<std::unique_ptr<COSPropInfo>>& properties() const;
  const std::vector<MethodInfo>& methods() const;
  const std::vector<NcosConstructor>& constructors() const;
  /// The property of that name of this class or, failing that, of a superclass; null if none.
  const COSPropInfo* findProperty(const std::string& name) const;
  /// Every method of that name: this class's first, in declaration order, then superclasses'.
  std::vector<const MethodInfo*> findMethods(const std::string& name) const;
  /// True when this class is `name` or derives from it (through registered superclasses).
  bool isa(const std::string& name) const;

 protected:
  /// Declares the members. Called once.
  virtual void populate() = 0;

 private:
  void ensurePopulated() const;

  std::string shortName;
  std::string description;
  std::string fullName;
  mutable bool populated = false;
  mutable bool populating = false;
  std::vector<SuperclassInfo> supers;
  std::vector<std::unique_ptr<COSPropInfo>> props;
  std::vector<MethodInfo> meths;
  std::vector<NcosConstructor> ctors;
};

/// The object system's allocator for class infos and package infos.
template <class T, class... Args>
std::unique_ptr<T> allocate(Args&&... args) {
  return std::make_unique<T>(std::forward<Args>(args)...);
}

}  // namespace factory
}  // namespace ncos
