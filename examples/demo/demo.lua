-- The Blockara demonstration: opens the demo model under the rule auditor, makes a few edits a
-- user would make, shows what the edit-time checker reports and which blocks glow after each
-- step, and writes an HTML report (one drawing per system level, glows included) and a SARIF log.
-- Run: blockara demo [--out DIR]   (arg[1] = output folder, arg[2] = this folder)
local out, here = arg[1] or "blockara-demo", arg[2] or "."
os.execute('mkdir -p "' .. out .. '/prefs"')
-- An empty preferences folder: the installed customization file selects the checks.
blockara.setPreferencesDirectory(out .. "/prefs")

local function show(title, d)
  print("== " .. title)
  local shown = 0
  for _, f in ipairs(blockara.findings(d)) do
    if f.rationale then
      print(string.format("   %-34s exempt from %s: %s", f.path, f.checkId, f.rationale))
    else
      shown = shown + 1
      print(string.format("   %-34s %s", f.path, f.message))
      print(string.format("      %s [%s, %s]", f.hint, f.checkId, f.category))
    end
  end
  if shown == 0 then print("   no findings") end
  local styles, paths = d:styles(), {}
  for path in pairs(styles) do paths[#paths + 1] = path end
  table.sort(paths)
  for _, path in ipairs(paths) do print(string.format("   glow %-29s %s", path, styles[path])) end
end

local d = blockara.load(here .. "/plant.bkd", { auditor = true })
d:open("Plant/Controller")  -- a second window, on the controller
blockara.idle()
show("opened " .. d.name .. " with editors on Plant and Plant/Controller", d)

d:batch(function(d)
  d:add("Plant/Controller", "Gain", "gain 2!", { Gain = "0.1", Position = { 90, 150, 30, 30 } })
  d:set("Plant/Actuator", { Orientation = "down" })
  d:add("Plant", "Scope", "Scope", { Position = { 470, 100, 30, 30 } })
end)
-- New blocks are checked when their system is next scanned: the user clicks into each window.
d:focus("Plant")
d:focus("Plant/Controller")
blockara.idle()
show("after adding a badly named gain, turning a subsystem and adding a scope", d)

d:rename("Plant/Controller/gain 2!", "Kd")
d:set("Plant/Actuator", { Orientation = "right" })
d:delete("Plant/Scope")
blockara.idle()
show("after fixing all three", d)

d:set("Plant/Controller/In1", { IconDisplay = "Signal name" })
d:rename("Plant/Actuator", "Actuator (fast)")
blockara.idle()
show("after showing a port's signal name and renaming a subsystem badly", d)

-- The interactive checks, which run whenever edit-time issues are shown: a From without its
-- Goto, a second data store of one name, a state reader beside its owner, a chart state port
-- that the chart does not declare, and a gain that names a variable the workspace lacks.
d:batch(function(d)
  d:add("Plant", "From", "Disturbance", { GotoTag = "dist", Position = { 40, 160, 40, 20 } })
  d:add("Plant", "DataStoreMemory", "StateCopy",
        { DataStoreName = "plantState", Position = { 230, 120, 60, 30 } })
  d:add("Plant/Actuator (fast)", "StateReader", "LagReader",
        { StateOwnerBlock = "Plant/Actuator (fast)/Lag", Position = { 90, 95, 40, 30 } })
  d:add("Plant", "Chart", "Mode", { Position = { 400, 110, 60, 40 } })
  d:add("Plant/Mode", "SubSystem", "Active", { SubsystemType = 8,
        StateData = { { name = "gain", scope = "Input" } }, Position = { 40, 40, 60, 40 } })
  d:add("Plant/Mode/Active", "Inport", "gain", { Port = "1", Position = { 20, 40, 30, 14 } })
  d:add("Plant/Mode/Active", "Inport", "offset", { Port = "2", Position = { 20, 80, 30, 14 } })
end)
d:set("Plant/Controller/Kp", { Gain = "Kp_tuned" })
blockara.idle()
show("after a lone From, a second store, a reader beside its owner, an undeclared chart port and an undefined gain", d)

blockara.workspace.Kp_tuned = 2.5
d:workspaceChanged()
blockara.idle()
show("after defining Kp_tuned in the workspace", d)

-- A configuration with a data-driven rule instead of the default checks: every Gain must
-- saturate on integer overflow. Then one gain is fixed.
bkedittimecheck.EditTimeController.getInstance():switchConfiguration(here .. "/constraints.xml",
                                                                     d.name)
blockara.idle()
show("under a configuration whose one rule asks every Gain to saturate on overflow", d)
-- A reviewed exemption: Kp stays as it is, for the rationale written in the exclusions file.
-- Its finding no longer glows; the SARIF log keeps it as a suppressed result.
d:setExclusionFile(here .. "/exclusions.xml")
bkedittimecheck.EditTimeController.getInstance():refreshExclusions(d.name)
blockara.idle()
show("after exempting Kp in exclusions.xml", d)
d:set("Plant/Controller/Kd", { SaturateOnIntegerOverflow = "on" })
blockara.idle()
show("after making Kd saturate", d)

blockara.report(d, "html", out .. "/report.html")
blockara.report(d, "sarif", out .. "/findings.sarif")
print("report: " .. out .. "/report.html")
print("SARIF:  " .. out .. "/findings.sarif")
