#pragma once

#include <lua.hpp>

#include <string>

#include "host/model/bkblock.h"
#include "host/model/diagramediting.h"

namespace blockara::app {

/// The UTF-8 string argument at `index` as the host's UTF-16 string; raises a Lua error when it
/// is not a string.
bksvString checkUString(lua_State* L, int index);

/// Pushes a UTF-16 string as a UTF-8 Lua string.
void pushUString(lua_State* L, const bksvString& text);

/// Reads a property table (`props` of `d:add` and `d:set`) at `index`: strings, numbers and
/// booleans as they are, a list of numbers (Position) as numbers, a list of tables (StateData)
/// as records. A nil or absent argument gives an empty map. Raises a Lua error naming the
/// property for a value of another shape.
PropertyMap checkPropertyTable(lua_State* L, int index);

/// Pushes a block value by the same rules in reverse.
void pushBlockValue(lua_State* L, const BlockValue& value);

}  // namespace blockara::app
