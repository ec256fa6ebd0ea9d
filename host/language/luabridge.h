#pragma once

// Internal pieces of the Lua embedding shared by its sources.

#include <lua.hpp>

#include "host/language/cosinterface.h"

namespace blockara::luabridge {

inline constexpr const char* arrayType = "nx.array";
inline constexpr const char* objectType = "ncos.object";
inline constexpr const char* packageType = "ncos.package";
inline constexpr const char* classType = "ncos.class";

/// Pushes a host-language object as a Lua userdata.
void pushObject(lua_State* L, const ncos::COSInterfacePtr& object);
/// The object at `index`, or null when the value is not an object userdata.
const ncos::COSInterfacePtr* testObject(lua_State* L, int index);
/// The array of an array userdata at `index`, or null.
const nxArray* testArray(lua_State* L, int index);
/// Pushes an array as an array userdata (whatever its shape).
void pushArrayUserdata(lua_State* L, const nxArray& value);

/// Installs the metatables of arrays and the `nx` helper table.
void installArrays(lua_State* L);
/// Installs the metatables of packages, classes and objects, and resolves top-level packages as
/// globals through a metatable on the global table.
void installNcos(lua_State* L);

}  // namespace blockara::luabridge
