-- edittime.Styler: the way back from the engine's worker. At the end of a pass the worker posts
-- applyStyle(diagramName, engineId); the main loop runs it here, and the controller styles the
-- diagram's engine of that id (an engine replaced meanwhile is left alone).
local Styler = {}

function Styler.applyStyle(diagramName, engineId)
  local controller = bkedittimecheck.EditTimeController.getInstance()
  controller:applyStyle(diagramName, engineId)
end

return Styler
