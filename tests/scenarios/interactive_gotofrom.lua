-- A Goto/From session: a From waits for its Goto, a local Goto in another system does not reach
-- it, a global one does, a second global Goto competes, and deleting it settles the diagram.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")

local d = blockara.new("GF")
d:add("GF", "SubSystem", "S")
d:add("GF", "From", "f", { GotoTag = "A" })
expect.settles(d, "a lone From", { "GF/f NoMatchingGoTO EDITTIME_WARNING" }, { "GF/f Warn" })

d:add("GF/S", "Goto", "g", { GotoTag = "A", TagVisibility = "local" })
expect.settles(d, "a local Goto in another system",
               { "GF/S/g NoMatchingFrom EDITTIME_WARNING", "GF/f NoMatchingGoTO EDITTIME_WARNING" })

d:set("GF/S/g", { TagVisibility = "global" })
expect.settles(d, "a global Goto reaches the From", {}, {})

d:add("GF", "Goto", "h", { GotoTag = "A", TagVisibility = "global" })
expect.settles(d, "two global Gotos of one tag",
               { "GF/S/g DuplicateGoTo EDITTIME_ERROR", "GF/h DuplicateGoTo EDITTIME_ERROR" },
               { "GF/S/g Error", "GF/h Error" })

d:delete("GF/h")
expect.settles(d, "settled after deleting it", {}, {})

-- Renames in one batch with blocks that already show them: a subsystem renamed while a From
-- is added at its old path, and an older Goto moved into a subsystem renamed in the same batch.
-- Each block's path holds the renamed subsystem's old path, so a rename taken twice would move
-- it away from its pair; each pair stays in one system, as in two batches.
d:add("GF", "SubSystem", "P")
d:add("GF/P", "Goto", "w", { GotoTag = "B", TagVisibility = "local" })
d:add("GF/P", "SubSystem", "out")
expect.settles(d, "a local Goto alone", { "GF/P/w NoMatchingFrom EDITTIME_WARNING" })
d:batch(function(d)
  d:rename("GF/P/out", "in")
  d:add("GF/P", "From", "out", { GotoTag = "B" })
end)
expect.settles(d, "a From at a renamed subsystem's old path", {}, {})
d:add("GF", "Goto", "k", { GotoTag = "C", TagVisibility = "local" })
d:add("GF", "SubSystem", "Q")
d:add("GF/Q", "From", "j", { GotoTag = "C" })
expect.settles(d, "a pair split over two systems",
               { "GF/Q/j NoMatchingGoTO EDITTIME_WARNING", "GF/k NoMatchingFrom EDITTIME_WARNING" })
d:batch(function(d)
  d:move("GF/k", "GF/Q")
  d:rename("GF/Q", "Q2")
end)
expect.settles(d, "an older Goto moved into a subsystem renamed with it", {}, {})
print("interactive_gotofrom: ok")
