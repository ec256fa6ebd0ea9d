// blockara.expressionAnswers: the walk over blocks' numeric expressions that the program's
// missing-variable question makes, done here rather than in Lua, where every block cost a block
// object, a type string and a string per parameter (a system of 10,000 blocks took 5-12 ms of the
// main thread in one call).
#include "app/luaexpressions.h"

#include <lua.hpp>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include "host/language/luabridge.h"
#include "host/language/luahost.h"
#include "host/model/bkblock.h"

namespace blockara::app {

namespace {

// The dialog parameter type code of a numeric expression.
constexpr int kNumericExpression = 6;

std::vector<double> checkHandles(lua_State* L, int index) {
  std::vector<double> handles;
  if (lua_type(L, index) == LUA_TNUMBER) {
    handles.push_back(lua_tonumber(L, index));
  } else if (lua_type(L, index) == LUA_TTABLE) {
    for (lua_Integer i = 1; lua_geti(L, index, i) != LUA_TNIL; ++i) {  // as ipairs reads it
      int isNumber = 0;
      handles.push_back(lua_tonumberx(L, -1, &isNumber));
      if (!isNumber)
        luaL_error(L, "blockara.expressionAnswers: handle %d is not a number", static_cast<int>(i));
      lua_pop(L, 1);
    }
    lua_pop(L, 1);
  } else if (const nxArray* array = luabridge::testArray(L, index);
             array != nullptr && array->classID() == nxClassID::Double) {
    handles.reserve(array->numel());
    for (std::size_t i = 0; i < array->numel(); ++i) handles.push_back(array->getDouble(i));
  } else {
    luaL_argerror(L, index, "a handle, a list of handles or an nx.array of doubles expected");
  }
  return handles;
}

int expressionAnswers(lua_State* L) {
  return luaGuard(L, [](lua_State* L) {
    std::vector<double> handles = checkHandles(L, 1);
    luaL_checktype(L, 2, LUA_TFUNCTION);
    std::unordered_map<std::string, bool> answers;  // `test` is asked once per text
    std::vector<bool> out(handles.size());
    for (std::size_t i = 0; i < handles.size(); ++i) {
      BKBlock* block = handles[i] != 0 ? BKBlock::Handle2Block(handles[i]) : nullptr;
      // A deleted block that an undo could bring back still resolves, outside any diagram.
      if (block == nullptr || block->getBlockDiagram() == nullptr) continue;
      for (const BKPrmDesc& desc : block->getDialogInfo()) {
        if (desc.typeCode != kNumericExpression) continue;
        const BlockValue value = block->getProperty(desc.name);
        const std::string* text = std::get_if<std::string>(&value);
        if (text == nullptr) continue;
        auto [answer, fresh] = answers.try_emplace(*text, false);
        if (fresh) {
          lua_pushvalue(L, 2);
          lua_pushlstring(L, text->data(), text->size());
          lua_call(L, 1, 1);
          answer->second = lua_toboolean(L, -1) != 0;
          lua_pop(L, 1);
        }
        if (answer->second) {
          out[i] = true;
          break;
        }
      }
    }
    const std::size_t n = out.size();
    luabridge::pushArrayUserdata(L, nxArray::logicalMatrix(1, n, std::move(out)));
    return 1;
  });
}

}  // namespace

void installExpressionAnswers(lua_State* L) {
  lua_getglobal(L, "blockara");
  lua_pushcfunction(L, expressionAnswers);
  lua_setfield(L, -2, "expressionAnswers");
  lua_pop(L, 1);
}

}  // namespace blockara::app
