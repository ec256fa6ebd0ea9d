-- A block constraint behind a model parameter prerequisite, from a customization file: Gain
-- blocks must keep their gain in [0, 10), but only while the solver is not fixed-step. A change
-- of the model parameter switches the rule off and on again.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")

local file = os.tmpname()
local f = assert(io.open(file, "w"))
f:write([[<RAConfiguration><CheckCellArray><Check>
  <ID checkType="BlockConstraintCheck">orvanta.example.Gains</ID><Selected>true</Selected>
  <InputParameters><InputParameter Name="Data File"><BlockConstraints>
    <NegativeModelParameterConstraint id="m1"><parameter>SolverType</parameter><value>Fixed-step</value>
    </NegativeModelParameterConstraint>
    <PositiveBlockParameterConstraint id="c1" BlockType="Gain"><parameter type="double">Gain</parameter>
      <operator>range</operator><value>0</value><value>10</value><dependson>m1</dependson>
    </PositiveBlockParameterConstraint>
    <CompositeConstraint><ID>c1</ID><operator>and</operator></CompositeConstraint>
  </BlockConstraints></InputParameter></InputParameters>
</Check></CheckCellArray></RAConfiguration>]])
f:close()

local d = blockara.new("P", { auditor = true })
d:add("P", "Gain", "Ok", { Gain = "5" })
d:add("P", "Gain", "Big", { Gain = "12" })
bkedittimecheck.EditTimeController.getInstance():switchConfiguration(file, "P")
-- Only the constraint check's findings: the file configures no other check.
local function settles(what, expected)
  expect.eq(blockara.idle(), true, what .. ": idle")
  local out = {}
  for _, l in ipairs(expect.findings(d)) do if l:find("BlockConstraint", 1, true) then out[#out + 1] = l end end
  expect.lines(out, expected, what)
end
local big = { "P/Big BlockConstraintViolation RAWARNING" }
settles("variable-step solver", big)
d:setModelParam("SolverType", "Fixed-step")
settles("the prerequisite fails: the rule is off", {})
d:setModelParam("SolverType", "Variable-step")
settles("the rule is on again", big)
os.remove(file)
d:close()
