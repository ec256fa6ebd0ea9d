-- A chart with a Blockara-based state: ports that match the declared data, a port of the wrong
-- direction and one that is not declared; declaring the data settles the state.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")

local d = blockara.new("CH")
d:add("CH", "Chart", "chart")
d:add("CH/chart", "SubSystem", "state", { SubsystemType = 8, StateData = {
  { name = "speed", scope = "Input" }, { name = "torque", scope = "Output" },
  { name = "mode", scope = "Local" },
} })
d:add("CH/chart/state", "Inport", "speed")
d:add("CH/chart/state", "Outport", "torque")
d:add("CH/chart/state", "Outport", "mode")
d:add("CH/chart/state", "Inport", "load")
expect.settles(d, "one port undeclared, one of a local datum", {
  "CH/chart/state/load BlockaraStateUnmappedPort EDITTIME_ERROR",
  "CH/chart/state/mode BlockaraStateMismappedPort EDITTIME_ERROR",
}, { "CH/chart/state/load Error", "CH/chart/state/mode Error" })

d:set("CH/chart/state", { StateData = {
  { name = "speed", scope = "Input" }, { name = "torque", scope = "Output" },
  { name = "mode", scope = "Output" }, { name = "load", scope = "Input" },
} })
expect.settles(d, "every port mapped", {}, {})
print("interactive_chartports: ok")
