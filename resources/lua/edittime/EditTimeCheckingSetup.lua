-- edittime.EditTimeCheckingSetup: called by the engine when a diagram's engine starts (setup)
-- and when it closes (cleanup), each with the diagram's name. The reference host needs no
-- per-diagram preparation; the functions keep a count per diagram so that scripts can see
-- that the engine came and went.
local Setup = { active = {} }

function Setup.setup(diagramName)
  Setup.active[diagramName] = (Setup.active[diagramName] or 0) + 1
end

function Setup.cleanup(diagramName)
  local count = (Setup.active[diagramName] or 0) - 1
  Setup.active[diagramName] = count > 0 and count or nil
end

return Setup
