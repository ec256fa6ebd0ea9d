-- A missing-variable session: gains that name variables the workspace lacks are marked (numbers,
-- quoted text, Lua's functions and math names and fields after "." are no variables); the user
-- defines them, the workspace signal refreshes the checks, and the marks go.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")

blockara.workspace.Kp = 0.5
local d = blockara.new("MV")
for _, name in ipairs({ "p", "i", "f", "c" }) do d:add("MV", "Gain", name) end
expect.eq(blockara.idle(), true, "idle after adding")
-- An added block is asked about once it changes (or once its system is scanned again).
d:set("MV/p", { Gain = "Kp * 1e-3 + max(Kp, pi) + tostring(2) + 'Ki'" })
d:set("MV/i", { Gain = "Kp * Ki" })
d:set("MV/f", { Gain = "s.field" })
expect.eq(blockara.idle(), true, "idle after setting the gains")
expect.lines(expect.findings(d), {
  "MV/f BlockEditTimeMissingParams EDITTIME_ERROR",
  "MV/i BlockEditTimeMissingParams EDITTIME_ERROR",
}, "Ki and s are not defined")
expect.lines(expect.glows(d), { "MV/f Error", "MV/i Error" }, "their glows")

blockara.workspace.Ki, blockara.workspace.s = 0.1, { field = 1 }
d:workspaceChanged()
expect.eq(blockara.idle(), true, "idle after the workspace signal")
expect.lines(expect.findings(d), {}, "both defined now")
expect.lines(expect.glows(d), {}, "no glow left")
print("interactive_missingvariable: ok")
