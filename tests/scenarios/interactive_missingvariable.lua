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
expect.settles(d, "Ki and s are not defined", {
  "MV/f BlockEditTimeMissingParams EDITTIME_ERROR",
  "MV/i BlockEditTimeMissingParams EDITTIME_ERROR",
}, { "MV/f Error", "MV/i Error" })

blockara.workspace.Ki, blockara.workspace.s = 0.1, { field = 1 }
d:workspaceChanged()
expect.settles(d, "both defined now", {}, {})
print("interactive_missingvariable: ok")
