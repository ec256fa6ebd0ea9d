#include "host/language/luahost.h"

#include <stdexcept>

#include "host/language/feval.h"
#include "host/language/luabridge.h"
#include "host/language/messagecatalog.h"
#include "host/language/nvm.h"

namespace blockara {

namespace {

constexpr const char* hostKey = "blockara.LuaHost";
constexpr const char* resolverKey = "blockara.resolveFunction";

// Finds a host-language function by its dotted name (see LuaHost::callFunction).
constexpr const char* resolverSource = R"lua(
-- A module that is not there means no such function; a module that fails to load keeps its error.
local function loadModule(module)
  local ok, m = pcall(require, module)
  if ok then return m end
  if type(m) == "string" and m:find("module '" .. module .. "' not found:", 1, true) == 1 then
    error("blockara:nvm:UnknownFunction: There is no host-language module '" .. module .. "'.", 0)
  end
  error(m, 0)
end
return function(name)
  local module, fn = name:match("^(.*)%.([^.]+)$")
  if not module then
    local g = rawget(_G, name)
    if type(g) == "function" then return g end
    local m = loadModule(name)
    if type(m) == "function" then return m end
    if type(m) == "table" and type(m[name]) == "function" then return m[name] end
    error("blockara:nvm:UnknownFunction: There is no host-language function '" .. name .. "'.", 0)
  end
  local m = loadModule(module)
  local f = type(m) == "table" and m[fn]
  if type(f) ~= "function" then
    error("blockara:nvm:UnknownFunction: Module '" .. module .. "' has no function '" .. fn .. "'.", 0)
  end
  return f
end
)lua";

int traceback(lua_State* L) {
  const char* message = lua_tostring(L, 1);
  if (!message) {
    if (luaL_callmeta(L, 1, "__tostring") && lua_type(L, -1) == LUA_TSTRING) return 1;
    message = lua_pushfstring(L, "(error object is a %s value)", luaL_typename(L, 1));
  }
  luaL_traceback(L, L, message, 1);
  return 1;
}

/// The message identifier at the start of an error message ("a:b:C: text"), or empty.
std::string leadingIdentifier(const std::string& message) {
  std::size_t end = 0;
  while (end < message.size() &&
         (std::isalnum(static_cast<unsigned char>(message[end])) || message[end] == '_' ||
          message[end] == ':')) {
    ++end;
  }
  std::string token = message.substr(0, end);
  bool colonAfter = !token.empty() && token.back() == ':';
  while (!token.empty() && token.back() == ':') token.pop_back();
  if (token.empty() || token.find(':') == std::string::npos ||
      !std::isalpha(static_cast<unsigned char>(token[0]))) {
    return {};
  }
  // The identifier ends the message, or a colon and a space (or line end) follow it.
  if (end == message.size()) return token;
  if (!colonAfter || (message[end] != ' ' && message[end] != '\n')) return {};
  return token;
}

}  // namespace

LuaHost::LuaHost(LuaHostOptions options) {
  L = luaL_newstate();
  if (!L) throw std::runtime_error("cannot create a Lua state (out of memory)");
  lua_pushlightuserdata(L, this);
  lua_setfield(L, LUA_REGISTRYINDEX, hostKey);
  luaL_openlibs(L);
  setModulePath(options);
  luabridge::installArrays(L);
  luabridge::installNcos(L);
  if (luaL_loadstring(L, resolverSource) != LUA_OK || lua_pcall(L, 0, 1, 0) != LUA_OK) {
    std::string error = lua_tostring(L, -1);
    lua_close(L);
    throw std::runtime_error("cannot install the function resolver: " + error);
  }
  lua_setfield(L, LUA_REGISTRYINDEX, resolverKey);

  std::error_code ec;
  if (!options.root.empty() && std::filesystem::is_regular_file(options.root / "messages.xml", ec)) {
    bkmsg::MessageCatalog::instance().load(options.root / "messages.xml");
  }
  if (options.attachToVirtualMachine) {
    nvm::Factory::getCurrentLocalMVM()->setEvaluator(
        [this](const std::string& name, int nlhs, const std::vector<nxArray>& args) {
          return callFunction(name, nlhs, args);
        });
    attached = true;
  }
}

LuaHost::~LuaHost() {
  if (attached) nvm::Factory::getCurrentLocalMVM()->setEvaluator(nullptr);
  lua_close(L);
}

LuaHost* LuaHost::fromState(lua_State* state) {
  lua_getfield(state, LUA_REGISTRYINDEX, hostKey);
  auto* host = static_cast<LuaHost*>(lua_touserdata(state, -1));
  lua_pop(state, 1);
  return host;
}

