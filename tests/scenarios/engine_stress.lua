-- Diagrams opened, edited in batches, undone, renamed, reconfigured (a new customization file,
-- feature and preference switches, the data store diagnostic) and closed, while the worker runs
-- its passes on its own thread: the script pumps the main loop only now and then. Built with the
-- thread sanitizer this must stay clean; in every build the engine must come to rest and a last
-- diagram must get exactly its findings. `arg[1]` sets the number of rounds (the long run); the
-- counts of operations are printed at the end.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")

local rounds = tonumber(arg[1] or "") or 12
local prefs = os.tmpname()
os.remove(prefs)
os.execute('mkdir -p "' .. prefs .. '"')
blockara.setPreferencesDirectory(prefs)

local count = { opened = 0, edits = 0, batches = 0, undos = 0, renames = 0, reconfigured = 0, closed = 0 }

-- A new customization file: the name checks on or off, so that tables change between diagrams.
local function reconfigure(r)
  local on = r % 2 == 0 and "true" or "false"
  local f = assert(io.open(prefs .. "/edittimecheckcustomization.xml", "w"))
  f:write('<?xml version="1.0"?>\n<RAConfiguration><CheckCellArray>' ..
          '<Check><ID>orvanta.kabe.kb_0402</ID><Selected>' .. on .. '</Selected><InputParameters>' ..
          '<InputParameter Name="Regular expression for prohibited names:"><Value>[ !]</Value>' ..
          '</InputParameter></InputParameters></Check>' ..
          '<Check><ID>orvanta.codegen.BlockNames</ID><Selected>true</Selected></Check>' ..
          '</CheckCellArray></RAConfiguration>\n')
  f:close()
  blockara.feature("BlockParamEditTimeCheckOnCanvas", r % 2)
  blockara.feature("ShowMissingVarsAtEditTime", r % 4)
  count.reconfigured = count.reconfigured + 1
end

-- One batch of edits of every kind the checks follow, in system `sys` of diagram `d`; `r` makes
-- the names.
local function edits(d, sys, r)
  d:batch(function(d)
    for i = 1, 6 do
      local n = r .. "_" .. i
      d:add(sys, "Goto", "go" .. n, { GotoTag = "T" .. (i % 3), TagVisibility = "global" })
      d:add(sys, "From", "from " .. n, { GotoTag = "T" .. (i % 4) })
      d:add(sys, "DataStoreMemory", "mem" .. n, { DataStoreName = "M" .. (i % 2) })
      d:add(sys, "Gain", "g!" .. n, { Gain = i % 2 == 0 and "Kp" or "2" })
      count.edits = count.edits + 4
    end
    d:rename(sys .. "/go" .. r .. "_1", "went" .. r)
    d:comment(sys .. "/mem" .. r .. "_2", "out")
    d:delete(sys .. "/from " .. r .. "_3")
    d:set(sys .. "/g!" .. r .. "_4", { Gain = "Ki" })
    count.edits = count.edits + 4
  end)
  count.batches = count.batches + 1
end

local open = {}
for r = 1, rounds do
  if r % 3 == 1 then reconfigure(r) end
  local name = "Stress" .. r
  local d = blockara.new(name, { auditor = r % 2 == 0 })
  count.opened = count.opened + 1
  d:add(name, "SubSystem", "S")
  edits(d, name, r)
  edits(d, name .. "/S", r .. "s")
  d:move(name .. "/g!" .. r .. "_2", name .. "/S")
  d:rename(name .. "/S", "T")
  d:setModelParam("UniqueDataStoreMsg", ({ "none", "warning", "error" })[r % 3 + 1])
  count.edits = count.edits + 4
  if r % 2 == 0 then
    d:undo()
    d:redo()
    count.undos = count.undos + 2
  end
  if r % 4 == 0 then blockara.idle(0.05) end
  d:renameDiagram(name .. "r")
  count.renames = count.renames + 1
  open[#open + 1] = d
  -- Two diagrams stay open while the next ones are edited; the oldest closes.
  if #open > 2 then
    table.remove(open, 1):close()
    count.closed = count.closed + 1
  end
end
for _, d in ipairs(open) do
  d:close()
  count.closed = count.closed + 1
end
expect.eq(blockara.idle(60), true, "at rest after the rounds")

-- The engine still answers as on a fresh start.
blockara.setPreference("ShowEditTimeIssues", true)
local d = blockara.new("After")
d:add("After", "From", "f", { GotoTag = "Z" })
expect.settles(d, "a lone From after the stress", { "After/f NoMatchingGoTO EDITTIME_WARNING" },
               { "After/f Warn" })
d:close()

os.remove(prefs .. "/edittimecheckcustomization.xml")
os.remove(prefs)
local parts = {}
for _, k in ipairs({ "opened", "edits", "batches", "undos", "renames", "reconfigured", "closed" }) do
  parts[#parts + 1] = k .. "=" .. count[k]
end
print("engine_stress: ok rounds=" .. rounds .. " " .. table.concat(parts, " "))
