-- Chartelle.BKINCE.BlockaraMan: what a chart declares for its Blockara-based states.
--
-- getPortMappingInfo(handle) reads the "StateData" of the state subsystem with that handle (the
-- data the chart declares for the state) and returns it as a 1xN struct array with the text
-- fields "dataName" and "dataScope": the datum's name, and its scope in lower case ("input",
-- "output", "local", ...). A handle that resolves to no block raises an error.
local M = {}

function M.getPortMappingInfo(handle)
  local block = blockara.block(handle)
  if block == nil then error("Chartelle:BlockaraMan:NoState: no state with handle " .. tostring(handle), 0) end
  local data = block:get("StateData")
  local elements = {}
  for _, datum in ipairs(type(data) == "table" and data or {}) do
    elements[#elements + 1] = { dataName = datum.name or "", dataScope = string.lower(datum.scope or "") }
  end
  return nx.array("struct", 1, #elements, elements)
end

return M
