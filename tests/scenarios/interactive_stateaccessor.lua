-- A state accessor session: a reader beside its owner, the owner moved below the reader's
-- system, a relative owner path, and a reader inside an iterating subsystem.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")

local d = blockara.new("SA")
d:add("SA", "UnitDelay", "u")
d:add("SA", "SubSystem", "S")
d:add("SA/S", "UnitDelay", "v")
d:add("SA", "StateReader", "r", { StateOwnerBlock = "SA/u" })
expect.settles(d, "reader and owner in one system",
               { "SA/r StateAccessorAndStateOwnerInSameSystem EDITTIME_ERROR" }, { "SA/r Error" })

d:set("SA/r", { StateOwnerBlock = "SA/S/v" })
expect.settles(d, "the owner below the reader's system",
               { "SA/r StateOwnerInsideStateAccessorSystem EDITTIME_ERROR" })

-- A writer in S naming the root's u relatively: it stands below its owner, which is allowed.
d:add("SA/S", "StateWriter", "w", { StateOwnerBlock = "../u" })
d:set("SA/r", { StateOwnerBlock = "" })
expect.settles(d, "no owner, and an owner above", {})

-- An event listener makes its subsystem iterate: the writer inside and its owner outside.
d:add("SA/S", "EventListener", "el")
d:set("SA/S/w", { StateOwnerBlock = "../u" })
expect.settles(d, "the writer iterates, its owner does not",
               { "SA/S/w StateAccessorInImplicitIterator EDITTIME_ERROR" })
print("interactive_stateaccessor: ok")
