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

-- The question as the engine asks it, in each form a script may give the handles: a handle of 0
-- or of no block is answered false, and each distinct text is tested once per call.
blockara.workspace.Ki = nil
local M = require("Blockara.BlockEditTimeController")
local p, i = d:block("MV/p").handle, d:block("MV/i").handle
local function row(answer)
  local out = {}
  for k, v in ipairs(answer:totable()) do out[k] = v and "1" or "0" end
  return table.concat(out)
end
expect.eq(row(M.findMissingVariable(i, "MV")), "1", "one handle")
expect.eq(row(M.findMissingVariable({ p, i, 0, 0.5 }, "MV")), "0100", "a list")
expect.eq(row(M.findMissingVariable(nx.array("double", 1, 4, { p, i, 0, 0.5 }), "MV")), "0100", "an array")
expect.eq(row(M.findMissingVariable(nx.array("uint32", 1, 2, { 0, 7 }), "MV")), "00", "an array of integers")
d:delete("MV/i")  -- kept for undo, so its handle still resolves, but to no diagram
expect.eq(row(M.findMissingVariable({ i }, "MV")), "0", "a deleted block")
d:undo()
local asked = 0
local answer = blockara.expressionAnswers({ i, i, p }, function(text)
  asked = asked + 1
  return text == "Kp * Ki"
end)
expect.eq(row(answer) .. " " .. asked, "110 2", "each text asked once")
expect.fails(function()
  blockara.expressionAnswers({ i }, function() error("no workspace") end)
end, "no workspace", "an error of the test goes up")
print("interactive_missingvariable: ok")
