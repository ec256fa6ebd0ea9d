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
print("interactive_gotofrom: ok")
