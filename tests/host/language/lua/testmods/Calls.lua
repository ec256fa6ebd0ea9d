local M = {}
function M.add(a, b) return a + b end
function M.fail(msg) error(msg, 0) end
function M.echo(...) return ... end
-- The Lua type of each argument, so that tests see which form a value took.
function M.kinds(...)
  local out = {}
  for i = 1, select("#", ...) do out[i] = type((select(i, ...))) end
  return table.concat(out, ",")
end
-- Requests append to one log, so that tests see the order in which they ran.
local log = {}
function M.record(tag) log[#log + 1] = tag; return #log end
function M.log() return table.concat(log, ",") end
function M.giveFunction() return print end
function M.upper(text) return text:upper() end
return M
