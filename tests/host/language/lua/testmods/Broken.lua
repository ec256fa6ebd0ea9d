return { this is not Lua
