-- A data store session: two data stores of one name in different systems are reported as the
-- diagram's "UniqueDataStoreMsg" asks; a third in the same system as one of them is a duplicate
-- whatever the setting.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")

local d = blockara.new("DS")
d:add("DS", "SubSystem", "S")
d:add("DS", "DataStoreMemory", "a", { DataStoreName = "A" })
d:add("DS/S", "DataStoreMemory", "b", { DataStoreName = "A" })
expect.settles(d, "setting none", {})

for _, setting in ipairs({ { "warning", "WARNING", "Warn" }, { "error", "ERROR", "Error" } }) do
  d:setModelParam("UniqueDataStoreMsg", setting[1])
  expect.settles(d, "setting " .. setting[1], {
    "DS/S/b DuplicateDataStoreMemoryBlocksDiagnostic EDITTIME_" .. setting[2],
    "DS/a DuplicateDataStoreMemoryBlocksDiagnostic EDITTIME_" .. setting[2],
  }, { "DS/S/b " .. setting[3], "DS/a " .. setting[3] })
end

d:setModelParam("UniqueDataStoreMsg", "none")
d:add("DS/S", "DataStoreMemory", "c", { DataStoreName = "A" })
expect.settles(d, "one system, setting none", {
  "DS/S/b DuplicateDataStoreMemoryBlocksSameGraph EDITTIME_ERROR",
  "DS/S/c DuplicateDataStoreMemoryBlocksSameGraph EDITTIME_ERROR",
})

d:set("DS/S/c", { DataStoreName = "C" })
expect.settles(d, "settled after renaming the store", {})
print("interactive_datastore: ok")
