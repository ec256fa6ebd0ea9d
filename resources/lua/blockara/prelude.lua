-- The calls of the scripting API that a modelling host makes through its host language: after
-- the change itself they tell the edit-time checker through its controller class, as the
-- host's own scripts do.
local Diagram = blockara.Diagram

-- The controller, or nil when no checker is loaded.
local function controller()
  local ok, pkg = pcall(function() return bkedittimecheck end)
  if not ok or pkg == nil then return nil end
  local found, class = pcall(function() return pkg.EditTimeController end)
  if not found or class == nil then return nil end
  return class.getInstance()
end

function Diagram:setModelParam(name, value)
  self:setModelParamRaw(name, value)
  local c = controller()
  if c and name == "UniqueDataStoreMsg" then c:updateDiagnostic(self.name) end
end

function Diagram:open(systemPath)
  self:openEditorRaw(systemPath)
  local c = controller()
  if c then c:handleNewWindowOpen(self.name) end
end

function Diagram:renameDiagram(newName)
  local old = self.name
  self:renameDiagramRaw(newName)
  local c = controller()
  if c then c:postNameChange(old, newName) end
end

function Diagram:violations(path)
  local blocks
  if path then
    local b = self:block(path)
    if not b then error("no block at " .. tostring(path), 2) end
    blocks = { b }
  else
    blocks = self:blocks()
  end
  local c = controller()
  local out = {}
  if not c then return out end
  for _, b in ipairs(blocks) do
    local strings = c:getViolations(self.name, b.handle)
    for i = 1, #strings - 2, 3 do
      out[#out + 1] = { path = b.path, type = strings[i], checkId = strings[i + 1],
                        category = strings[i + 2] }
    end
  end
  table.sort(out, function(a, b)
    if a.path ~= b.path then return a.path < b.path end
    if a.type ~= b.type then return a.type < b.type end
    return a.checkId < b.checkId
  end)
  return out
end

function Diagram:styles()
  local out = {}
  for _, b in ipairs(self:blocks()) do
    local classes = b:classes()
    if #classes > 0 then
      table.sort(classes)
      out[b.path] = table.concat(classes, ",")
    end
  end
  return out
end
