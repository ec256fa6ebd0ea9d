#pragma once

#include <lua.hpp>

class BKRootBD;
class BKBlock;

namespace blockara::app {

/// Makes the metatables of the Diagram and Block types. The methods of each lie in the field
/// `methods` of its metatable ("blockara.Diagram", "blockara.Block"), where the Lua prelude adds
/// its own. Main thread.
void installObjectTypes(lua_State* L);

/// Pushes a Diagram value for `diagram` (it holds the diagram's handle).
void pushDiagram(lua_State* L, BKRootBD* diagram);

/// Pushes a Block value for `block` (it holds the block's handle).
void pushBlock(lua_State* L, BKBlock* block);

/// The open diagram of the Diagram value at `index`; a Lua error when it is not a Diagram or
/// the diagram is closed.
BKRootBD* toDiagram(lua_State* L, int index);

/// The live block of the Block value at `index`; a Lua error when it is not a Block or the block
/// no longer exists.
BKBlock* toBlock(lua_State* L, int index);

}  // namespace blockara::app
