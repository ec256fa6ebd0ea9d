-- A diagram edited through the scripting API: the host's state after each kind of edit and after
-- undo and redo, and exactly which host signals each edit raises, with the blocks of each change
-- report.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")

local d = blockara.new("P")
local function raised(expected, what)
  expect.eq(table.concat(d:signals(), "\n"), table.concat(expected, "\n"), what)
end
raised({ "edit 1" }, "opening")
d:batch(function(d)
  d:add("P", "SubSystem", "S")
  d:add("P/S", "Gain", "G", { Gain = "7" })
  d:add("P", "Gain", "H")
end)
raised({ "batch 26: P/S, P/S/G, P/H" }, "one report for a batch of additions")
expect.eq(d:block("P/S/G"):get("Gain"), "7", "Gain of G")

-- A "/" inside a name is written "//" in paths; moving keeps the block's identity.
local g, h = d:block("P/S/G"), d:block("P/H")
d:rename("P/S/G", "a/b")
d:move("P/H", "P/S")
expect.eq(g.path, "P/S/a//b", "escaped path")
assert(d:block("P/S/a//b") == g, "lookup by escaped path")
expect.eq(h.path, "P/S/H", "moved path")
expect.eq(d:block("P/H"), nil, "old path")
d:comment("P/S/H", "out")
d:set("P/S", { Orientation = "down" })
d:setModelParam("StopTime", "5")
d:compileBegin(); d:compileEnd(); d:simulateBegin(); d:simulateEnd()
d:workspaceChanged(); d:variablesChanged()
raised({ "batch 33: P/S/a//b", "batch 33: P/S/H", "comment 22: P/S/H", "batch 27: P/S",
         "param 41: StopTime", "compile 1", "compile 35", "exec 2", "exec 5", "compile 33",
         "compile 34" }, "single edits and the compile and execution sides")

-- Deleting a subsystem takes its contents; undo brings back the same blocks (same handles).
local handle = g.handle
d:delete("P/S")
raised({ "batch 28: P/S, P/S/a//b, P/S/H" }, "a subsystem is deleted before its contents")
expect.eq(#d:blocks(), 0, "blocks after delete")
assert(d:undo(), "undo")
raised({ "batch 26: P/S, P/S/a//b, P/S/H" }, "undo of a deletion adds the same blocks back")
expect.eq(d:block("P/S/a//b").handle, handle, "handle kept by undo")
assert(d:redo(), "redo")
expect.eq(#d:blocks(), 0, "blocks after redo")
expect.fails(function() return g.path end, "no longer exists", "dead block")
assert(d:undo())
d:signals()

-- Within one batch the report holds the net effect: a block added and then changed is only
-- added; several kinds make one report each, in the order added, changed, deleted, renamed.
d:batch(function(d)
  d:add("P", "Gain", "X")
  d:set("P/X", { Gain = "2" })
  d:set("P/S", { Orientation = "up" })
  d:delete("P/S/a//b")
  d:rename("P/S/H", "H2")
  d:comment("P/S/H2", "through")
end)
raised({ "batch 26: P/X", "batch 27: P/S", "batch 28: P/S/a//b", "batch 33: P/S/H2",
         "comment 23: P/S/H2" }, "a mixed batch")
-- Undo of a batch takes it back whole.
assert(d:undo())
expect.eq(d:block("P/X"), nil, "added block after undo")
expect.eq(d:block("P/S/a//b").path, "P/S/a//b", "deleted block after undo")
-- Refused edits are the host's editing tests'; their errors reach a script as any native one.

-- Diagrams by name, rename and close.
assert(blockara.diagram("P") == d)
d:renameDiagram("P2")
expect.eq(d:block("P2/S/H").path, "P2/S/H", "path after diagram rename")
d:close()
expect.eq(blockara.diagram("P2"), nil, "closed diagram")
expect.fails(function() d:blocks() end, "closed", "closed diagram")
print("host_editing: ok")
