-- Unreadable and malformed model files give errors that name the file; nothing is left open.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")
local dir = os.getenv("TMPDIR") or "/tmp"
local stamp = tostring(os.time()) .. tostring(math.random(1, 1 << 30))
local function write(path, text) local f = assert(io.open(path, "wb")) f:write(text) f:close() end

expect.fails(function() blockara.load(dir .. "/missing-" .. stamp .. ".bkd") end, "missing-" .. stamp,
             "missing file")

local bad = dir .. "/bad-" .. stamp .. ".bkd"
write(bad, "<diagram name=\"Bad\">\n  <block type=\"Gain\"\n</diagram>\n")
expect.fails(function() blockara.load(bad) end, bad, "malformed file")
expect.eq(blockara.diagram("Bad"), nil, "nothing half open")
os.remove(bad)

local junk = dir .. "/junk-" .. stamp .. ".bkdx"
write(junk, "PK\3\4 this is not really a zip archive")
expect.fails(function() blockara.load(junk) end, junk, "corrupt package")
os.remove(junk)
print("host_errors: ok")
