#include <gtest/gtest.h>

#include "luafixture.h"
#include "nxarrayprint.h"

namespace {

class LuaValueTest : public LuaFixture {
 protected:
  void SetUp() override {
    LuaFixture::SetUp();
    widget = ncos::COSInterface::makeOwned(ncos::COSPackage::findClass("Test.pkg.Widget"),
                                           std::make_shared<testclass::Widget>());
  }
  /// The array of the Lua expression `expr`.
  nxArray fromLua(const std::string& expr) {
    EXPECT_EQ(run("value = " + expr), "") << expr;
    lua_State* L = host->state();
    lua_getglobal(L, "value");
    const std::unique_ptr<lua_State, void (*)(lua_State*)> pop(L, [](lua_State* s) {
      lua_pop(s, 1);
    });
    return blockara::toNxArray(L, -1);
  }
  /// The Lua type an array takes when it is passed to Lua.
  std::string luaType(const nxArray& value) {
    return host->callFunction("testmods.Calls.kinds", 1, {value}).at(0).charData();
  }
  ncos::COSInterfacePtr widget;
};

nxArray structOf(std::vector<std::pair<std::string, nxArray>> fields) {
  std::vector<std::string> names;
  for (const auto& f : fields) names.push_back(f.first);
  nxArray s = nxArray::structMatrix(1, 1, names);
  for (auto& f : fields) s.setField(0, f.first, f.second);
  return s;
}

TEST_F(LuaValueTest, EveryArrayTakesItsPlainFormOnlyWhenThatFormConvertsBack) {
  auto dead = ncos::COSInterface::makeBorrowed(widget->classInfoPtr(), nullptr);
  nxArray twoElements = nxArray::structMatrix(1, 2, {"a"});
  twoElements.setField(1, "a", nxArray::charRow("second"));
  struct Case {
    nxArray value;
    const char* type;  // what Lua sees
  };
  const Case cases[] = {
      {nxArray(), "nil"}, {nxArray::doubleScalar(-1.5e300), "number"},
      {nxArray::doubleScalar(9007199254740993.0), "number"},
      {nxArray::doubleMatrix(1, 0, {}), "userdata"},
      {nxArray::doubleMatrix(1, 2, {1, 2}), "userdata"}, {nxArray::logicalScalar(false), "boolean"},
      {nxArray::logicalMatrix(2, 2, {true, false, false, true}), "userdata"},
      {nxArray::uint32Scalar(4294967295u), "userdata"}, {nxArray::charRow(""), "string"},
      {nxArray::charRow(u"Gr\u00fc\u00dfe \U0001F600"), "string"},
      {nxArray::charRow(std::string_view("nul\0byte", 8)), "string"},
      {nxArray::charMatrix(3, 1, "abc"), "userdata"}, {nxArray::cellRow({}), "table"},
      {nxArray::cellColumn({nxArray::doubleScalar(1), nxArray::doubleScalar(2)}), "userdata"},
      {nxArray::cellRow({nxArray::cellColumn({nxArray::charRow("deep")}),
                         nxArray::cellRow({nxArray::cellRow({nxArray::logicalScalar(true)})})}),
       "table"},
      // Elements that are empty double arrays would be holes in a Lua sequence.
      {nxArray::cellRow({nxArray(), nxArray::charRow("a")}), "userdata"},
      {nxArray::cellRow({nxArray::cellRow({nxArray()})}), "table"},
      {structOf({{"a", nxArray::doubleScalar(1)}, {"b", nxArray::cellRow({})}}), "table"},
      // Empty fields would vanish from a Lua table; unsorted fields would come back sorted.
      {structOf({{"a", nxArray()}, {"b", nxArray::doubleScalar(1)}}), "userdata"},
      {structOf({{"b", nxArray::doubleScalar(1)}, {"a", nxArray::doubleScalar(2)}}), "userdata"},
      {nxArray::structMatrix(1, 1, {}), "userdata"}, {twoElements, "userdata"},
      {structOf({{"obj", nxArray::objectScalar(widget)},
                 {"s", structOf({{"x", nxArray::charRow("")}})}}),
       "table"},
      {nxArray::objectScalar(widget), "userdata"}, {nxArray::objectScalar(dead), "userdata"},
      {nxArray::objectMatrix(2, 1, {widget, widget}), "userdata"},
      {nxArray::cellRow({nxArray::objectScalar(widget), nxArray::uint32Scalar(3)}), "table"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(luaType(c.value), c.type) << ::testing::PrintToString(c.value);
    EXPECT_EQ(host->callFunction("testmods.Calls.echo", 1, {c.value}), std::vector{c.value});
  }
  EXPECT_EQ(lua_gettop(host->state()), 0);
}

TEST_F(LuaValueTest, LuaValuesBecomeArraysByFixedRules) {
  struct Case {
    const char* expr;
    nxArray expected;
  };
  nxArray s12 = nxArray::structMatrix(1, 2, {"a", "b"});
  s12.setField(0, "a", nxArray::doubleScalar(1));
  s12.setField(1, "b", nxArray::charRow("x"));
  // Plain values already come back through the round trip above; these are made in Lua.
  const Case cases[] = {
      {"2^53 + 1", nxArray::doubleScalar(9007199254740992.0)},
      {"math.maxinteger", nxArray::doubleScalar(9223372036854775807.0)},
      {"'Grüße'", nxArray::charRow(u"Gr\u00fc\u00dfe")},
      {"{1, 'a', {true, {}}}",
       nxArray::cellRow({nxArray::doubleScalar(1), nxArray::charRow("a"),
                         nxArray::cellRow({nxArray::logicalScalar(true), nxArray::cellRow({})})})},
      {"{b = 1, a = 'x', c = {}}", structOf({{"a", nxArray::charRow("x")},
                                             {"b", nxArray::doubleScalar(1)},
                                             {"c", nxArray::cellRow({})}})},
      {"{a = {b = {c = false}}}",
       structOf({{"a", structOf({{"b", structOf({{"c", nxArray::logicalScalar(false)}})}})}})},
      {"nx.column({1, 'b'})",
       nxArray::cellColumn({nxArray::doubleScalar(1), nxArray::charRow("b")})},
      {"nx.uint32(4294967295)", nxArray::uint32Scalar(4294967295u)},
      {"nx.array('double', 2, 3, {1, 2, 3, 4, 5, 6})",
       nxArray::doubleMatrix(2, 3, {1, 2, 3, 4, 5, 6})},
      {"nx.array('double', 1, 2)", nxArray::doubleMatrix(1, 2, {0, 0})},
      {"nx.array('uint32', 1, 2, {0, 4294967295})", nxArray::uint32Matrix(1, 2, {0, 4294967295u})},
      {"nx.array('char', 2, 2, 'abcd')", nxArray::charMatrix(2, 2, "abcd")},
      {"nx.array('cell', 2, 1, {'a', 'b'})",
       nxArray::cellColumn({nxArray::charRow("a"), nxArray::charRow("b")})},
      {"nx.array('cell', 1, 2)", nxArray::cellRow({nxArray(), nxArray()})},
      {"nx.array('struct', 1, 2, {{a = 1}, {b = 'x'}})", s12},
      {"nx.array('struct', 1, 1)", nxArray::structMatrix(1, 1, {})},
      {"Test.pkg.Widget.getShared()", nxArray::objectScalar(ncos::COSInterface::makeBorrowed(
                                          widget->classInfoPtr(), testclass::sharedWidget()))},
  };
  for (const Case& c : cases) EXPECT_EQ(fromLua(c.expr), c.expected) << c.expr;

  // No array form: an error that says why, and the Lua stack as before.
  for (const char* expr :
       {"{1, x = 2}", "{[1] = 1, [3] = 3}", "{[0] = 1}", "{[1.5] = 1}", "{[true] = 1}", "print",
        "coroutine.create(print)", "io.stdout", "(function() local t = {} t[1] = t return t end)()",
        "(function() local t = {} for i = 1, 150 do t = {t} end return t end)()", "{f = print}"}) {
    EXPECT_THROW(fromLua(expr), std::invalid_argument) << expr;
    EXPECT_EQ(lua_gettop(host->state()), 0) << expr;
  }
  // Nesting up to the limit is fine.
  EXPECT_NO_THROW(fromLua("(function() local t = {} for i = 1, 90 do t = {t} end return t end)()"));
}

TEST_F(LuaValueTest, HelpersRefuseValuesTheyCannotHold) {
  for (const char* code :
       {"nx.uint32(-1)", "nx.uint32(4294967296)", "nx.uint32(1.5)", "nx.uint32('x')",
        "nx.array('bogus', 1, 1)", "nx.array('double', -1, 1)", "nx.array('double', 1, 1, 5)",
        "nx.array('double', 1, 1, {'x'})", "nx.array('uint32', 1, 1, {-1})",
        "nx.array('uint32', 1, 1, {4294967296})", "nx.array('uint32', 1, 1, {0.5})",
        "nx.array('char', 1, 2, 'abc')", "nx.array('object', 1, 1, {1})",
        "nx.array('struct', 1, 1, {1})", "nx.array('double', 4294967296, 4294967296)",
        "nx.column('x')", "nx.column({a = 1})", "nx.class(print)", "nx.size({1, x = 1})"}) {
    EXPECT_NE(run(code), "") << code;
  }
  EXPECT_EQ(lua_gettop(host->state()), 0);
}

TEST_F(LuaValueTest, ArrayValuesOfferClassSizeElementsAndEquality) {
  EXPECT_EQ(run(R"(
    local m = nx.array("double", 2, 3, {1, 2, 3, 4, 5, 6}); local r, c = m:size()
    assert(m:class() == "double" and #m == 6 and r == 2 and c == 3)
    -- elements are column-major, out of range gives nil
    assert(m[1] == 1 and m[2] == 2 and m[3] == 3 and m[6] == 6)
    assert(m[0] == nil and m[7] == nil and m.nothing == nil)
    local t = m:totable(); assert(#t == 6 and t[4] == 4 and tostring(m) == "2x3 double")
    assert(m == nx.array("double", 2, 3, {1, 2, 3, 4, 5, 6}))
    assert(m ~= nx.array("double", 3, 2, {1, 2, 3, 4, 5, 6}))
    -- elements take their plain forms
    local u = nx.array("uint32", 1, 2, {7, 4294967295})
    assert(math.type(u[1]) == "integer" and u[2] == 4294967295)
    assert(nx.array("char", 2, 1, "xy")[2] == "y")
    local cells = nx.column({"a", {1, 2}, nx.column({})})
    assert(cells[1] == "a" and type(cells[2]) == "table" and cells[2][2] == 2)
    assert(nx.class(cells[3]) == "cell")
    local s = nx.array("struct", 2, 1, {{a = 1}, {a = 2, b = "x"}})
    assert(s[2].a == 2 and s[2].b == "x" and s[1].b == nil)
    local w = Test.pkg.Widget(); w.Name = "inside"; local o = nx.array("object", 1, 2, {w, w})
    assert(o[2].Name == "inside" and o:class() == "Test.pkg.Widget")
    -- comparing with a value of another kind is false, never an error
    assert(not (m == w) and not (w == m) and m ~= 1 and m ~= "x")
  )"),
            "");
}

}  // namespace
