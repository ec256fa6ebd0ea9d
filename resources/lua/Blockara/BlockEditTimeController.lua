-- Blockara.BlockEditTimeController: what the edit-time checker asks of the base workspace.
--
-- findMissingVariable(handles, diagramName) answers, for each handle, whether that block names a
-- variable that `blockara.workspace` does not define. Only numeric-expression parameters (type
-- code 6) are read. Their text, with quoted strings left out, is cut into identifiers: a letter or
-- "_" followed by letters, digits and "_", not directly after a digit, a letter or a ".". An
-- identifier is known when the workspace defines it, when it is a Lua keyword, a function of the
-- Lua state's globals, a member of the `math` library, or one of the words "inf", "nan" and
-- "auto" that block parameters use as values. A block names a missing variable when one of its
-- identifiers is unknown. A handle of 0, or of a block that no longer exists, is answered false.
local M = {}

local keywords = {
  ["and"] = true, ["or"] = true, ["not"] = true, ["true"] = true, ["false"] = true,
  ["nil"] = true,
}
local valueWords = { inf = true, nan = true, auto = true }

local function known(name)
  if blockara.workspace[name] ~= nil then return true end
  if keywords[name] or valueWords[name] then return true end
  if type(_G[name]) == "function" then return true end
  return math[name] ~= nil
end

-- The identifiers of an expression, in order.
local function identifiers(text)
  local names = {}
  text = text:gsub("'[^']*'", " "):gsub('"[^"]*"', " ")
  local pos = 1
  while true do
    local s, e = text:find("[%a_][%w_]*", pos)
    if not s then break end
    local before = s > 1 and text:sub(s - 1, s - 1) or ""
    if not before:match("[%w_.]") then names[#names + 1] = text:sub(s, e) end
    pos = e + 1
  end
  return names
end

-- Whether an expression names a variable the workspace lacks.
local function textNamesMissingVariable(text)
  for _, name in ipairs(identifiers(text)) do
    if not known(name) then return true end
  end
  return false
end

-- The walk over the blocks and their numeric-expression parameters is `blockara.expressionAnswers`
-- (C++): it asks about each distinct text once per call, in which the workspace does not change.
-- It takes a number, a list or an nx.array of doubles; an array of another class goes as a list.
function M.findMissingVariable(handles, diagramName)
  if type(handles) == "userdata" and nx.class(handles) ~= "double" then handles = handles:totable() end
  return blockara.expressionAnswers(handles, textNamesMissingVariable)
end

return M