void LuaHost::setModulePath(const LuaHostOptions& options) {
  std::string path;
  auto add = [&path](const std::filesystem::path& dir) {
    path += (dir / "?.lua").string() + ";" + (dir / "?" / "init.lua").string() + ";";
  };
  if (!options.root.empty()) add(options.root / "lua");
  for (const auto& dir : options.modulePath) add(dir);
  lua_getglobal(L, "package");
  lua_getfield(L, -1, "path");
  path += lua_tostring(L, -1);
  lua_pop(L, 1);
  lua_pushstring(L, path.c_str());
  lua_setfield(L, -2, "path");
  lua_pop(L, 1);
}

void LuaHost::registerFunction(const std::string& dottedName, lua_CFunction fn) {
  std::size_t dot = dottedName.find('.');
  if (dot == std::string::npos) {
    lua_pushcfunction(L, fn);
    lua_setglobal(L, dottedName.c_str());
    return;
  }
  lua_pushglobaltable(L);
  std::size_t start = 0;
  while (dot != std::string::npos) {
    std::string part = dottedName.substr(start, dot - start);
    if (lua_getfield(L, -1, part.c_str()) != LUA_TTABLE) {
      lua_pop(L, 1);
      lua_newtable(L);
      lua_pushvalue(L, -1);
      lua_setfield(L, -3, part.c_str());
    }
    lua_remove(L, -2);
    start = dot + 1;
    dot = dottedName.find('.', start);
  }
  lua_pushcfunction(L, fn);
  lua_setfield(L, -2, dottedName.substr(start).c_str());
  lua_pop(L, 1);
}

void LuaHost::registerType(const std::string& typeName, const luaL_Reg* methods,
                           const luaL_Reg* metamethods) {
  luaL_newmetatable(L, typeName.c_str());
  if (metamethods) luaL_setfuncs(L, metamethods, 0);
  if (methods) {
    lua_newtable(L);
    luaL_setfuncs(L, methods, 0);
    lua_setfield(L, -2, "__index");
  }
  lua_pop(L, 1);
}

std::optional<std::string> LuaHost::callProtected(int nargs, int nresults) {
  int base = lua_gettop(L) - nargs;
  lua_pushcfunction(L, traceback);
  lua_insert(L, base);
  int status = lua_pcall(L, nargs, nresults, base);
  if (status != LUA_OK) {
    std::string error = lua_tostring(L, -1) ? lua_tostring(L, -1) : "(error without message)";
    lua_settop(L, base - 1);
    return error;
  }
  lua_remove(L, base);
  return std::nullopt;
}

std::optional<std::string> LuaHost::runFile(const std::filesystem::path& file,
                                            const std::vector<std::string>& args) {
  lua_createtable(L, static_cast<int>(args.size()), 1);
  lua_pushstring(L, file.string().c_str());
  lua_rawseti(L, -2, 0);
  for (std::size_t i = 0; i < args.size(); ++i) {
    lua_pushstring(L, args[i].c_str());
    lua_rawseti(L, -2, static_cast<lua_Integer>(i + 1));
  }
  lua_setglobal(L, "arg");
  if (luaL_loadfile(L, file.string().c_str()) != LUA_OK) {
    std::string error = lua_tostring(L, -1);
    lua_pop(L, 1);
    return error;
  }
  for (const auto& a : args) lua_pushstring(L, a.c_str());
  return callProtected(static_cast<int>(args.size()), 0);
}

std::optional<std::string> LuaHost::runString(const std::string& code, const std::string& chunkName) {
  if (luaL_loadbuffer(L, code.data(), code.size(), chunkName.c_str()) != LUA_OK) {
    std::string error = lua_tostring(L, -1);
    lua_pop(L, 1);
    return error;
  }
  return callProtected(0, 0);
}

std::vector<nxArray> LuaHost::callFunction(const std::string& functionName, int nlhs,
                                           const std::vector<nxArray>& args) {
  int base = lua_gettop(L);
  auto fail = [&](const std::string& message) -> NException {
    lua_settop(L, base);
    return NException(leadingIdentifier(message), message);
  };
  lua_getfield(L, LUA_REGISTRYINDEX, resolverKey);
  lua_pushlstring(L, functionName.data(), functionName.size());
  if (lua_pcall(L, 1, 1, 0) != LUA_OK) {
    throw fail(lua_tostring(L, -1) ? lua_tostring(L, -1) : "cannot resolve " + functionName);
  }
  for (const auto& a : args) pushNxArray(L, a);
  int wanted = nlhs < 0 ? 0 : nlhs;
  if (lua_pcall(L, static_cast<int>(args.size()), wanted, 0) != LUA_OK) {
    std::string message = lua_tostring(L, -1) ? lua_tostring(L, -1) : "(error without message)";
    throw fail(message);
  }
  std::vector<nxArray> results;
  try {
    for (int i = 0; i < wanted; ++i) results.push_back(toNxArray(L, base + 1 + i));
  } catch (const std::exception& e) {
    throw fail("blockara:nvm:BadResult: " + functionName + " returned a value with no " +
               "host-language form: " + e.what());
  }
  lua_settop(L, base);
  return results;
}

}  // namespace blockara
