-- A data store session: two data stores of one name in different systems are reported as the
-- diagram's "UniqueDataStoreMsg" asks; a third in the same system as one of them is a duplicate
-- whatever the setting.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")

local d = blockara.new("DS")
d:add("DS", "SubSystem", "S")
d:add("DS", "DataStoreMemory", "a", { DataStoreName = "A" })
d:add("DS/S", "DataStoreMemory", "b", { DataStoreName = "A" })
expect.eq(blockara.idle(), true, "idle after two stores")
expect.lines(expect.findings(d), {}, "setting none")

d:setModelParam("UniqueDataStoreMsg", "warning")
expect.eq(blockara.idle(), true, "idle after warning")
expect.lines(expect.findings(d), {
  "DS/S/b DuplicateDataStoreMemoryBlocksDiagnostic EDITTIME_WARNING",
  "DS/a DuplicateDataStoreMemoryBlocksDiagnostic EDITTIME_WARNING",
}, "setting warning")
expect.lines(expect.glows(d), { "DS/S/b Warn", "DS/a Warn" }, "warning glows")

d:setModelParam("UniqueDataStoreMsg", "error")
expect.eq(blockara.idle(), true, "idle after error")
expect.lines(expect.findings(d), {
  "DS/S/b DuplicateDataStoreMemoryBlocksDiagnostic EDITTIME_ERROR",
  "DS/a DuplicateDataStoreMemoryBlocksDiagnostic EDITTIME_ERROR",
}, "setting error")
expect.lines(expect.glows(d), { "DS/S/b Error", "DS/a Error" }, "error glows")

d:setModelParam("UniqueDataStoreMsg", "none")
d:add("DS/S", "DataStoreMemory", "c", { DataStoreName = "A" })
expect.eq(blockara.idle(), true, "idle after a third store")
expect.lines(expect.findings(d), {
  "DS/S/b DuplicateDataStoreMemoryBlocksSameGraph EDITTIME_ERROR",
  "DS/S/c DuplicateDataStoreMemoryBlocksSameGraph EDITTIME_ERROR",
}, "one system, setting none")

d:set("DS/S/c", { DataStoreName = "C" })
expect.eq(blockara.idle(), true, "idle after renaming the store")
expect.lines(expect.findings(d), {}, "settled")
print("interactive_datastore: ok")
