-- A diagram of a few hundred blocks in nested subsystems, edited through the scripting API:
-- the host's state after each kind of edit, and after undo and redo.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")

local d = blockara.new("Plant")
d:batch(function(d)
  d:add("Plant", "SubSystem", "Ctrl")
  d:add("Plant/Ctrl", "SubSystem", "Inner")
  for i = 1, 100 do
    d:add("Plant/Ctrl/Inner", "Gain", "G" .. i, { Gain = tostring(i), Position = { i * 40, 20, 30, 30 } })
    d:add("Plant/Ctrl", "Constant", "C" .. i, { Value = "1" })
    d:add("Plant", "Sum", "S" .. i, { Orientation = "down" })
  end
end)
expect.eq(#d:blocks(), 302, "blocks after the batch")
expect.eq(d:block("Plant/Ctrl/Inner/G7"):get("Gain"), "7", "Gain of G7")

-- A "/" inside a name is written "//" in paths; moving keeps the block's identity.
local g1 = d:block("Plant/Ctrl/Inner/G1")
d:rename("Plant/Ctrl/Inner/G1", "Gain/One")
expect.eq(g1.path, "Plant/Ctrl/Inner/Gain//One", "escaped path")
assert(d:block("Plant/Ctrl/Inner/Gain//One") == g1, "lookup by escaped path")
local s1 = d:block("Plant/S1")
d:move("Plant/S1", "Plant/Ctrl")
expect.eq(s1.path, "Plant/Ctrl/S1", "moved path")
expect.eq(d:block("Plant/S1"), nil, "old path")

d:comment("Plant/Ctrl/C1", "out")
d:set("Plant/Ctrl/C2", { Value = "42", ShowName = "off" })
expect.eq(d:block("Plant/Ctrl/C2"):get("Value"), "42", "set value")

-- Deleting a subsystem takes its contents; undo brings back the same blocks (same handles).
local handle = d:block("Plant/Ctrl/Inner/G50").handle
d:delete("Plant/Ctrl/Inner")
expect.eq(#d:blocks(), 201, "blocks after delete")
expect.eq(d:block("Plant/Ctrl/Inner/G50"), nil, "deleted block")
assert(d:undo(), "undo")
expect.eq(#d:blocks(), 302, "blocks after undo")
expect.eq(d:block("Plant/Ctrl/Inner/G50").handle, handle, "handle kept by undo")
assert(d:redo(), "redo")
expect.eq(#d:blocks(), 201, "blocks after redo")
expect.fails(function() return g1.path end, "no longer exists", "dead block")
assert(d:undo())

-- Undo of the comment and the parameter change, in reverse order.
assert(d:undo())
expect.eq(d:block("Plant/Ctrl/C2"):get("Value"), "1", "value after undo")

-- Bad edits fail with the path in the message and change nothing.
expect.fails(function() d:add("Plant/Nowhere", "Gain", "X") end, "Plant/Nowhere", "bad system")
expect.fails(function() d:add("Plant", "NoSuchType", "X") end, "NoSuchType", "bad type")
expect.fails(function() d:rename("Plant/Ctrl/C3", "C4") end, nil, "name taken")
expect.eq(#d:blocks(), 302, "blocks after failed edits")

-- Diagrams by name, rename and close.
assert(blockara.diagram("Plant") == d)
d:renameDiagram("Plant2")
expect.eq(d:block("Plant2/Ctrl/C3").path, "Plant2/Ctrl/C3", "path after diagram rename")
d:close()
expect.eq(blockara.diagram("Plant2"), nil, "closed diagram")
expect.fails(function() d:blocks() end, "closed", "closed diagram")
print("host_editing: ok")
