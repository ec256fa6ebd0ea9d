-- A diagram's exclusions, from the part of its package and from a file of its own: an exempted
-- rule-auditor finding loses its glow and its report, and comes back when the rule goes.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")
local dir = os.getenv("TMPDIR") or "/tmp"
local stamp = tostring(os.time()) .. tostring(math.random(1, 1 << 30))
local controller = bkedittimecheck.EditTimeController.getInstance()

local function exclusions(entries)
  local xml = { "<rsccat><SystemList><System><ExclusionList>" }
  for _, e in ipairs(entries) do
    xml[#xml + 1] = '<Exclusion Rationale="reviewed"><RuleList><Rule Type="' .. e.type ..
        '" SID="off" RegExp="off"><paramValue>' .. e.path .. '</paramValue></Rule></RuleList>' ..
        '<CheckIDList><CheckID>' .. e.check .. '</CheckID></CheckIDList></Exclusion>'
  end
  xml[#xml + 1] = "</ExclusionList></System></SystemList></rsccat>"
  return table.concat(xml)
end

local function glow(d, path) return d:styles()[path] end
local function write(path, text) local f = assert(io.open(path, "w")) f:write(text) f:close() end

local nameRule = "orvanta.kabe.kb_0402"
local d = blockara.new("Ex", { auditor = true })
d:add("Ex", "Gain", "bad-name")
d:add("Ex", "Gain", "worse-name")
d:add("Ex", "SubSystem", "Sub")
d:setPart("/auditor/exclusions.xml", exclusions({
  { type = "Block", path = "bad-name", check = nameRule },
  { type = "Subsystem", path = "Sub", check = nameRule },
}))
local file = dir .. "/exclusions-" .. stamp .. ".bkdx"
d:save(file)
d:close()

-- Opened from its package under the rule auditor: the part is read when the checks start.
d = blockara.load(file, { auditor = true })
os.remove(file)
expect.settles(d, "the exempted finding has no glow and no report",
               { "Ex/worse-name BlockNameViolation RAWARNING" }, { "Ex/worse-name Warn" })
local published = blockara.ceExclusions("Ex")
expect.eq(published["Ex/Sub"][1], nameRule, "published subsystem exclusion")
expect.eq(published["Ex/bad-name"], nil, "a block rule is not published")

-- The rule goes from the part: after the refresh the glow is back.
d:setPart("/auditor/exclusions.xml", exclusions({
  { type = "Subsystem", path = "Sub", check = nameRule },
}))
controller:refreshExclusions("Ex")
expect.eq(glow(d, "Ex/bad-name"), "Warn", "glow after the rule was removed")
expect.eq(#d:violations("Ex/bad-name"), 1, "report after the rule was removed")

-- A file of the diagram's own hides the part.
local own = dir .. "/own-" .. stamp .. ".xml"
write(own, exclusions({ { type = "Block", path = "worse-name", check = ".*" } }))
d:setExclusionFile(own)
controller:refreshExclusions("Ex")
expect.eq(glow(d, "Ex/worse-name"), nil, "exempted by the diagram's own file")
expect.eq(glow(d, "Ex/bad-name"), "Warn", "the part is not read beside the file")

os.remove(own)
d:setExclusionFile("")
d:close()
print("engine_exclusions: ok")
