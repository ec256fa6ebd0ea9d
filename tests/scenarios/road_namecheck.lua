-- The road of an edit under the rule auditor: a customization file in the preferences directory
-- selects the name check; a block given a prohibited name glows "Warn" and reports "RAWARNING",
-- renaming it clears both, and deleting a violating block leaves nothing behind.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")

local prefs = os.tmpname()
os.remove(prefs)
os.execute('mkdir -p "' .. prefs .. '"')
local f = assert(io.open(prefs .. "/edittimecheckcustomization.xml", "w"))
f:write([[<?xml version="1.0"?>
<RAConfiguration><CheckCellArray>
  <Check><ID>orvanta.kabe.kb_0402</ID><Selected>true</Selected><InputParameters>
    <InputParameter Name="Regular expression for prohibited names:"><Value>[ !]</Value></InputParameter>
  </InputParameters></Check>
  <Check><ID>orvanta.kabe.kb_0401</ID><Selected>false</Selected></Check>
</CheckCellArray></RAConfiguration>
]])
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

os.remove(prefs .. "/edittimecheckcustomization.xml")
os.remove(prefs)
print("road_namecheck: ok")
