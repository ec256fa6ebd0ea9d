-- A Goto/From session: a From waits for its Goto, a local Goto in another system does not reach
-- it, a global one does, a second global Goto competes, and deleting it settles the diagram.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")

local d = blockara.new("GF")
d:add("GF", "SubSystem", "S")
d:add("GF", "From", "f", { GotoTag = "A" })
expect.eq(blockara.idle(), true, "idle after the From")
expect.lines(expect.findings(d), { "GF/f NoMatchingGoTO EDITTIME_WARNING" }, "a lone From")
expect.lines(expect.glows(d), { "GF/f Warn" }, "its glow")

d:add("GF/S", "Goto", "g", { GotoTag = "A", TagVisibility = "local" })
expect.eq(blockara.idle(), true, "idle after the local Goto")
expect.lines(expect.findings(d), {
  "GF/S/g NoMatchingFrom EDITTIME_WARNING",
  "GF/f NoMatchingGoTO EDITTIME_WARNING",
}, "a local Goto in another system")

d:set("GF/S/g", { TagVisibility = "global" })
expect.eq(blockara.idle(), true, "idle after making it global")
expect.lines(expect.findings(d), {}, "a global Goto reaches the From")
expect.lines(expect.glows(d), {}, "no glow")

d:add("GF", "Goto", "h", { GotoTag = "A", TagVisibility = "global" })
expect.eq(blockara.idle(), true, "idle after a second global Goto")
expect.lines(expect.findings(d), {
  "GF/S/g DuplicateGoTo EDITTIME_ERROR",
  "GF/h DuplicateGoTo EDITTIME_ERROR",
}, "two global Gotos of one tag")
expect.lines(expect.glows(d), { "GF/S/g Error", "GF/h Error" }, "their glows")

d:delete("GF/h")
expect.eq(blockara.idle(), true, "idle after deleting it")
expect.lines(expect.findings(d), {}, "settled")
expect.lines(expect.glows(d), {}, "no glow left")
print("interactive_gotofrom: ok")
