-- Every host-language function the engine calls is made, in turn, to raise, to answer short and
-- to answer with the wrong type. The engine keeps to its rules for each (a failed setup or
-- cleanup does not stop the engine or the close; a failed missing-variable question changes no
-- mark; a failed port-mapping question leaves the state with no declared data; a failed styling
-- loses that pass's glows) and the host works on once the function is back.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")

-- The three ways to misbehave: `short` is the answer with too little in it.
local function faulty(mode, short)
  return function()
    if mode == "raise" then error("injected fault", 0) end
    if mode == "short" then return short end
    return "not the answer"
  end
end
local modes = { "raise", "short", "wrong type" }

-- Replaces `name` of the loaded module `module` for the length of `fn`, which must call it.
local function with(module, name, replacement, fn)
  local m = package.loaded[module] or require(module)
  local original, calls = m[name], 0
  m[name] = function(...)
    calls = calls + 1
    return replacement(...)
  end
  local ok, err = pcall(fn)
  m[name] = original
  if not ok then error(err, 0) end
  expect.eq(calls > 0, true, module .. "." .. name .. " called")
end

-- Waits until `ready()` holds, running the main loop; for an engine that never rests again.
local function waitFor(ready, what)
  for _ = 1, 200 do
    if ready() then return end
    blockara.idle(0.1)
  end
  error("never happened: " .. what)
end

-- Setup and cleanup: whatever they do, the engine starts and checks, and the close completes.
local setup = "edittime.EditTimeCheckingSetup"
for i, mode in ipairs(modes) do
  local name = "S" .. i
  local d
  with(setup, "setup", faulty(mode), function()
    d = blockara.new(name)
    d:add(name, "From", "f", { GotoTag = "A" })
  end)
  expect.eq(blockara.idle(), true, mode .. " setup: idle")
  expect.lines(expect.findings(d), { name .. "/f NoMatchingGoTO EDITTIME_WARNING" },
               mode .. " setup: the engine checks")
  with(setup, "cleanup", faulty(mode), function() d:close() end)
  expect.eq(blockara.diagram(name), nil, mode .. " cleanup: closed")
  expect.eq(blockara.idle(), true, mode .. " cleanup: idle")
end

-- The missing-variable question: a failed answer changes no mark, whatever the workspace says.
blockara.workspace.Kp = 1
local mv = blockara.new("MV")
mv:add("MV", "Gain", "p")
mv:add("MV", "Gain", "q")
mv:set("MV/p", { Gain = "Kp * Ki" })
mv:set("MV/q", { Gain = "Kp" })
expect.eq(blockara.idle(), true, "idle after the gains")
local marked = { "MV/p BlockEditTimeMissingParams EDITTIME_ERROR" }
expect.lines(expect.findings(mv), marked, "Ki is missing")
blockara.workspace.Ki = 2
for _, mode in ipairs(modes) do
  with("Blockara.BlockEditTimeController", "findMissingVariable",
       faulty(mode, nx.array("logical", 1, 1, { false })), function()
    mv:workspaceChanged()
    expect.eq(blockara.idle(), true, mode .. " missing variable: idle")
  end)
  expect.lines(expect.findings(mv), marked, mode .. " missing variable: the mark stays")
end
mv:workspaceChanged()
expect.eq(blockara.idle(), true, "missing variable back: idle")
expect.lines(expect.findings(mv), {}, "missing variable back: the mark goes")

-- The port-mapping question: a state whose answer failed declares nothing, so its ports are
-- unmapped; a short answer declares only what it holds.
local ch = blockara.new("CH")
ch:add("CH", "Chart", "chart")
local data = { { name = "speed", scope = "Input" }, { name = "torque", scope = "Output" } }
ch:add("CH/chart", "SubSystem", "state", { SubsystemType = 8, StateData = data })
ch:add("CH/chart/state", "Inport", "speed")
ch:add("CH/chart/state", "Outport", "torque")
expect.eq(blockara.idle(), true, "idle after the ports")
expect.lines(expect.findings(ch), {}, "every port mapped")
local unmapped = {
  raise = { "speed", "torque" },
  short = { "torque" },
  ["wrong type"] = { "speed", "torque" },
}
local speedOnly = nx.array("struct", 1, 1, { { dataName = "speed", dataScope = "input" } })
for _, mode in ipairs(modes) do
  with("Chartelle.BKINCE.BlockaraMan", "getPortMappingInfo", faulty(mode, speedOnly), function()
    ch:set("CH/chart/state", { StateData = data })  -- the state's answer is asked afresh
    expect.eq(blockara.idle(), true, mode .. " port mapping: idle")
  end)
  local lines = {}
  for _, port in ipairs(unmapped[mode]) do
    lines[#lines + 1] = "CH/chart/state/" .. port .. " BlockaraStateUnmappedPort EDITTIME_ERROR"
  end
  expect.lines(expect.findings(ch), lines, mode .. " port mapping: ports unmapped")
end
ch:set("CH/chart/state", { StateData = data })
expect.eq(blockara.idle(), true, "port mapping back: idle")
expect.lines(expect.findings(ch), {}, "port mapping back: every port mapped")

-- Styling: an answer is not wanted, so short and wrong ones style as usual. A raising one loses
-- that pass's glows while the findings stand; the engine's count of unstyled passes stays up
-- (it never rests again), so this comes last. The next pass styles everything.
local st = blockara.new("ST")
local styler = "edittime.Styler"
local original = require(styler).applyStyle
for i, mode in ipairs({ "short", "wrong type", "raise" }) do
  local calls = 0
  local bad = faulty(mode)
  with(styler, "applyStyle", function(name, id)
    calls = calls + 1
    if mode ~= "raise" then original(name, id) end
    return bad()
  end, function()
    st:add("ST", "From", "f" .. i, { GotoTag = "T" .. i })
    waitFor(function() return calls > 0 end, mode .. " styling: asked")
    if mode ~= "raise" then expect.eq(blockara.idle(), true, mode .. " styling: idle") end
  end)
  local glows = {}
  for j = 1, mode == "raise" and i - 1 or i do glows[#glows + 1] = "ST/f" .. j .. " Warn" end
  expect.lines(expect.glows(st), glows, mode .. " styling: glows")
  expect.eq(#st:violations(), i, mode .. " styling: findings")
end
st:add("ST", "Gain", "g")
st:set("ST/g", { Gain = "2" })
waitFor(function() return expect.glows(st)[3] ~= nil end, "styling back: the lost glow")
expect.lines(expect.glows(st), { "ST/f1 Warn", "ST/f2 Warn", "ST/f3 Warn" }, "styling back")
print("engine_hostfaults: ok")
