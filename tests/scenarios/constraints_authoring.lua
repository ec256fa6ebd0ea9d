-- Constraint authoring from a script: every constraint class is built, its properties set and
-- read back, and every validating setter refuses a bad value with its message identifier.
package.path = arg[0]:match("(.*/)") .. "?.lua;" .. package.path
local expect = require("expect")
local A = Auditor.authoring
local I = Auditor.authoring.internal

local function refuses(fn, mnemonic, what)
  expect.fails(fn, "bkedittimecheck:edittimecheck:" .. mnemonic .. ":", what)
end
-- Each class comes as a positive and a negative one: its prefix, the prefix of its values
-- property and adding method, and whether a listed value holds.
local signs = { { "Positive", "Supported", true }, { "Negative", "Unsupported", false } }

-- Block parameter constraints, positive and negative.
for _, s in ipairs(signs) do
  local c, values, add, positive = A[s[1] .. "BlockParameterConstraint"](), s[2] .. "ParameterValues", "add" .. s[2] .. "ParameterValue", s[3]
  c.BlockType = "Gain"
  c.ParameterName = "Gain"
  refuses(function() c.BlockType = "NoSuchBlock" end, "UnknownBuiltInBlock", "unknown block type")
  expect.eq(c.BlockType, "Gain", "an unknown type changes nothing")
  refuses(function() c.ParameterName = "Value" end, "InvalidBlockParameterName", "parameter of another type")
  refuses(function() c.BlockType = "Constant" end, "InvalidBlockParameterName", "type without the parameter")
  expect.eq(c.BlockType, "", "a type without the parameter is emptied")
  c.BlockType = "Gain"

  c[values] = { "0", "10" }
  refuses(function() c.ValueOperator = "eq" end, "UnsupportedNumberOfConstraintValues", "eq with two values")
  refuses(function() c.ValueOperator = "between" end, "UnsupportedValueOperator", "unknown operator")
  c.ValueOperator = "range"
  refuses(function() c[values] = { "1" } end, "UnsupportedNumberOfConstraintValues", "range with one value")
  expect.eq(#(c[values] or {}), 0, "refused values leave none")
  refuses(function() c[values] = "1" end, "InvalidParameterValueInput", "values that are no cell")
  refuses(function() c[values] = nx.array("cell", 2, 2) end, "InvalidParameterValueInput", "a cell matrix")
  refuses(function() c[values] = { "0", 10 } end, "UnsupportedParamValue", "a number as text value")
  refuses(function() c[add](c, 10) end, "UnsupportedParamValue", "adding a number")
  c[values] = { "0", "10" }

  c.CurrentValue = "5"
  expect.eq(c:check(), positive, "5 in [0, 10)")
  expect.eq(c.Status, positive, "status kept")
end

-- Values keep the shape their data type gives them; nxarray values are not kept.
local shaped = A.PositiveBlockParameterConstraint()
for _, t in ipairs({ { "struct", { x = "1", y = "2" }, "y", "2" }, { "array", { "e1", "e2" }, 2, "e2" }, { "nxarray", { 1, 2 }, 1, nil } }) do
  shaped.ParameterDataType = t[1]
  shaped.SupportedParameterValues = { t[2] }
  expect.eq((shaped.SupportedParameterValues or { {} })[1][t[3]], t[4], t[1] .. " values")
end

-- Block type constraints.
for _, s in ipairs(signs) do
  local c, list, add, positive = A[s[1] .. "BlockTypeConstraint"](), s[2] .. "BlockTypes", "add" .. s[2] .. "BlockType", s[3]
  c[list] = nx.column({ { BlockType = "Gain", MaskType = "" }, { BlockType = "Sum", MaskType = "Adder" } })
  c[add](c, "Constant")
  expect.eq(table.concat({ nx.size(c[list]) }, "x"), "3x1", "a column of pairs stays a column")
  refuses(function() c[list] = { { BlockType = "Gain", MaskType = "" }, "Sum" } end, "InvalidParameterValueNonStruct", "a pair that is no struct")
  expect.eq(#c[list], 1, "the pairs before the bad cell stay")
  refuses(function() c[list] = 7 end, "InvalidParameterValueInput", "a list that is no cell")
  c[list] = { { BlockType = "Gain", MaskType = "" } }
  c:setCurrentBlockType("Gain")
  expect.eq(c:check(), positive, "an unmasked Gain is listed")
  c:setCurrentBlockType("Sum")
  expect.eq(c:check(), not positive, "a Sum is not")
end

-- Model parameter constraints.
for _, s in ipairs(signs) do
  local c, values, add, positive = I[s[1] .. "ModelParameterConstraint"](), s[2] .. "ParameterValues", "add" .. s[2] .. "ParameterValue", s[3]
  c.ID = "solver"
  c.ParameterName = "SolverType"
  c.ValueOperator = "anything"  -- not validated for model parameters
  c.ValueOperator = "eq"
  refuses(function() c[values] = { "Fixed-step", "Variable-step" } end, "UnsupportedNumberOfConstraintValues", "eq with two values")
  c.ValueOperator = "or"
  c[values] = nx.column({ "Fixed-step", "Variable-step" })
  expect.eq(table.concat({ nx.size(c[values]) }, "x"), "2x1", "a column stays a column")
  refuses(function() c[add](c, true) end, "UnsupportedParamValue", "a logical value")
  c.ValueOperator = "bogus"
  refuses(function() c[values] = { "Fixed-step" } end, "UnsupportedValueOperator", "values under an unknown operator")
  c.ValueOperator = "or"
  c[values] = { "Fixed-step" }
  c:setCurrentValue("Fixed-step")
  expect.eq(c:check(), positive, "the model setting")
  c:setCurrentValue({ a = "1" })
  expect.eq(c.WasChecked, false, "a new value is stale")

  local dependent = A.PositiveBlockParameterConstraint()
  dependent:addPreRequisiteConstraintObject(c)
  expect.eq(dependent:getPreRequisiteConstraintIDs()[1], "solver", "linked by object")
end

print("constraints_authoring: ok")
