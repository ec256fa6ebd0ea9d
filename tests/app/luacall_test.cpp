#include "app/luacall.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "host/runtime/eventloop.h"

namespace blockara::app {
namespace {

TEST(LuaCallTest, ArgumentsAreCheckedInOrderAndResultsTakeTheirLuaForm) {
  EventLoop::instance().adoptCurrentThread();
  LuaHost host(LuaHostOptions{BKETC_RESOURCE_DIR, {}, false});
  host.registerFunction("t.join", luaFunction<[](std::string a, std::optional<double> n, bool on) {
    return a + ":" + (n ? std::to_string(static_cast<int>(*n)) : "none") + (on ? ":on" : ":off");
  }>);
  // A body that takes the stack: its own arguments still start at 1.
  host.registerFunction("t.stack", luaFunction<[](lua_State* L, std::string a) {
    if (a.empty()) luaL_error(L, "empty name");
    return luaL_checkinteger(L, 2) + static_cast<lua_Integer>(a.size());
  }>);
  host.registerFunction("t.fail", luaFunction<[] { throw std::runtime_error("native says no"); }>);
  host.registerFunction("t.list", luaFunction<[](bksvString s) {
    return std::optional<std::vector<bksvString>>{{s, s + u"!"}};
  }>);
  host.registerFunction("t.none", luaFunction<[] { return std::optional<std::vector<bool>>(); }>);
  host.registerFunction("t.map", luaFunction<[] { return std::map<std::string, bool>{{"k", 1}}; }>);
  struct Case {
    const char* call;
    const char* result;  // tostring of the first result, or the error without its position
  };
  const Case cases[] = {
      {"t.join('a', 2, 1)", "a:2:on"},
      {"t.join('a', nil)", "a:none:off"},
      {"t.join()", "bad argument #1 to 'join' (string expected, got no value)"},
      {"t.join('a', 'x')", "bad argument #2 to 'join' (number expected, got string)"},
      {"t.stack('ab', 3)", "5"},
      {"t.stack({}, 3)", "bad argument #1 to 'stack' (string expected, got table)"},
      {"t.stack('ab')", "bad argument #2 to 'stack' (number expected, got no value)"},
      {"t.stack('', 3)", "empty name"},
      {"t.fail()", "native says no"},
      {"table.concat(t.list('\xc3\xa9'), ',')", "\xc3\xa9,\xc3\xa9!"},
      {"t.none()", "nil"},
      {"t.map().k", "true"},
  };
  lua_State* L = host.state();
  for (const Case& c : cases) {
    std::string code = "local ok, r = pcall(function() return " + std::string(c.call) +
                       " end) result = ok and tostring(r) or tostring(r):gsub('^[^:]*:%d+: ', '')";
    ASSERT_EQ(host.runString(code), std::nullopt) << c.call;
    lua_getglobal(L, "result");
    EXPECT_STREQ(lua_tostring(L, -1), c.result) << c.call;
    lua_pop(L, 1);
  }
}

}  // namespace
}  // namespace blockara::app
