-- Writes limits.bkd, the model that the constraint check of limits.xml judges:
--   blockara makelimits.lua [OUT.bkd]
local out = arg[1] or (arg[0]:match("(.*/)") or "./") .. "limits.bkd"
local d = blockara.new("Limits")
d:add("Limits", "Gain", "Amp", { Gain = "5", SaturateOnIntegerOverflow = "on" })
d:add("Limits", "Gain", "Boost", { Gain = "12", SaturateOnIntegerOverflow = "on" })
d:add("Limits", "Gain", "Invert", { Gain = "-1", SaturateOnIntegerOverflow = "on" })
d:add("Limits", "Gain", "Raw", { Gain = "3", SaturateOnIntegerOverflow = "off" })
d:add("Limits", "Constant", "Level", { Value = "50" })
d:save(out)
d:close()
print("wrote " .. out)
