-- Exactly which host signals each kind of edit raises, with the blocks of each change report.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")

local d = blockara.new("P")
local function raised(expected, what)
  expect.eq(table.concat(d:signals(), "\n"), table.concat(expected, "\n"), what)
end

raised({ "edit 1" }, "opening")
d:batch(function(d)
  d:add("P", "SubSystem", "S")
  d:add("P/S", "Gain", "G")
  d:add("P", "Gain", "H")
end)
raised({ "batch 26: P/S, P/S/G, P/H" }, "one report for a batch of additions")

d:rename("P/S/G", "a/b")
d:move("P/H", "P/S")
d:comment("P/S/H", "out")
d:set("P/S", { Orientation = "down" })
d:setModelParam("StopTime", "5")
d:compileBegin(); d:compileEnd(); d:simulateBegin(); d:simulateEnd()
d:workspaceChanged(); d:variablesChanged()
raised({ "batch 33: P/S/a//b", "batch 33: P/S/H", "comment 22: P/S/H", "batch 27: P/S",
         "param 41: StopTime", "compile 1", "compile 35", "exec 2", "exec 5", "compile 33",
         "compile 34" }, "single edits and the compile and execution sides")

d:delete("P/S")
raised({ "batch 28: P/S, P/S/a//b, P/S/H" }, "a subsystem is deleted before its contents")
assert(d:undo())
raised({ "batch 26: P/S, P/S/a//b, P/S/H" }, "undo of a deletion adds the same blocks back")
assert(d:redo() and d:undo())
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
d:close()
print("host_signals: ok")
