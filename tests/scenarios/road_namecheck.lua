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
expect.eq(blockara.idle(), true, "idle after renaming")

local v = d:violations()
expect.eq(#v, 2, "violations after the prohibited names")
expect.eq(v[1].path, "Road/gain 2!", "first path")
expect.eq(v[1].type, "BlockNameViolation", "type")
expect.eq(v[1].checkId, "orvanta.kabe.kb_0402", "check ID")
expect.eq(v[1].category, "RAWARNING", "category")
expect.eq(v[2].path, "Road/other!", "second path")
expect.eq(d:styles()["Road/gain 2!"], "Warn", "glow of the badly named gain")
expect.eq(d:styles()["Road/other!"], "Warn", "glow of the other block")

d:rename("Road/gain 2!", "gain2")
d:delete("Road/other!")
expect.eq(blockara.idle(), true, "idle after fixing")
expect.eq(#d:violations(), 0, "no violations left")
expect.eq(next(d:styles()), nil, "no glow left")

os.remove(prefs .. "/edittimecheckcustomization.xml")
os.remove(prefs)
print("road_namecheck: ok")
