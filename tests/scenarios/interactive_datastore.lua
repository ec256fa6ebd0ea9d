-- A data store session: two data stores of one name in different systems are reported as the
-- diagram's "UniqueDataStoreMsg" asks, the setting reaching the engine through the host
-- language's model parameter hook. Duplicates within one system are the cross-block check
-- bench's.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")

local d = blockara.new("DS")
d:add("DS", "SubSystem", "S")
d:add("DS", "DataStoreMemory", "a", { DataStoreName = "A" })
d:add("DS/S", "DataStoreMemory", "b", { DataStoreName = "A" })
expect.settles(d, "setting none", {})
for _, setting in ipairs({ { "warning", "WARNING", "Warn" }, { "error", "ERROR", "Error" },
                           { "none" } }) do
  d:setModelParam("UniqueDataStoreMsg", setting[1])
  local findings, glows = {}, {}
  if setting[2] then
    findings = { "DS/S/b DuplicateDataStoreMemoryBlocksDiagnostic EDITTIME_" .. setting[2],
                 "DS/a DuplicateDataStoreMemoryBlocksDiagnostic EDITTIME_" .. setting[2] }
    glows = { "DS/S/b " .. setting[3], "DS/a " .. setting[3] }
  end
  expect.settles(d, "setting " .. setting[1], findings, glows)
end
print("interactive_datastore: ok")
