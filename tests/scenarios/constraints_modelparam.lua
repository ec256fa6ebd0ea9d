-- Block constraint checks from a customization file, judged by the engine. Gain blocks must keep
-- their gain in [0, 10), but only while the solver is not fixed-step: a change of the model
-- parameter switches that rule off and on again. Every block must also be an unmasked Gain or a
-- Constant, in a second composite; a composite that names the model constraint itself passes
-- every block, and a check without composites passes every block whatever its constraints say.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")

local file = os.tmpname()
local f = assert(io.open(file, "w"))
local function check(id, constraints)
  return '<Check><ID checkType="BlockConstraintCheck">' .. id .. '</ID><Selected>true</Selected><InputParameters><InputParameter Name="Data File"><BlockConstraints>' .. constraints .. '</BlockConstraints></InputParameter></InputParameters></Check>'
end
local gainOrConstant = [[<PositiveBlockTypeConstraint id="t"><BlockType>Gain</BlockType>
  <BlockType>Constant</BlockType></PositiveBlockTypeConstraint>]]
f:write("<RAConfiguration><CheckCellArray>" .. check("orvanta.example.Gains", [[
    <NegativeModelParameterConstraint id="m1"><parameter>SolverType</parameter><value>Fixed-step</value>
    </NegativeModelParameterConstraint>
    <PositiveBlockParameterConstraint id="c1" BlockType="Gain"><parameter type="double">Gain</parameter>
      <operator>range</operator><value>0</value><value>10</value><dependson>m1</dependson>
    </PositiveBlockParameterConstraint>]] .. gainOrConstant .. [[
    <CompositeConstraint><ID>c1</ID><operator>and</operator></CompositeConstraint>
    <CompositeConstraint><ID>t</ID><operator>and</operator></CompositeConstraint>
    <CompositeConstraint><ID>m1</ID><operator>and</operator></CompositeConstraint>]]) ..
    check("orvanta.example.Loose", gainOrConstant) .. "</CheckCellArray></RAConfiguration>")
f:close()

local d = blockara.new("P", { auditor = true })
d:add("P", "Gain", "Ok", { Gain = "5" })
d:add("P", "Gain", "Big", { Gain = "12" })
d:add("P", "Constant", "C")
d:add("P", "Sum", "S")
d:add("P", "Gain", "Masked", { Gain = "5", MaskType = "Filter" })
bkedittimecheck.EditTimeController.getInstance():switchConfiguration(file, "P")
-- The constraint checks' findings as "PATH CHECK": the file configures no other check.
local function settles(what, expected)
  expect.eq(blockara.idle(), true, what .. ": idle")
  local out = {}
  for _, v in ipairs(d:violations()) do
    if v.type == "BlockConstraintViolation" then out[#out + 1] = v.path .. " " .. v.checkId end
  end
  expect.lines(out, expected, what)
end
local big, others = "P/Big orvanta.example.Gains", { "P/Masked orvanta.example.Gains", "P/S orvanta.example.Gains" }
settles("variable-step solver", { big, table.unpack(others) })
d:setModelParam("SolverType", "Fixed-step")
settles("the prerequisite fails: the range is off", others)
d:setModelParam("SolverType", "Variable-step")
settles("the range is on again", { big, table.unpack(others) })
os.remove(file)
d:close()
