-- A block constraint behind a model parameter prerequisite, from a customization file: Gain
-- blocks must keep their gain in [0, 10), but only while the solver is not fixed-step. A change
-- of the model parameter switches the rule off and on again.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")

local file = os.tmpname()
local f = assert(io.open(file, "w"))
f:write([[
<RAConfiguration><CheckCellArray><Check>
  <ID checkType="BlockConstraintCheck">orvanta.example.Gains</ID><Selected>true</Selected>
  <InputParameters><InputParameter Name="Data File"><BlockConstraints>
    <NegativeModelParameterConstraint id="m1">
      <parameter>SolverType</parameter><value>Fixed-step</value>
    </NegativeModelParameterConstraint>
    <PositiveBlockParameterConstraint id="c1" BlockType="Gain">
      <parameter type="double">Gain</parameter><operator>range</operator>
      <value>0</value><value>10</value><dependson>m1</dependson>
    </PositiveBlockParameterConstraint>
    <CompositeConstraint><ID>c1</ID><operator>and</operator></CompositeConstraint>
  </BlockConstraints></InputParameter></InputParameters>
</Check></CheckCellArray></RAConfiguration>
]])
f:close()

local d = blockara.new("P", { auditor = true })
d:add("P", "Gain", "ok", { Gain = "5" })
d:add("P", "Gain", "big", { Gain = "12" })
local controller = bkedittimecheck.EditTimeController.getInstance()
controller:switchConfiguration(file, "P")
expect.eq(blockara.idle(), true, "idle after the configuration")
local gains = function()
  local out = {}
  for _, v in ipairs(d:violations()) do
    if v.checkId == "orvanta.example.Gains" then out[#out + 1] = v.path .. " " .. v.type end
  end
  return out
end
expect.lines(gains(), { "P/big BlockConstraintViolation" }, "variable-step solver")

d:setModelParam("SolverType", "Fixed-step")
expect.eq(blockara.idle(), true, "idle after a fixed-step solver")
expect.lines(gains(), {}, "the prerequisite fails: the rule is off")

d:setModelParam("SolverType", "Variable-step")
expect.eq(blockara.idle(), true, "idle after a variable-step solver")
expect.lines(gains(), { "P/big BlockConstraintViolation" }, "the rule is on again")
os.remove(file)
d:close()
