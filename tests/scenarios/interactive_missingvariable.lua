-- A missing-variable session: a gain that names a variable the workspace lacks is marked; the
-- user defines it, the workspace signal refreshes the checks, and the mark goes.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")

blockara.workspace.Kp = 0.5
local d = blockara.new("MV")
d:add("MV", "Gain", "p")
d:add("MV", "Gain", "i")
expect.eq(blockara.idle(), true, "idle after adding")
-- An added block is asked about once it changes (or once its system is scanned again).
d:set("MV/p", { Gain = "Kp" })
d:set("MV/i", { Gain = "Kp * Ki + sqrt(2)" })
expect.eq(blockara.idle(), true, "idle after setting the gains")
expect.lines(expect.findings(d), {
  "MV/i BlockEditTimeMissingParams EDITTIME_ERROR",
}, "Ki is not defined")
expect.lines(expect.glows(d), { "MV/i Error" }, "its glow")

blockara.workspace.Ki = 0.1
d:workspaceChanged()
expect.eq(blockara.idle(), true, "idle after the workspace signal")
expect.lines(expect.findings(d), {}, "Ki is defined now")
expect.lines(expect.glows(d), {}, "no glow left")
print("interactive_missingvariable: ok")
