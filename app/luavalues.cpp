#include "app/luavalues.h"

#include <string>
#include <vector>

namespace blockara::app {

bksvString checkUString(lua_State* L, int index) {
  std::size_t len = 0;
  const char* text = luaL_checklstring(L, index, &len);
  return i18n::to_u16string(std::string(text, len));
}

void pushUString(lua_State* L, const bksvString& text) {
  std::string utf8 = ConvertUStringToStdString(text);
  lua_pushlstring(L, utf8.data(), utf8.size());
}

namespace {

std::string stringOf(lua_State* L, int index) {
  std::size_t len = 0;
  const char* text = luaL_tolstring(L, index, &len);
  std::string out(text, len);
  lua_pop(L, 1);
  return out;
}

// A list of records: each element a table of field name to value.
BlockRecordList readRecords(lua_State* L, int list, const std::string& name) {
  BlockRecordList records;
  lua_Integer n = luaL_len(L, list);
  for (lua_Integer i = 1; i <= n; ++i) {
    lua_geti(L, list, i);
    if (!lua_istable(L, -1)) {
      luaL_error(L, "property %s: element %d is not a table", name.c_str(), static_cast<int>(i));
    }
    BlockRecord record;
    int rec = lua_absindex(L, -1);
    lua_pushnil(L);
    while (lua_next(L, rec) != 0) {
      if (lua_type(L, -2) != LUA_TSTRING) {
        luaL_error(L, "property %s: record fields must be named", name.c_str());
      }
      record[lua_tostring(L, -2)] = stringOf(L, -1);
      lua_pop(L, 1);
    }
    records.push_back(std::move(record));
    lua_pop(L, 1);
  }
  return records;
}

BlockValue readValue(lua_State* L, int index, const std::string& name) {
  switch (lua_type(L, index)) {
    case LUA_TSTRING: return std::string(lua_tostring(L, index));
    case LUA_TNUMBER: return static_cast<double>(lua_tonumber(L, index));
    case LUA_TBOOLEAN: return static_cast<bool>(lua_toboolean(L, index));
    case LUA_TTABLE: {
      int list = lua_absindex(L, index);
      lua_geti(L, list, 1);
      bool records = lua_istable(L, -1);
      lua_pop(L, 1);
      if (records) return readRecords(L, list, name);
      std::vector<double> numbers;
      lua_Integer n = luaL_len(L, list);
      for (lua_Integer i = 1; i <= n; ++i) {
        lua_geti(L, list, i);
        if (!lua_isnumber(L, -1)) {
          luaL_error(L, "property %s: element %d is not a number", name.c_str(),
                     static_cast<int>(i));
        }
        numbers.push_back(lua_tonumber(L, -1));
        lua_pop(L, 1);
      }
      return numbers;
    }
    default:
      luaL_error(L, "property %s: a %s is no property value", name.c_str(),
                 luaL_typename(L, index));
      return std::string();
  }
}

}  // namespace

PropertyMap checkPropertyTable(lua_State* L, int index) {
  PropertyMap props;
  if (lua_isnoneornil(L, index)) return props;
  luaL_checktype(L, index, LUA_TTABLE);
  int table = lua_absindex(L, index);
  lua_pushnil(L);
  while (lua_next(L, table) != 0) {
    if (lua_type(L, -2) != LUA_TSTRING) luaL_error(L, "property names must be strings");
    std::string name = lua_tostring(L, -2);
    props[name] = readValue(L, -1, name);
    lua_pop(L, 1);
  }
  return props;
}

void pushBlockValue(lua_State* L, const BlockValue& value) {
  if (auto* s = std::get_if<std::string>(&value)) {
    lua_pushlstring(L, s->data(), s->size());
  } else if (auto* d = std::get_if<double>(&value)) {
    lua_pushnumber(L, *d);
  } else if (auto* b = std::get_if<bool>(&value)) {
    lua_pushboolean(L, *b);
  } else if (auto* numbers = std::get_if<std::vector<double>>(&value)) {
    lua_createtable(L, static_cast<int>(numbers->size()), 0);
    for (std::size_t i = 0; i < numbers->size(); ++i) {
      lua_pushnumber(L, (*numbers)[i]);
      lua_seti(L, -2, static_cast<lua_Integer>(i + 1));
    }
  } else {
    const auto& records = std::get<BlockRecordList>(value);
    lua_createtable(L, static_cast<int>(records.size()), 0);
    for (std::size_t i = 0; i < records.size(); ++i) {
      lua_createtable(L, 0, static_cast<int>(records[i].size()));
      for (const auto& [field, text] : records[i]) {
        lua_pushlstring(L, text.data(), text.size());
        lua_setfield(L, -2, field.c_str());
      }
      lua_seti(L, -2, static_cast<lua_Integer>(i + 1));
    }
  }
}

}  // namespace blockara::app
