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

-- The names of a block type's numeric-expression parameters. A block's dialog parameters are
-- those of its type, so one question answers for every block of the type; `byType` lives for
-- one call, so a library that changes between calls is read afresh.
local function expressionParameters(block, byType)
  local names = byType[block.type]
  if names then return names end
  names = {}
  for _, p in ipairs(block:parameters()) do
    if p.type == 6 then names[#names + 1] = p.name end
  end
  byType[block.type] = names
  return names
end

-- Whether an expression names a variable the workspace lacks. `byText` lives for one call, in
-- which the workspace does not change: blocks that share an expression share the answer.
local function textNamesMissingVariable(text, byText)
  local answer = byText[text]
  if answer ~= nil then return answer end
  answer = false
  for _, name in ipairs(identifiers(text)) do
    if not known(name) then
      answer = true
      break
    end
  end
  byText[text] = answer
  return answer
end

local function namesMissingVariable(block, byType, byText)
  for _, parameter in ipairs(expressionParameters(block, byType)) do
    local value = block:get(parameter)
    if type(value) == "string" and textNamesMissingVariable(value, byText) then return true end
  end
  return false
end

-- A handle vector arrives as a number (one handle), an nx.array (several) or a table.
local function handleList(handles)
  if type(handles) == "number" then return { handles } end
  if type(handles) == "table" then return handles end
  return handles:totable()
end

function M.findMissingVariable(handles, diagramName)
  local list = handleList(handles)
  local answer = {}
  local byType, byText = {}, {}
  local blockOf = blockara.block
  for i, handle in ipairs(list) do
    local block = handle ~= 0 and blockOf(handle) or nil
    answer[i] = block ~= nil and namesMissingVariable(block, byType, byText)
  end
  return nx.array("logical", 1, #answer, answer)
end

return M
