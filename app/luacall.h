#pragma once

// The one way a C++ function of the scripting API is made callable from Lua. A call is written as
// a lambda with typed parameters; `luaFunction<lambda>` checks and converts the Lua arguments in
// order (argument 1 for the first parameter), runs the lambda with C++ exceptions turned into Lua
// errors, and pushes what it returns. So a new call is one line of argument types and one body:
//
//   {"rename", luaFunction<[](BKRootBD* d, bksvString path, bksvString name) {
//      d->editing().renameBlock(path, name); }>},
//
// A lambda that needs the Lua stack itself (a callback, an option list, an error with the
// script's position) takes `lua_State*` as its first parameter; the others still come checked.

#include <lua.hpp>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "app/luatypes.h"
#include "app/luavalues.h"
#include "host/language/luahost.h"

namespace blockara::app {

/// How the Lua argument at `index` becomes a `T`; each raises the usual Lua argument error.
template <class T>
struct LuaArg;

template <>
struct LuaArg<bksvString> {
  static bksvString check(lua_State* L, int index) { return checkUString(L, index); }
};
/// A string up to its first zero byte, as file paths and type names are read.
template <>
struct LuaArg<std::string> {
  static std::string check(lua_State* L, int index) { return luaL_checkstring(L, index); }
};
/// Every byte of a string; the view lives as long as the argument stays on the stack.
template <>
struct LuaArg<std::string_view> {
  static std::string_view check(lua_State* L, int index) {
    std::size_t len = 0;
    const char* text = luaL_checklstring(L, index, &len);
    return {text, len};
  }
};
template <>
struct LuaArg<double> {
  static double check(lua_State* L, int index) { return luaL_checknumber(L, index); }
};
template <>
struct LuaArg<lua_Integer> {
  static lua_Integer check(lua_State* L, int index) { return luaL_checkinteger(L, index); }
};
/// Any value, by its truth: nil and false are false.
template <>
struct LuaArg<bool> {
  static bool check(lua_State* L, int index) { return lua_toboolean(L, index); }
};
template <>
struct LuaArg<PropertyMap> {
  static PropertyMap check(lua_State* L, int index) { return checkPropertyTable(L, index); }
};
template <>
struct LuaArg<BKRootBD*> {
  static BKRootBD* check(lua_State* L, int index) { return toDiagram(L, index); }
};
template <>
struct LuaArg<BKBlock*> {
  static BKBlock* check(lua_State* L, int index) { return toBlock(L, index); }
};
/// An optional argument: absent or nil gives nothing, anything else must be a `T`.
template <class T>
struct LuaArg<std::optional<T>> {
  static std::optional<T> check(lua_State* L, int index) {
    if (lua_isnoneornil(L, index)) return std::nullopt;
    return LuaArg<T>::check(L, index);
  }
};

namespace detail {

template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;
template <class T>
inline constexpr bool isVector = false;
template <class T>
inline constexpr bool isVector<std::vector<T>> = true;
template <class T>
inline constexpr bool isStringMap = false;
template <class T>
inline constexpr bool isStringMap<std::map<std::string, T>> = true;
template <class T>
inline constexpr bool noLuaForm = false;

}  // namespace detail

/// Pushes `value` in its Lua form: a Diagram or Block (nil for none), a string, number, boolean or
/// block value; a vector as a list, a map from strings as a table, an empty optional as nil.
template <class T>
void luaPush(lua_State* L, const T& value) {
  if constexpr (std::is_same_v<T, bool>) {
    lua_pushboolean(L, value);
  } else if constexpr (std::is_integral_v<T>) {
    lua_pushinteger(L, static_cast<lua_Integer>(value));
  } else if constexpr (std::is_same_v<T, std::string>) {
    lua_pushlstring(L, value.data(), value.size());
  } else if constexpr (std::is_same_v<T, bksvString>) {
    pushUString(L, value);
  } else if constexpr (std::is_same_v<T, BlockValue>) {
    pushBlockValue(L, value);
  } else if constexpr (std::is_same_v<T, BKRootBD*>) {
    if (value) pushDiagram(L, value);
    else lua_pushnil(L);
  } else if constexpr (std::is_same_v<T, BKBlock*>) {
    if (value) pushBlock(L, value);
    else lua_pushnil(L);
  } else if constexpr (detail::isOptional<T>) {
    if (value) luaPush(L, *value);
    else lua_pushnil(L);
  } else if constexpr (detail::isVector<T>) {
    lua_createtable(L, static_cast<int>(value.size()), 0);
    for (std::size_t i = 0; i < value.size(); ++i) {
      luaPush(L, value[i]);
      lua_seti(L, -2, static_cast<lua_Integer>(i + 1));
    }
  } else if constexpr (detail::isStringMap<T>) {
    lua_createtable(L, 0, static_cast<int>(value.size()));
    for (const auto& [key, element] : value) {
      luaPush(L, element);
      lua_setfield(L, -2, key.c_str());
    }
  } else {
    static_assert(detail::noLuaForm<T>, "no Lua form for this type");
  }
}

namespace detail {

// The result and parameter types of a lambda without captures or of a plain function.
template <class F>
struct CallShape : CallShape<decltype(&F::operator())> {};
template <class R, class... Params>
struct CallShape<R (*)(Params...)> {
  using Result = R;
  using Args = std::tuple<std::decay_t<Params>...>;
};
template <class Closure, class R, class... Params>
struct CallShape<R (Closure::*)(Params...) const> : CallShape<R (*)(Params...)> {};

template <class Args>
constexpr bool takesState() {
  if constexpr (std::tuple_size_v<Args> == 0) return false;
  else return std::is_same_v<std::tuple_element_t<0, Args>, lua_State*>;
}

template <auto Body, class Args, std::size_t... I>
int callChecked(lua_State* L, std::index_sequence<I...>) {
  using Result = typename CallShape<decltype(Body)>::Result;
  constexpr bool wantsState = takesState<Args>();
  constexpr int first = wantsState ? 1 : 0;  // the tuple slot of Lua argument 1
  // Braced initialisation checks the arguments left to right, so the first bad one is reported.
  Args args{[&]() -> std::tuple_element_t<I, Args> {
    if constexpr (wantsState && I == 0) return L;
    else return LuaArg<std::tuple_element_t<I, Args>>::check(L, static_cast<int>(I) + 1 - first);
  }()...};
  return luaGuard(L, [&](lua_State*) {
    if constexpr (std::is_void_v<Result>) {
      std::apply(Body, std::move(args));
      return 0;
    } else {
      luaPush(L, std::apply(Body, std::move(args)));
      return 1;
    }
  });
}

}  // namespace detail

/// The Lua C function for `Body`, a lambda without captures or a plain function (see the top of
/// this file). Raises a Lua error for a bad argument or for any exception of `Body`. Main thread.
template <auto Body>
int luaFunction(lua_State* L) {
  using Args = typename detail::CallShape<decltype(Body)>::Args;
  return detail::callChecked<Body, Args>(L, std::make_index_sequence<std::tuple_size_v<Args>>{});
}

}  // namespace blockara::app
