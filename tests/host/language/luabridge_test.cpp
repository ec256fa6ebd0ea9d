#include <gtest/gtest.h>

#include "host/language/luahost.h"
#include "host/runtime/eventloop.h"
#include "testclass.h"

namespace {

using blockara::LuaHost;

class LuaBridgeTest : public ::testing::Test {
 protected:
  void SetUp() override {
    blockara::EventLoop::instance().adoptCurrentThread();
    testclass::registerTestPackage();
    host = std::make_unique<LuaHost>(blockara::LuaHostOptions{
        BKETC_RESOURCE_DIR, {std::string(BKETC_SOURCE_DIR) + "/tests/host/language/lua"}, true});
  }
  /// Runs code and returns its error ("" when none).
  std::string run(const std::string& code) { return host->runString(code).value_or(""); }
  std::unique_ptr<LuaHost> host;
};

TEST_F(LuaBridgeTest, ClassIsReachableExactlyAsDeclared) {
  EXPECT_EQ(run(R"(
    local w = Test.pkg.Widget()
    assert(tostring(w) == "Test.pkg.Widget object")
    -- plain property
    w.Name = "alpha"; assert(w.Name == "alpha")
    -- logical property with an attribute word
    assert(w.Enabled == false); w.Enabled = true; assert(w.Enabled == true)
    -- adapted property: a vector of strings is a sequence
    w.Tags = {"a", "b"}; local t = w.Tags; assert(#t == 2 and t[1] == "a" and t[2] == "b")
    -- custom property keeps the value uninterpreted, shape included
    w.Value = nx.column({"x", "y"})
    local r, c = nx.size(w.Value); assert(r == 2 and c == 1)
    -- overloads told apart by argument types
    assert(w:describe("s") == "char:s"); assert(w:describe(7) == "double:7")
    -- wide strings and uint32 arguments
    assert(w:greet("bo", 2) == "hi bo;hi bo;")
    -- static method with '.', returning a borrowed object
    local s = Test.pkg.Widget.getShared(); s.Name = "shared"
    assert(Test.pkg.Widget.getShared().Name == "shared")
    assert(Test.pkg.Widget.getShared() == s)
    -- hidden static-form method, through the class or with ':'
    Test.pkg.Widget.addTag(w, "c"); w:addTag("d")
    assert(#w.Tags == 4 and w.Tags[4] == "d")
  )"), "");
  EXPECT_EQ(ncos::BindingRegistry::instance().announcedCount(), 1u);
}

TEST_F(LuaBridgeTest, WrongArgumentsDeadObjectsAndNativeErrorsGiveMessageIdErrors) {
  auto errorOf = [&](const std::string& expr) {
    std::string code = "local ok, e = pcall(function() " + expr + " end) assert(not ok) error(e, 0)";
    return run(code);
  };
  EXPECT_EQ(errorOf("Test.pkg.Widget():setOperator('bad')").rfind(
                "bkedittimecheck:edittimecheck:UnsupportedValueOperator", 0), 0u);
  EXPECT_EQ(errorOf("Test.pkg.Widget():describe({})").rfind("blockara:ncos:NoMatchingSignature", 0), 0u);
  EXPECT_EQ(errorOf("Test.pkg.Widget():greet('x', -1)").rfind("blockara:ncos:NoMatchingSignature", 0), 0u);
  EXPECT_EQ(errorOf("local x = Test.pkg.Widget().Missing").rfind("blockara:ncos:UnknownMember", 0), 0u);
  EXPECT_EQ(errorOf("Test.pkg.Widget().Name = 5").rfind("blockara:ncos:ConversionFailed", 0), 0u);
  EXPECT_EQ(errorOf("Test.pkg.Widget.describe(1)").rfind("blockara:ncos:NoMatchingSignature", 0), 0u);
  EXPECT_EQ(errorOf("numeria.mixin.Heterogeneous()").rfind("blockara:ncos:NotConstructible", 0), 0u);

  testclass::transientWidget() = std::make_unique<testclass::Widget>();
  EXPECT_EQ(run("held = Test.pkg.Widget.getTransient(); held.Name = 'live'"), "");
  testclass::transientWidget().reset();
  EXPECT_EQ(errorOf("held:describe('x')").rfind("blockara:ncos:InvalidObject", 0), 0u);
  EXPECT_EQ(errorOf("local n = held.Name").rfind("blockara:ncos:InvalidObject", 0), 0u);
  EXPECT_EQ(run("assert(tostring(held) == 'Test.pkg.Widget object (deleted)')"), "");
  // A missing static result is the empty object array, not a crash.
  EXPECT_EQ(run("local w = Test.pkg.Widget.getTransient(); assert(nx.class(w) == 'object')"), "");
}

TEST_F(LuaBridgeTest, CatalogueTextFollowsTheIdentifier) {
  std::string error = run("Test.pkg.Widget():setOperator('zz')");
  EXPECT_NE(error.find("bkedittimecheck:edittimecheck:UnsupportedValueOperator: "), std::string::npos);
  EXPECT_NE(error.find("'zz'"), std::string::npos) << error;
}

TEST_F(LuaBridgeTest, CallFunctionResolvesModulesAndReportsLuaErrors) {
  auto r = host->callFunction("testmods.Calls.add", 1, {nxArray::doubleScalar(2), nxArray::doubleScalar(3)});
  ASSERT_EQ(r.size(), 1u);
  EXPECT_EQ(r[0], nxArray::doubleScalar(5));
  try {
    host->callFunction("testmods.Calls.fail", 0, {nxArray::charRow("a:b:Boom: it broke")});
    FAIL();
  } catch (const NException& e) {
    EXPECT_EQ(e.identifier(), "a:b:Boom");
    EXPECT_STREQ(e.what(), "a:b:Boom: it broke");
  }
  EXPECT_THROW(host->callFunction("testmods.Calls.nothing", 0, {}), NException);
  EXPECT_THROW(host->callFunction("no.such.module.fn", 0, {}), NException);
  EXPECT_EQ(lua_gettop(host->state()), 0);
  // The object crosses into Lua and its property is read there.
  auto w = std::make_shared<testclass::Widget>();
  w->name = "crossing";
  auto obj = ncos::COSInterface::makeOwned(ncos::COSPackage::findClass("Test.pkg.Widget"), w);
  r = host->callFunction("testmods.Calls.widgetName", 1, {nxArray::objectScalar(obj)});
  EXPECT_EQ(r[0], nxArray::charRow("crossing"));
}

TEST_F(LuaBridgeTest, ValuesRoundTripForEveryClassWithShapeKept) {
  auto cls = ncos::COSPackage::findClass("Test.pkg.Widget");
  auto obj = ncos::COSInterface::makeOwned(cls, std::make_shared<testclass::Widget>());
  nxArray structs = nxArray::structMatrix(2, 1, {"a", "b"});
  structs.setField(1, "a", nxArray::charRow("x"));
  nxArray s11 = nxArray::structMatrix(1, 1, {"k"});
  s11.setField(0, "k", nxArray::cellRow({nxArray::doubleScalar(1), nxArray::charRow("v")}));
  std::vector<nxArray> values = {
      nxArray(),
      nxArray::doubleScalar(2.5),
      nxArray::doubleMatrix(2, 3, {1, 2, 3, 4, 5, 6}),
      nxArray::doubleMatrix(3, 1, {1, 2, 3}),
      nxArray::logicalScalar(true),
      nxArray::logicalMatrix(1, 2, {true, false}),
      nxArray::uint32Scalar(7),
      nxArray::uint32Matrix(2, 1, {1, 2}),
      nxArray::charRow("text"),
      nxArray::charRow(""),
      nxArray::charMatrix(2, 2, "abcd"),
      nxArray::cellRow({nxArray::charRow("a"), nxArray::doubleScalar(1)}),
      nxArray::cellColumn({nxArray::charRow("a"), nxArray::charRow("b")}),
      nxArray::cellRow({}),
      s11,
      structs,
      nxArray::objectScalar(obj),
      nxArray::objectMatrix(1, 2, {obj, obj}),
  };
  for (const auto& v : values) {
    auto r = host->callFunction("testmods.Calls.echo", 1, {v});
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0], v) << v.rows() << "x" << v.cols() << " " << v.className();
  }
  // Lua values become arrays by fixed rules.
  EXPECT_EQ(run(R"(
    assert(nx.class("s") == "char" and nx.class(1) == "double" and nx.class(true) == "logical")
    assert(nx.class({1, 2}) == "cell" and nx.class({a = 1}) == "struct")
    local r, c = nx.size({1, 2, 3}); assert(r == 1 and c == 3)
    r, c = nx.size(nx.column({1, 2, 3})); assert(r == 3 and c == 1)
    assert(nx.class(nx.uint32(3)) == "uint32")
    local ok = pcall(nx.class, {1, x = 2}); assert(not ok)
    ok = pcall(nx.class, print); assert(not ok)
  )"), "");
}

TEST_F(LuaBridgeTest, ProtectedCallsGiveErrorsWithTraceback) {
  std::string error = run("local function inner() error('deep') end inner()");
  EXPECT_NE(error.find("deep"), std::string::npos);
  EXPECT_NE(error.find("stack traceback"), std::string::npos);
  EXPECT_EQ(lua_gettop(host->state()), 0);
  host->registerFunction("blockara.twice", [](lua_State* L) {
    lua_pushnumber(L, 2 * luaL_checknumber(L, 1));
    return 1;
  });
  EXPECT_EQ(run("assert(blockara.twice(4) == 8)"), "");
  EXPECT_NE(run("blockara.twice('x')"), "");
}

}  // namespace
