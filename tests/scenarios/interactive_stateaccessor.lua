-- A state accessor session on the road: a writer below its owner is allowed; an event listener
-- added later makes the writer's subsystem iterate, and the next pass reports the writer. Where
-- accessors stand against their owners case by case is the cross-block check bench's.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")

local d = blockara.new("SA")
d:add("SA", "UnitDelay", "u")
d:add("SA", "SubSystem", "S")
d:add("SA/S", "StateWriter", "w", { StateOwnerBlock = "../u" })
d:add("SA", "StateReader", "r", { StateOwnerBlock = "SA/u" })
expect.settles(d, "a reader beside its owner, a writer below it",
               { "SA/r StateAccessorAndStateOwnerInSameSystem EDITTIME_ERROR" }, { "SA/r Error" })

d:delete("SA/r")
d:add("SA/S", "EventListener", "el")
d:set("SA/S/w", { StateOwnerBlock = "../u" })
expect.settles(d, "the writer iterates, its owner does not",
               { "SA/S/w StateAccessorInImplicitIterator EDITTIME_ERROR" }, { "SA/S/w Error" })
print("interactive_stateaccessor: ok")
