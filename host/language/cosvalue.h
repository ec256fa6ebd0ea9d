#pragma once

// Conversions between native values and host-language arrays, and generic wrappers that turn a
// native member or free function into a MethodImpl, a property or a constructor. All of it runs
// on the main thread.

#include <cstdint>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "host/language/cosclassinfo.h"
#include "host/language/cosinterface.h"
#include "host/language/ncoserrors.h"
#include "host/language/nxarray.h"

namespace ncos::factory {

using ncos::ConversionFailed;

/// The characters of a char array (a string of no characters for an empty array of any class).
/// Throws std::invalid_argument for another class.
std::string extractString(const nxArray& value);
std::u16string extractWideString(const nxArray& value);
/// A logical or double scalar as bool (nonzero is true). Throws std::invalid_argument otherwise.
bool extractLogical(const nxArray& value);
/// A double, logical or uint32 scalar as double. Throws std::invalid_argument otherwise.
double extractDouble(const nxArray& value);
/// A uint32 scalar, or a double scalar holding an integer in range. std::invalid_argument otherwise.
std::uint32_t extractUInt32(const nxArray& value);
/// A cell array of char arrays (or a single char row) as strings in element order.
std::vector<std::string> extractStringVector(const nxArray& value);
/// The native object of the first element, cast-checked against `className`; null for an empty
/// array or a dead object. Throws std::invalid_argument for a value that is no such object.
Wrappable* extractObject(const nxArray& value, const std::string& className);
/// The native objects of an object array, in element order (dead ones as null).
std::vector<Wrappable*> extractObjects(const nxArray& value, const std::string& className);
/// A 1x1 object array over a borrowed native object of class `className` (its class must be
/// registered; std::invalid_argument otherwise). A null pointer gives a 0x0 object array.
nxArray objectToArray(Wrappable* native, const std::string& className);
/// A 1xN cell row of char rows.
nxArray stringsToArray(const std::vector<std::string>& values);
nxArray stringsToArray(const std::vector<std::u16string>& values);

namespace detail {

template <class T>
struct IsVector : std::false_type {};
template <class T>
struct IsVector<std::vector<T>> : std::true_type {
  using Element = T;
};

/// Converts an argument of declared type `type` to native type T.
template <class T>
T fromArray(const nxArray& value, const TypeSpec& type) {
  using D = std::decay_t<T>;
  if constexpr (std::is_same_v<D, std::string>) {
    return extractString(value);
  } else if constexpr (std::is_same_v<D, std::u16string>) {
    return extractWideString(value);
  } else if constexpr (std::is_same_v<D, bool>) {
    return extractLogical(value);
  } else if constexpr (std::is_same_v<D, double>) {
    return extractDouble(value);
  } else if constexpr (std::is_same_v<D, std::uint32_t>) {
    return extractUInt32(value);
  } else if constexpr (std::is_same_v<D, nxArrayProxy>) {
    return nxArrayProxy(value);
  } else if constexpr (std::is_same_v<D, nxArray>) {
    return value;
  } else if constexpr (std::is_same_v<D, std::vector<std::string>>) {
    return extractStringVector(value);
  } else if constexpr (std::is_same_v<D, std::vector<std::u16string>>) {
    std::vector<std::u16string> out;
    for (const auto& s : extractStringVector(value)) out.push_back(toUtf16(s));
    return out;
  } else if constexpr (std::is_pointer_v<D>) {
    return dynamic_cast<D>(extractObject(value, type.className));
  } else if constexpr (IsVector<D>::value && std::is_pointer_v<typename IsVector<D>::Element>) {
    D out;
    for (Wrappable* w : extractObjects(value, type.className)) {
      out.push_back(dynamic_cast<typename IsVector<D>::Element>(w));
    }
    return out;
  } else {
    static_assert(sizeof(D) == 0, "no host-language conversion for this native type");
  }
}

/// Converts a native result of declared type `type` to an array.
template <class T>
nxArray toArray(const T& value, const TypeSpec& type) {
  using D = std::decay_t<T>;
  if constexpr (std::is_same_v<D, std::string>) {
    return nxArray::charRow(std::string_view(value));
  } else if constexpr (std::is_same_v<D, std::u16string>) {
    return nxArray::charRow(std::u16string_view(value));
  } else if constexpr (std::is_same_v<D, bool>) {
    return nxArray::logicalScalar(value);
  } else if constexpr (std::is_same_v<D, double>) {
    return nxArray::doubleScalar(value);
  } else if constexpr (std::is_same_v<D, std::uint32_t>) {
    return nxArray::uint32Scalar(value);
  } else if constexpr (std::is_same_v<D, nxArrayProxy>) {
    return value.array();
  } else if constexpr (std::is_same_v<D, nxArray>) {
    return value;
  } else if constexpr (std::is_same_v<D, std::vector<std::string>> ||
                       std::is_same_v<D, std::vector<std::u16string>>) {
    return stringsToArray(value);
  } else if constexpr (std::is_pointer_v<D>) {
    return objectToArray(static_cast<Wrappable*>(value), type.className);
  } else if constexpr (IsVector<D>::value && std::is_pointer_v<typename IsVector<D>::Element>) {
    std::vector<COSInterfacePtr> objects;
    for (auto* p : value) {
      nxArray one = objectToArray(static_cast<Wrappable*>(p), type.className);
      if (!one.isEmpty()) objects.push_back(one.getObject(0));
    }
    std::size_t n = objects.size();
    return nxArray::objectMatrix(n == 0 ? 0 : 1, n, std::move(objects));
  } else {
    static_assert(sizeof(D) == 0, "no host-language conversion for this native type");
  }
}

/// The native self of an instance call: null for an empty self array or a dead object.
template <class T>
T* selfFrom(const nxArray& self, const std::string& className) {
  if (self.isEmpty()) return nullptr;
  return omGetArrayElement(self, 0)->getInterfaceAs<T>(COSNameID(className));
}

template <class R, class Call>
void storeResult(CallFrame& frame, const TypeSpec& type, Call&& call) {
  if constexpr (std::is_void_v<R>) {
    call();
  } else {
    frame.plhs.assign(1, toArray<R>(call(), type));
    if (frame.nlhs == 0) frame.nlhs = 1;
  }
}

template <class T, class R, class... Args, std::size_t... I, class Fn>
MethodImpl memberImpl(Signature sig, Fn fn, std::index_sequence<I...>) {
  return MethodImpl{[sig = std::move(sig), fn](CallFrame& frame) {
    T* self = selfFrom<T>(frame.prhs.at(0), sig.self);
    std::tuple<std::decay_t<Args>...> args{
        fromArray<std::decay_t<Args>>(frame.prhs.at(I + 1), sig.args.at(I))...};
    validateSelfPointer(self);
    storeResult<R>(frame, sig.result, [&]() -> decltype(auto) {
      return (self->*fn)(std::get<I>(args)...);
    });
  }};
}

template <class R, class... Args, std::size_t... I>
MethodImpl freeImpl(Signature sig, R (*fn)(Args...), std::index_sequence<I...>) {
  return MethodImpl{[sig = std::move(sig), fn](CallFrame& frame) {
    std::tuple<std::decay_t<Args>...> args{
        fromArray<std::decay_t<Args>>(frame.prhs.at(I), sig.args.at(I))...};
    // A static-form method takes its object first: reject a dead one before native code runs.
    if constexpr (sizeof...(Args) > 0) {
      using First = std::decay_t<std::tuple_element_t<0, std::tuple<Args...>>>;
      if constexpr (std::is_pointer_v<First>) validateSelfPointer(std::get<0>(args));
    }
    storeResult<R>(frame, sig.result, [&]() -> decltype(auto) { return fn(std::get<I>(args)...); });
  }};
}

}  // namespace detail

/// A wrapper for an instance method: self from the first element of prhs[0], arguments converted
/// by the signature's types, the self validated, the result stored.
template <class T, class R, class... Args>
MethodImpl makeMethodImpl(Signature sig, R (T::*fn)(Args...)) {
  return detail::memberImpl<T, R, Args...>(std::move(sig), fn, std::index_sequence_for<Args...>{});
}
template <class T, class R, class... Args>
MethodImpl makeMethodImpl(Signature sig, R (T::*fn)(Args...) const) {
  return detail::memberImpl<T, R, Args...>(std::move(sig), fn, std::index_sequence_for<Args...>{});
}
/// A wrapper for a static method or a method in static form (the object as first argument).
template <class R, class... Args>
MethodImpl makeMethodImpl(Signature sig, R (*fn)(Args...)) {
  return detail::freeImpl(std::move(sig), fn, std::index_sequence_for<Args...>{});
}

/// A constructor without arguments of native class T for the class `className`: makes a T, and
/// its wrapper announces the object to the BindingRegistry.
template <class T>
NcosConstructor makeConstructor(const std::string& className) {
  NcosConstructor ctor;
  ctor.signature = impl::Invoker::createSignature(className.c_str(), className.c_str(), {});
  ctor.create = [](const std::vector<nxArray>&) { return std::make_shared<T>(); };
  ctor.wrapper = MethodImpl{[className](CallFrame& frame) {
    T* self = detail::selfFrom<T>(frame.prhs.at(0), className);
    validateSelfPointer(self);
    BindingRegistry::announceForConstructor(BindingRegistry::instance(), className,
                                            frame.prhs.at(0), 1);
    frame.plhs.assign(1, frame.prhs.at(0));
    if (frame.nlhs == 0) frame.nlhs = 1;
  }};
  return ctor;
}

/// The type string of a native value type, for properties.
template <class V>
const char* defaultTypeString() {
  if constexpr (std::is_same_v<V, std::string>) return "char";
  else if constexpr (std::is_same_v<V, std::u16string>) return "NcosFactoryString scalar";
  else if constexpr (std::is_same_v<V, bool>) return "logical scalar";
  else if constexpr (std::is_same_v<V, double>) return "double scalar";
  else if constexpr (std::is_same_v<V, std::uint32_t>) return "uint32 scalar";
  else if constexpr (std::is_same_v<V, std::vector<std::string>> ||
                     std::is_same_v<V, std::vector<std::u16string>>)
    return "NcosFactoryString vector";
  else return "any";
}

/// A property getter: a const member function returning the value (by const reference or value).
template <class T, class V>
struct ClassGetter {
  std::function<V(const T&)> get;
  ClassGetter(const V& (T::*fn)() const) : get([fn](const T& t) { return (t.*fn)(); }) {}
  ClassGetter(V (T::*fn)() const) : get([fn](const T& t) { return (t.*fn)(); }) {}
};
/// A property setter: a member function taking the value. A default one makes the property
/// read-only.
template <class T, class V>
struct ClassSetter {
  std::function<void(T&, const V&)> set;
  ClassSetter() = default;
  ClassSetter(void (T::*fn)(V)) : set([fn](T& t, const V& v) { (t.*fn)(v); }) {}
  ClassSetter(void (T::*fn)(const V&)) : set([fn](T& t, const V& v) { (t.*fn)(v); }) {}
};
/// A getter through a free adapter function taking the native object.
template <class T, class V>
struct AdaptedClassGetter {
  std::function<V(T&)> get;
  AdaptedClassGetter(V (*fn)(T*)) : get([fn](T& t) { return fn(&t); }) {}
};
/// A setter through a free adapter function taking the native object and the value.
template <class T, class V>
struct AdaptedClassSetter {
  std::function<void(T&, const V&)> set;
  AdaptedClassSetter() = default;
  AdaptedClassSetter(void (*fn)(T*, V)) : set([fn](T& t, const V& v) { fn(&t, v); }) {}
  AdaptedClassSetter(void (*fn)(T*, const V&)) : set([fn](T& t, const V& v) { fn(&t, v); }) {}
};

/// A property over native accessors of class T with value type V.
template <class T, class V>
class PropertyImpl : public COSPropInfo {
 public:
  /// `type` is the value's type string; by default the one of V (give it for object types).
  PropertyImpl(std::string name, unsigned attributes, ClassGetter<T, V> getter,
               ClassSetter<T, V> setter = {}, const char* type = defaultTypeString<V>())
      : propName(std::move(name)), word(attributes), typeSpec(TypeSpec::parse(type)) {
    get = [g = std::move(getter.get)](T& t) { return g(t); };
    set = std::move(setter.set);
  }
  PropertyImpl(std::string name, unsigned attributes, AdaptedClassGetter<T, V> getter,
               AdaptedClassSetter<T, V> setter = {}, const char* type = defaultTypeString<V>())
      : propName(std::move(name)), word(attributes), typeSpec(TypeSpec::parse(type)) {
    get = std::move(getter.get);
    set = std::move(setter.set);
  }

  const char* getName() const override { return propName.c_str(); }
  unsigned getAttributes() const override { return word; }
  bool isWritable() const override { return static_cast<bool>(set); }
  nxArrayProxy getValue(const COSInterfacePtr& object) const override {
    T& self = native(object);
    return nxArrayProxy(detail::toArray<V>(get(self), typeSpec));
  }
  void setValue(const COSInterfacePtr& object, const nxArrayProxy& value) const override {
    if (!typeSpec.accepts(value.array())) {
      throw ConversionFailed(value->className() + " to property " + propName + " of type " +
                             typeSpec.text);
    }
    V v = detail::fromArray<V>(value.array(), typeSpec);
    T& self = native(object);
    set(self, v);
  }

 private:
  static T& native(const COSInterfacePtr& object) {
    T* self = object ? dynamic_cast<T*>(object->native()) : nullptr;
    validateSelfPointer(self);
    return *self;
  }

  std::string propName;
  unsigned word;
  TypeSpec typeSpec;
  std::function<V(T&)> get;
  std::function<void(T&, const V&)> set;
};

}  // namespace ncos::factory
