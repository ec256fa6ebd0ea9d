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
expect.eq(blockara.idle(), true, "idle after the ports")
expect.lines(expect.findings(d), {
  "CH/chart/state/load BlockaraStateUnmappedPort EDITTIME_ERROR",
  "CH/chart/state/mode BlockaraStateMismappedPort EDITTIME_ERROR",
}, "one port undeclared, one of a local datum")
expect.lines(expect.glows(d), {
  "CH/chart/state/load Error", "CH/chart/state/mode Error",
}, "their glows")

d:set("CH/chart/state", { StateData = {
  { name = "speed", scope = "Input" }, { name = "torque", scope = "Output" },
  { name = "mode", scope = "Output" }, { name = "load", scope = "Input" },
} })
expect.eq(blockara.idle(), true, "idle after declaring the data")
expect.lines(expect.findings(d), {}, "every port mapped")
expect.lines(expect.glows(d), {}, "no glow left")
print("interactive_chartports: ok")
