-- A model of many system levels on view is scanned one level per cooperative slice, and a
-- script can watch the findings grow slice by slice.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")
local dir = os.getenv("TMPDIR") or "/tmp"
local prefs = dir .. "/scan-progress-" .. tostring(os.time()) .. tostring(math.random(1, 1 << 30))
os.execute('mkdir -p "' .. prefs .. '"')
blockara.setPreferencesDirectory(prefs)  -- the installed customization file applies

local levels = 12
local d = blockara.new("Scan")
d:batch(function(d)
  for i = 1, levels do
    d:add("Scan", "SubSystem", "S" .. i)
    d:add("Scan/S" .. i, "Gain", "bad name " .. i .. "!")
  end
end)
for i = 1, levels do d:open("Scan/S" .. i) end
blockara.idle()
expect.eq(#d:violations(), 0, "findings before the rule auditor")

local c = bkedittimecheck.EditTimeController.getInstance()
d:setAuditorMode(true)
c:enableRA(d.name)

local slices, seen = 0, {}
while true do
  local what = blockara.step()
  if not what then break end
  if what == "task" then
    slices = slices + 1
    seen[#seen + 1] = #d:violations()
  end
end
expect.eq(#d:violations(), levels, "findings after the scan")
assert(slices >= levels - 1, "expected about one slice per level, got " .. slices)
for i = 2, #seen do
  assert(seen[i] >= seen[i - 1], "findings never shrink during the scan")
end
assert(seen[1] < levels, "the first slice does not see the whole model")
os.execute('rm -rf "' .. prefs .. '"')
print("engine_scan_progress: ok, " .. slices .. " slices")
