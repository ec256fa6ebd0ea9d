// Conversions between Lua values and host-language arrays, and the `nx` helper table.

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>

#include "host/language/luabridge.h"
#include "host/language/luahost.h"

namespace blockara {

namespace {

using luabridge::arrayType;

constexpr int maxDepth = 100;

// The empty double array is Lua's nil, which a table cannot hold as a value.
bool isNil(const nxArray& v) {
  return v.classID() == nxClassID::Double && v.rows() == 0 && v.cols() == 0;
}

// A cell row is a sequence only without nils; a struct is a table only when none of its fields
// is nil and its fields are in the sorted order in which a table's keys come back.
bool plainCell(const nxArray& v) {
  if (v.rows() != 1) return false;
  for (std::size_t i = 0; i < v.numel(); ++i) {
    if (isNil(v.getCell(i))) return false;
  }
  return true;
}

bool plainStruct(const nxArray& v) {
  const auto& names = v.fieldNames();
  if (!v.isScalar() || names.empty()) return false;
  for (std::size_t f = 0; f < names.size(); ++f) {
    if (f > 0 && !(names[f - 1] < names[f])) return false;
    if (isNil(*v.getField(0, names[f]))) return false;
  }
  return true;
}

bool plainForm(const nxArray& v) {
  switch (v.classID()) {
    case nxClassID::Char: return v.rows() == 1;
    case nxClassID::Double: return v.isScalar() || isNil(v);
    case nxClassID::Logical: return v.isScalar();
    case nxClassID::Cell: return plainCell(v);
    case nxClassID::Struct: return plainStruct(v);
    case nxClassID::Object: return v.isScalar();
    case nxClassID::UInt32: return false;
  }
  return false;
}

nxArray convert(lua_State* L, int index, int depth);

nxArray tableToArray(lua_State* L, int index, int depth) {
  index = lua_absindex(L, index);
  // Each level of nesting holds a key and a value on the stack.
  luaL_checkstack(L, 3, "converting a nested Lua table");
  lua_Integer maxKey = 0;
  std::size_t count = 0;
  bool stringKeys = false, otherKeys = false;
  lua_pushnil(L);
  while (lua_next(L, index) != 0) {
    lua_pop(L, 1);
    ++count;
    if (lua_type(L, -1) == LUA_TSTRING) {
      stringKeys = true;
    } else if (lua_isinteger(L, -1) && lua_tointeger(L, -1) >= 1) {
      maxKey = std::max(maxKey, lua_tointeger(L, -1));
    } else {
      otherKeys = true;
    }
  }
  if (count == 0) return nxArray::cellRow({});
  if (!stringKeys && !otherKeys && static_cast<std::size_t>(maxKey) == count) {
    std::vector<nxArray> cells;
    for (lua_Integer i = 1; i <= maxKey; ++i) {
      lua_geti(L, index, i);
      cells.push_back(convert(L, -1, depth + 1));
      lua_pop(L, 1);
    }
    return nxArray::cellRow(std::move(cells));
  }
  if (stringKeys && !otherKeys && maxKey == 0) {
    std::vector<std::string> names;
    lua_pushnil(L);
    while (lua_next(L, index) != 0) {
      lua_pop(L, 1);
      names.emplace_back(lua_tostring(L, -1));
    }
    std::sort(names.begin(), names.end());
    nxArray s = nxArray::structMatrix(1, 1, names);
    for (const auto& n : names) {
      lua_getfield(L, index, n.c_str());
      s.setField(0, n, convert(L, -1, depth + 1));
      lua_pop(L, 1);
    }
    return s;
  }
  throw std::invalid_argument(
      "a table converts to a host-language value only as a sequence (cell row) or with string "
      "keys only (struct)");
}

nxArray convert(lua_State* L, int index, int depth) {
  if (depth > maxDepth) throw std::invalid_argument("value is nested too deeply (or cyclic)");
  switch (lua_type(L, index)) {
    case LUA_TNONE:
    case LUA_TNIL:
      return nxArray();
    case LUA_TBOOLEAN:
      return nxArray::logicalScalar(lua_toboolean(L, index) != 0);
    case LUA_TNUMBER:
      return nxArray::doubleScalar(lua_tonumber(L, index));
    case LUA_TSTRING: {
      std::size_t len = 0;
      const char* s = lua_tolstring(L, index, &len);
      return nxArray::charRow(std::string_view(s, len));
    }
    case LUA_TTABLE:
      return tableToArray(L, index, depth);
    case LUA_TUSERDATA:
      if (const nxArray* a = luabridge::testArray(L, index)) return *a;
      if (const ncos::COSInterfacePtr* o = luabridge::testObject(L, index)) {
        return nxArray::objectScalar(*o);
      }
      break;
    default:
      break;
  }
  throw std::invalid_argument(std::string("a Lua ") + luaL_typename(L, index) +
                              " has no host-language value");
}

// --- the array userdata ---

nxArray& checkArray(lua_State* L, int index) {
  return *static_cast<nxArray*>(luaL_checkudata(L, index, arrayType));
}

int arrayGc(lua_State* L) {
  checkArray(L, 1).~nxArray();
  return 0;
}

int arrayLen(lua_State* L) {
  lua_pushinteger(L, static_cast<lua_Integer>(checkArray(L, 1).numel()));
  return 1;
}

void pushElement(lua_State* L, const nxArray& a, std::size_t i) {
  switch (a.classID()) {
    case nxClassID::Double: lua_pushnumber(L, a.getDouble(i)); break;
    case nxClassID::Logical: lua_pushboolean(L, a.getLogical(i)); break;
    case nxClassID::UInt32: lua_pushinteger(L, a.getUInt32(i)); break;
    case nxClassID::Char: lua_pushlstring(L, a.charData().data() + i, 1); break;
    case nxClassID::Cell: pushNxArray(L, a.getCell(i)); break;
    case nxClassID::Object: luabridge::pushObject(L, a.getObject(i)); break;
    case nxClassID::Struct: {
      nxArray one = nxArray::structMatrix(1, 1, a.fieldNames());
      for (const auto& f : a.fieldNames()) one.setField(0, f, *a.getField(i, f));
      if (a.fieldNames().empty()) {
        luabridge::pushArrayUserdata(L, one);
      } else {
        pushNxArray(L, one);
      }
      break;
    }
  }
}

int arrayIndex(lua_State* L) {
  return luaGuard(L, [](lua_State* L) {
    const nxArray& a = checkArray(L, 1);
    if (lua_isinteger(L, 2)) {
      lua_Integer i = lua_tointeger(L, 2);
      if (i < 1 || static_cast<std::size_t>(i) > a.numel()) {
        lua_pushnil(L);
        return 1;
      }
      pushElement(L, a, static_cast<std::size_t>(i - 1));
      return 1;
    }
    luaL_getmetafield(L, 1, "methods");
    lua_pushvalue(L, 2);
    lua_rawget(L, -2);
    return 1;
  });
}

int arrayClass(lua_State* L) {
  lua_pushstring(L, checkArray(L, 1).className().c_str());
  return 1;
}

int arraySize(lua_State* L) {
  const nxArray& a = checkArray(L, 1);
  lua_pushinteger(L, static_cast<lua_Integer>(a.rows()));
  lua_pushinteger(L, static_cast<lua_Integer>(a.cols()));
  return 2;
}

int arrayToTable(lua_State* L) {
  return luaGuard(L, [](lua_State* L) {
    const nxArray& a = checkArray(L, 1);
    lua_createtable(L, static_cast<int>(a.numel()), 0);
    for (std::size_t i = 0; i < a.numel(); ++i) {
      pushElement(L, a, i);
      lua_rawseti(L, -2, static_cast<lua_Integer>(i + 1));
    }
    return 1;
  });
}

int arrayToString(lua_State* L) {
  const nxArray& a = checkArray(L, 1);
  std::string s = std::to_string(a.rows()) + "x" + std::to_string(a.cols()) + " " + a.className();
  lua_pushstring(L, s.c_str());
  return 1;
}

int arrayEq(lua_State* L) {
  // Lua also asks an array whether it equals an object; that is false, not an error.
  const nxArray* a = luabridge::testArray(L, 1);
  const nxArray* b = luabridge::testArray(L, 2);
  lua_pushboolean(L, a && b && *a == *b);
  return 1;
}

// --- the nx helper table ---

std::size_t checkSize(lua_State* L, int index) {
  lua_Integer n = luaL_checkinteger(L, index);
  luaL_argcheck(L, n >= 0, index, "a size cannot be negative");
  return static_cast<std::size_t>(n);
}

int nxArrayNew(lua_State* L) {
  return luaGuard(L, [](lua_State* L) {
    std::string cls = luaL_checkstring(L, 1);
    std::size_t rows = checkSize(L, 2), cols = checkSize(L, 3);
    if (cols != 0 && rows > std::numeric_limits<std::size_t>::max() / cols) {
      throw std::invalid_argument("nx.array: " + std::to_string(rows) + "x" +
                                  std::to_string(cols) + " is too large");
    }
    std::size_t n = rows * cols;
    if (cls == "char") {
      std::size_t len = 0;
      const char* s = lua_isnoneornil(L, 4) ? "" : luaL_checklstring(L, 4, &len);
      luabridge::pushArrayUserdata(L, nxArray::charMatrix(rows, cols, std::string(s, len)));
      return 1;
    }
    if (!lua_isnoneornil(L, 4)) luaL_checktype(L, 4, LUA_TTABLE);
    auto element = [&](std::size_t i) {
      if (lua_isnoneornil(L, 4)) {
        lua_pushnil(L);
      } else {
        lua_geti(L, 4, static_cast<lua_Integer>(i + 1));
      }
    };
    nxArray out;
    if (cls == "double") {
      std::vector<double> v(n);
      for (std::size_t i = 0; i < n; ++i, lua_pop(L, 1)) {
        element(i);
        if (!lua_isnil(L, -1) && lua_type(L, -1) != LUA_TNUMBER) {
          throw std::invalid_argument("nx.array: double element " + std::to_string(i + 1) +
                                      " is not a number");
        }
        v[i] = lua_tonumber(L, -1);
      }
      out = nxArray::doubleMatrix(rows, cols, std::move(v));
    } else if (cls == "logical") {
      std::vector<bool> v(n);
      for (std::size_t i = 0; i < n; ++i, lua_pop(L, 1)) { element(i); v[i] = lua_toboolean(L, -1); }
      out = nxArray::logicalMatrix(rows, cols, std::move(v));
    } else if (cls == "uint32") {
      std::vector<std::uint32_t> v(n);
      for (std::size_t i = 0; i < n; ++i, lua_pop(L, 1)) {
        element(i);
        int isInteger = 0;
        lua_Integer value = lua_tointegerx(L, -1, &isInteger);
        if (lua_isnil(L, -1)) {
          value = 0;
        } else if (lua_type(L, -1) != LUA_TNUMBER || !isInteger || value < 0 ||
                   value > 0xFFFFFFFFll) {
          throw std::invalid_argument("nx.array: uint32 element " + std::to_string(i + 1) +
                                      " is not an integer in 0..4294967295");
        }
        v[i] = static_cast<std::uint32_t>(value);
      }
      out = nxArray::uint32Matrix(rows, cols, std::move(v));
    } else if (cls == "cell") {
      out = nxArray::cellMatrix(rows, cols);
      for (std::size_t i = 0; i < n; ++i, lua_pop(L, 1)) { element(i); out.setCell(i, toNxArray(L, -1)); }
    } else if (cls == "struct") {
      // Elements are tables with string keys; the fields are the union of their keys.
      std::vector<nxArray> elements;
      std::vector<std::string> names;
      for (std::size_t i = 0; i < n; ++i, lua_pop(L, 1)) {
        element(i);
        nxArray e = lua_isnil(L, -1) ? nxArray::structMatrix(1, 1, {}) : toNxArray(L, -1);
        if (!e.isStruct()) throw std::invalid_argument("nx.array: struct elements must be tables with string keys");
        for (const auto& f : e.fieldNames()) {
          if (std::find(names.begin(), names.end(), f) == names.end()) names.push_back(f);
        }
        elements.push_back(std::move(e));
      }
      std::sort(names.begin(), names.end());
      out = nxArray::structMatrix(rows, cols, names);
      for (std::size_t i = 0; i < n; ++i) {
        for (const auto& f : elements[i].fieldNames()) out.setField(i, f, *elements[i].getField(0, f));
      }
    } else if (cls == "object") {
      std::vector<ncos::COSInterfacePtr> objects;
      for (std::size_t i = 0; i < n; ++i, lua_pop(L, 1)) {
        element(i);
        const ncos::COSInterfacePtr* o = luabridge::testObject(L, -1);
        if (!o) throw std::invalid_argument("nx.array: object elements must be objects");
        objects.push_back(*o);
      }
      out = nxArray::objectMatrix(rows, cols, std::move(objects));
    } else {
      throw std::invalid_argument("nx.array: unknown class '" + cls + "'");
    }
    luabridge::pushArrayUserdata(L, out);
    return 1;
  });
}

int nxColumn(lua_State* L) {
  return luaGuard(L, [](lua_State* L) {
    luaL_checktype(L, 1, LUA_TTABLE);
    nxArray row = toNxArray(L, 1);
    if (!row.isCell()) throw std::invalid_argument("nx.column: expected a sequence");
    std::vector<nxArray> cells;
    for (std::size_t i = 0; i < row.numel(); ++i) cells.push_back(row.getCell(i));
    luabridge::pushArrayUserdata(L, nxArray::cellColumn(std::move(cells)));
    return 1;
  });
}

int nxUInt32(lua_State* L) {
  lua_Integer v = luaL_checkinteger(L, 1);
  luaL_argcheck(L, v >= 0 && v <= 0xFFFFFFFFll, 1, "out of uint32 range");
  luabridge::pushArrayUserdata(L, nxArray::uint32Scalar(static_cast<std::uint32_t>(v)));
  return 1;
}

int nxClass(lua_State* L) {
  return luaGuard(L, [](lua_State* L) {
    lua_pushstring(L, toNxArray(L, 1).className().c_str());
    return 1;
  });
}

int nxSize(lua_State* L) {
  return luaGuard(L, [](lua_State* L) {
    nxArray a = toNxArray(L, 1);
    lua_pushinteger(L, static_cast<lua_Integer>(a.rows()));
    lua_pushinteger(L, static_cast<lua_Integer>(a.cols()));
    return 2;
  });
}

}  // namespace

void pushNxArray(lua_State* L, const nxArray& value) {
  luaL_checkstack(L, 4, "converting a host-language value");
  if (!plainForm(value)) {
    luabridge::pushArrayUserdata(L, value);
    return;
  }
  switch (value.classID()) {
    case nxClassID::Char:
      lua_pushlstring(L, value.charData().data(), value.charData().size());
      return;
    case nxClassID::Double:
      if (value.isEmpty()) {
        lua_pushnil(L);
      } else {
        lua_pushnumber(L, value.getDouble(0));
      }
      return;
    case nxClassID::Logical:
      lua_pushboolean(L, value.getLogical(0));
      return;
    case nxClassID::Cell:
      lua_createtable(L, static_cast<int>(value.numel()), 0);
      for (std::size_t i = 0; i < value.numel(); ++i) {
        pushNxArray(L, value.getCell(i));
        lua_rawseti(L, -2, static_cast<lua_Integer>(i + 1));
      }
      return;
    case nxClassID::Struct:
      lua_createtable(L, 0, static_cast<int>(value.fieldNames().size()));
      for (const auto& f : value.fieldNames()) {
        pushNxArray(L, *value.getField(0, f));
        lua_setfield(L, -2, f.c_str());
      }
      return;
    case nxClassID::Object:
      luabridge::pushObject(L, value.getObject(0));
      return;
    case nxClassID::UInt32:
      break;
  }
  luabridge::pushArrayUserdata(L, value);
}

nxArray toNxArray(lua_State* L, int index) {
  luaL_checkstack(L, 4, "converting a Lua value");
  index = lua_absindex(L, index);
  int top = lua_gettop(L);
  try {
    return convert(L, index, 0);
  } catch (...) {
    lua_settop(L, top);  // a failure deep inside a table leaves its keys and values behind
    throw;
  }
}

namespace luabridge {

const nxArray* testArray(lua_State* L, int index) {
  return static_cast<const nxArray*>(luaL_testudata(L, index, arrayType));
}

void pushArrayUserdata(lua_State* L, const nxArray& value) {
  void* memory = lua_newuserdatauv(L, sizeof(nxArray), 0);
  new (memory) nxArray(value);
  luaL_setmetatable(L, arrayType);
}

void installArrays(lua_State* L) {
  luaL_newmetatable(L, arrayType);
  const luaL_Reg meta[] = {{"__gc", arrayGc},        {"__len", arrayLen},
                           {"__index", arrayIndex},  {"__tostring", arrayToString},
                           {"__eq", arrayEq},        {nullptr, nullptr}};
  luaL_setfuncs(L, meta, 0);
  const luaL_Reg methods[] = {{"class", arrayClass},
                              {"size", arraySize},
                              {"totable", arrayToTable},
                              {nullptr, nullptr}};
  luaL_newlib(L, methods);
  lua_setfield(L, -2, "methods");
  lua_pop(L, 1);

  const luaL_Reg nx[] = {{"array", nxArrayNew}, {"column", nxColumn}, {"uint32", nxUInt32},
                         {"class", nxClass},    {"size", nxSize},     {nullptr, nullptr}};
  luaL_newlib(L, nx);
  lua_setglobal(L, "nx");
}

}  // namespace luabridge
}  // namespace blockara
