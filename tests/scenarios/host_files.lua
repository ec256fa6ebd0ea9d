-- Save and load keep every property, for .bkd files and .bkdx packages with extra parts.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")
local dir = os.getenv("TMPDIR") or "/tmp"
local stamp = tostring(os.time()) .. tostring(math.random(1, 1 << 30))

local props = { "Position", "Orientation", "ShowName", "NamePlacement", "MaskType",
                "MaskInitialization", "MaskParameters", "LinkStatus", "ReferenceBlock", "Gain",
                "Value", "GotoTag", "TagVisibility", "DataStoreName", "StateOwnerBlock", "Port",
                "IconDisplay", "Variant", "SubsystemType", "TreatAsAtomicUnit", "FunctionPackaging",
                "IsBlockaraFunction", "StateData", "InitialCondition" }

local d = blockara.new("Files", { auditor = true })
d:add("Files", "SubSystem", "Sub", { MaskType = "Filter", MaskInitialization = "x = 1",
      MaskParameters = 2, TreatAsAtomicUnit = "on", FunctionPackaging = "Reusable function",
      Position = { 10, 20, 60, 40 } })
d:add("Files/Sub", "Goto", "Tag", { GotoTag = "A", TagVisibility = "scoped", Orientation = "left" })
d:add("Files/Sub", "From", "FromA", { GotoTag = "A", ShowName = "off", NamePlacement = "alternate" })
d:add("Files", "DataStoreMemory", "Mem", { DataStoreName = "ds" })
d:add("Files", "StateReader", "Reader", { StateOwnerBlock = "Files/Delay" })
d:add("Files", "UnitDelay", "Delay", { InitialCondition = "0.5" })
d:add("Files", "Gain", "Linked", { LinkStatus = "resolved", ReferenceBlock = "lib/Gain" })
d:add("Files", "Inport", "In1", { IconDisplay = "Signal name" })
d:add("Files", "SubSystem", "State", { SubsystemType = 8, StateData = { { name = "x", scope = "Local" } } })
d:comment("Files/Mem", "through")
d:setModelParam("UniqueDataStoreMsg", "error")
d:setExclusionFile("/some/where/exclusions.xml")
local before = expect.snapshot(d, props)

for _, ext in ipairs({ ".bkd", ".bkdx" }) do
  local file = dir .. "/files-" .. stamp .. ext
  d:setPart("/auditor/exclusions.xml", "<customizationExclusions/>")
  d:save(file)
  d:close()
  d = blockara.load(file)
  expect.sameSnapshot(before, expect.snapshot(d, props))
  os.remove(file)
end
print("host_files: ok")
