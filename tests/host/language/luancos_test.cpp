#include <gtest/gtest.h>

#include "luafixture.h"
#include "nxarrayprint.h"

namespace {

class LuaNcosTest : public LuaFixture {
 protected:
  /// The error object of `code` run under pcall, as Lua sees it ("<no error>" when none).
  std::string errorOf(const std::string& code) {
    std::string wrapped = "local ok, e = pcall(function() " + code +
                          " end) lastError = ok and '<no error>' or tostring(e)";
    std::string failure = run(wrapped);
    if (!failure.empty()) return "<outer failure> " + failure;
    lua_getglobal(host->state(), "lastError");
    std::string e = lua_tostring(host->state(), -1);
    lua_pop(host->state(), 1);
    return e;
  }
};

// Overloads are tried own class first, then superclasses; properties of every form read, write
// and refuse wrong values; static and instance calls are kept apart. Each part makes its own
// objects.
TEST_F(LuaNcosTest, OverloadsPropertiesAndCallsBehaveAsDeclared) {
  EXPECT_EQ(run(R"(
    local g = Test.pkg.Gadget()
    -- the gadget's logical form takes a double too, and is declared before the widget's forms
    assert(g:describe(true) == "logical:true" and g:describe(7) == "logical:true")
    -- a char row only fits the widget's form
    assert(g:describe("s") == "char:s")
    -- inherited properties and methods, static-form methods taking the subclass
    g.Name = "sub"; assert(g.Name == "sub")
    assert(g:greet("x", nx.uint32(2)) == "hi x;hi x;")
    Test.pkg.Widget.addTag(g, "t"); g:addTag("u")
    assert(#g.Tags == 2 and g.Tags[2] == "u")
    -- uint32 arguments: a double holding an integer in range, or the largest uint32
    assert(g:greet("y", 1) == "hi y;" and g:greet("z", 0) == "")
    -- a static method returning a borrowed object gives the same native object each time
    local s = Test.pkg.Widget.getShared(); s.Name = "shared"
    assert(Test.pkg.Widget.getShared() == s and Test.pkg.Widget.getShared().Name == "shared")
    local g = Test.pkg.Gadget()
    -- uint32: read back as a uint32 array; a double holding an integer in range is taken
    g.Count = 4294967295
    assert(g.Count == nx.uint32(4294967295) and g.Count:class() == "uint32")
    -- a read-only property still reads
    assert(g.Serial == nx.uint32(42))
    -- logical properties take a double scalar
    g.Enabled = 1; assert(g.Enabled == true)
    -- an object property gives a borrowed object that refers to the same native object
    local w = Test.pkg.Widget(); w.Name = "parent"; g.Parent = w
    assert(g.Parent == w and g.Parent.Name == "parent")
    -- a subclass object is a widget too
    g.Parent = g; assert(g.Parent.Name == g.Name)
    -- an object vector property: an object array, or empty
    local other = Test.pkg.Widget()
    g.Children = nx.array("object", 1, 2, {w, other}); local c = g.Children
    assert(c:class() == "Test.pkg.Widget" and #c == 2 and c[1] == w and c[2] == other)
    g.Children = nil; local r, n = nx.size(g.Children); assert(r == 0 and n == 0)
    -- a string vector property takes one char row as a vector of one
    g.Tags = "only"; assert(#g.Tags == 1 and g.Tags[1] == "only")
    g.Tags = nx.column({"a", "b"}); assert(#g.Tags == 2)
    -- a refused value leaves the property as it was
    g.Count = 3; pcall(function() g.Count = -1 end); assert(g.Count == nx.uint32(3))
    local g, w = Test.pkg.Gadget(), Test.pkg.Widget()
    -- a static method taking an object vector: empty, one object, an object array
    assert(Test.pkg.Gadget.liveCount(nil) == 0 and Test.pkg.Gadget.liveCount(g) == 1)
    assert(Test.pkg.Gadget.liveCount(nx.array("object", 1, 2, {g, w})) == 2)
    -- in static form (object first) it can be called with ':' as well
    assert(g:liveCount() == 1)
    -- a method looked up on an object is a function that needs the object back
    local m = g.describe; assert(m(g, true) == "logical:true")
  )"),
            "");
  EXPECT_NE(errorOf("local g = Test.pkg.Gadget(); g.describe(true)")
                .find("method 'describe' must be called on an object"),
            std::string::npos);
  // The message names the method, the class and the argument classes.
  EXPECT_EQ(errorOf("Test.pkg.Gadget():describe({})"),
            "blockara:ncos:NoMatchingSignature: No form of 'describe' of class 'Test.pkg.Gadget' "
            "takes the arguments (cell).");
}

// Message-ID errors come without a position in front and name the fault.
TEST_F(LuaNcosTest, MisusesFailWithTheIdentifierOfTheirFault) {
  // Through the class: an instance method; on an object: a static method without its object
  // argument; static forms given no object or no object vector; a uint32 out of range.
  const std::pair<const char*, std::vector<const char*>> cases[] = {
      {"NoMatchingSignature",
       {"Test.pkg.Gadget(1)", "Test.pkg.Gadget('a', 'b')",
        "Test.pkg.Gadget.describe(Test.pkg.Gadget(), true)", "Test.pkg.Widget():getShared()",
        "Test.pkg.Widget.addTag('w', 't')", "Test.pkg.Gadget.liveCount('x')",
        "Test.pkg.Widget():greet('x', -1)"}},
      {"ReadOnlyProperty", {"Test.pkg.Gadget().Serial = 1"}},
      {"ConversionFailed",
       {"Test.pkg.Gadget().Count = -1", "Test.pkg.Gadget().Count = 1.5",
        "Test.pkg.Gadget().Count = nx.array('uint32', 1, 2, {1, 2})",
        "Test.pkg.Gadget().Enabled = 'yes'", "Test.pkg.Gadget().Tags = {1, 2}",
        "Test.pkg.Gadget().Parent = 'w'", "Test.pkg.Gadget().Children = {Test.pkg.Widget()}"}},
      {"UnknownMember",
       {"Test.pkg.Widget().Count = 1", "local x = Test.pkg.Widget().Serial",
        "Test.pkg.Gadget():nothing()"}},
      {"NotConstructible", {"numeria.mixin.Heterogeneous()"}},
  };
  for (const auto& [fault, codes] : cases) {
    for (const char* code : codes) {
      const std::string e = errorOf(code);
      EXPECT_EQ(e.rfind("blockara:ncos:" + std::string(fault) + ": ", 0), 0u) << code << ": " << e;
    }
  }
}

TEST_F(LuaNcosTest, DeadObjectsFailEveryUseWithInvalidObject) {
  testclass::transientWidget() = std::make_unique<testclass::Widget>();
  ASSERT_EQ(run("held = Test.pkg.Widget.getTransient(); g = Test.pkg.Gadget(); g.Parent = held"),
            "");
  testclass::transientWidget().reset();
  for (const char* code : {"held.Name = 'x'", "local n = held.Name", "held:describe('x')",
                           "held:addTag('x')", "Test.pkg.Widget.addTag(held, 'x')",
                           "Test.pkg.Gadget():greet('x', 1) held:greet('x', 1)"}) {
    EXPECT_EQ(errorOf(code), "blockara:ncos:InvalidObject: Invalid or deleted object.") << code;
  }
  // Unknown names are still told apart from dead objects.
  EXPECT_EQ(errorOf("local n = held.Missing").rfind("blockara:ncos:UnknownMember: ", 0), 0u);
  EXPECT_EQ(run("assert(held == held); assert(tostring(held) == 'Test.pkg.Widget object (deleted)')"
                "assert(nx.class(held) == 'Test.pkg.Widget')"
                "assert(Test.pkg.Gadget.liveCount(nx.array('object', 1, 2, {held, g})) == 1)"
                // a static method with no object to return gives the empty object array
                "assert(nx.class(Test.pkg.Widget.getTransient()) == 'object')"),
            "");
}

TEST_F(LuaNcosTest, NativeFailuresBecomeLuaErrorsAndLuaErrorsStayInsideCallbacks) {
  EXPECT_EQ(errorOf("Test.pkg.Gadget():throwStd()"), "native failure");
  EXPECT_EQ(errorOf("Test.pkg.Gadget():throwOther()"),
            "a native function failed with an exception of unknown type");
  // Lua called back from native code called from Lua: its error comes back as a diagnostic and
  // the outer call goes on.
  EXPECT_EQ(run(R"(
    local g = Test.pkg.Gadget()
    assert(g:callBack("testmods.Calls.upper") == "FROM NATIVE")
    assert(g:callBack("testmods.Calls.fail") == "failed:")
    assert(g:callBack("testmods.Calls.nothing") == "failed:blockara:nvm:UnknownFunction")
    -- the error of a nested call that has an identifier keeps it
    function raiseTagged() error("x:y:Z: tagged", 0) end
    assert(g:callBack("raiseTagged") == "failed:x:y:Z")
  )"),
            "");
  EXPECT_EQ(lua_gettop(host->state()), 0);
}

}  // namespace
