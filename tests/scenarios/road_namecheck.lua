-- The road of an edit under the rule auditor: a customization file in the preferences directory
-- selects the name check; a block given a prohibited name glows "Warn" and reports "RAWARNING",
-- renaming it clears both, and deleting a violating block leaves nothing behind. Then a model of
-- many system levels on view, put under the rule auditor, is scanned one level per cooperative
-- slice, and a script can watch the findings grow slice by slice.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")

local prefs = os.tmpname()
os.remove(prefs)
os.execute('mkdir -p "' .. prefs .. '"')
local f = assert(io.open(prefs .. "/edittimecheckcustomization.xml", "w"))
f:write([[<RAConfiguration><CheckCellArray><Check><ID>orvanta.kabe.kb_0402</ID>
<Selected>true</Selected><InputParameters><InputParameter Name="Regular expression for prohibited names:">
<Value>[ !]</Value></InputParameter></InputParameters></Check>
<Check><ID>orvanta.kabe.kb_0401</ID><Selected>false</Selected></Check></CheckCellArray></RAConfiguration>]])
f:close()
blockara.setPreferencesDirectory(prefs)

local d = blockara.new("Road", { auditor = true })
expect.eq(blockara.idle(), true, "idle after opening")
local selection = blockara.checkSelection()
expect.eq(selection["orvanta.kabe.kb_0402"], true, "name check selected")
expect.eq(selection["orvanta.kabe.kb_0401"], false, "name position not selected")

d:add("Road", "Gain", "gain")
d:add("Road", "Gain", "other")
expect.eq(blockara.idle(), true, "idle after adding")
d:rename("Road/gain", "gain 2!")
d:rename("Road/other", "other!")
expect.settles(d, "prohibited names", { "Road/gain 2! BlockNameViolation RAWARNING",
                                         "Road/other! BlockNameViolation RAWARNING" },
               { "Road/gain 2! Warn", "Road/other! Warn" })
expect.eq(d:violations()[1].checkId, "orvanta.kabe.kb_0402", "check ID")
d:rename("Road/gain 2!", "gain2")
d:delete("Road/other!")
expect.settles(d, "names fixed", {}, {})

local levels = 12
local s = blockara.new("Scan")
s:batch(function(s)
  for i = 1, levels do
    s:add("Scan", "SubSystem", "S" .. i)
    s:add("Scan/S" .. i, "Gain", "bad name " .. i)
  end
end)
for i = 1, levels do s:open("Scan/S" .. i) end
expect.settles(s, "findings before the rule auditor", {})
s:setAuditorMode(true)
bkedittimecheck.EditTimeController.getInstance():enableRA(s.name)
local seen = {}
while true do
  local what = blockara.step()
  if not what then break end
  if what == "task" then seen[#seen + 1] = #s:violations() end
end
expect.eq(#s:violations(), levels, "findings after the scan")
assert(#seen >= levels - 1, "expected about one slice per level, got " .. #seen)
for i = 2, #seen do assert(seen[i] >= seen[i - 1], "findings never shrink during the scan") end
assert(seen[1] < levels, "the first slice does not see the whole model")

os.remove(prefs .. "/edittimecheckcustomization.xml")
os.remove(prefs)
print("road_namecheck: ok")
