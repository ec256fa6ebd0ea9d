-- Small assertion helpers shared by the scenarios.
local expect = {}

function expect.eq(actual, expected, what)
  if actual ~= expected then
    error(string.format("%s: expected %s, got %s", what or "value", tostring(expected),
                        tostring(actual)), 2)
  end
end

function expect.fails(fn, pattern, what)
  local ok, err = pcall(fn)
  if ok then error((what or "call") .. ": expected an error", 2) end
  if pattern and not tostring(err):find(pattern, 1, true) then
    error(string.format("%s: error %q lacks %q", what or "call", tostring(err), pattern), 2)
  end
end

-- Every finding of a diagram as "PATH TYPE CATEGORY" lines, in d:violations() order.
function expect.findings(d)
  local out = {}
  for _, v in ipairs(d:violations()) do
    out[#out + 1] = v.path .. " " .. v.type .. " " .. v.category
  end
  return out
end

-- Compares two lists of lines exactly.
function expect.lines(actual, expected, what)
  local a, e = table.concat(actual, "\n"), table.concat(expected, "\n")
  if a ~= e then
    error(string.format("%s:\nexpected\n  %s\ngot\n  %s", what or "lines",
                        (e:gsub("\n", "\n  ")), (a:gsub("\n", "\n  "))), 2)
  end
end

-- The glows of a diagram as "PATH CLASSES" lines, sorted by path.
function expect.glows(d)
  local styles, out = d:styles(), {}
  for path, classes in pairs(styles) do out[#out + 1] = path .. " " .. classes end
  table.sort(out)
  return out
end

-- Runs the engine to rest, then compares the diagram's findings and, when given, its glows.
function expect.settles(d, what, findings, glows)
  if blockara.idle() ~= true then error(what .. ": the engine did not come to rest", 2) end
  expect.lines(expect.findings(d), findings, what .. ": findings")
  if glows then expect.lines(expect.glows(d), glows, what .. ": glows") end
end

return expect
