#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <lua.hpp>

#include "host/language/feval.h"
#include "host/language/nxarray.h"

namespace blockara {

/// Where the host finds its Lua modules.
struct LuaHostOptions {
  /// The installation root; modules are looked for under `<root>/lua` first.
  std::filesystem::path root;
  /// Further module directories, searched after the root's.
  std::vector<std::filesystem::path> modulePath;
  /// Attach this host as the virtual machine's evaluator (so bksvFEVAL_NoThrow and posted
  /// requests run Lua).
  bool attachToVirtualMachine = true;
};

/// The embedded Lua 5.4 state of the host: standard libraries, the module path, the generic
/// bridge to every `ncos` class (globals per top-level package, resolved when read, so that
/// packages added later appear too), the `nx` helper table, and protected calls.
///
/// Thread contract: main thread only. Lua errors never leave through a C++ caller that does not
/// expect them (every entry uses a protected call); C++ exceptions never cross a Lua frame (every
/// C function of the bridge turns them into Lua errors).
class LuaHost {
 public:
  explicit LuaHost(LuaHostOptions options);
  ~LuaHost();
  LuaHost(const LuaHost&) = delete;
  LuaHost& operator=(const LuaHost&) = delete;

  lua_State* state() const { return L; }
  /// The host that owns `L`, or null.
  static LuaHost* fromState(lua_State* L);

  /// Sets a global, or a field of a global table path such as "blockara.new" (tables are made as
  /// needed), to a C function.
  void registerFunction(const std::string& dottedName, lua_CFunction fn);
  /// Makes the metatable of a userdata type (in the registry under `typeName`), with `methods`
  /// reachable through __index and `metamethods` (such as __gc, __tostring) set on it.
  /// Either list may be null; both end with a {nullptr, nullptr} entry.
  void registerType(const std::string& typeName, const luaL_Reg* methods,
                    const luaL_Reg* metamethods);

  /// Calls the function below its `nargs` arguments on the stack, protected, with a traceback.
  /// Returns nothing on success (the `nresults` results are on the stack), else the error message
  /// followed by the traceback (the stack is then as before the function was pushed).
  std::optional<std::string> callProtected(int nargs, int nresults);
  /// Runs a file with `args` in the global `arg` (arg[0] is the file). Returns the error if any.
  std::optional<std::string> runFile(const std::filesystem::path& file,
                                     const std::vector<std::string>& args = {});
  /// Runs a chunk of code. Returns the error if any.
  std::optional<std::string> runString(const std::string& code,
                                       const std::string& chunkName = "=(string)");

  /// Calls the host-language function `functionName` ("module.path.function": `function` of the
  /// module `module.path` found by `require`; a name without a dot is a global function or, if
  /// there is none, the module of that name when it returns a function) with array arguments,
  /// giving `nlhs` results as arrays (missing results are empty arrays). Throws NException with
  /// the error's message identifier (when its message begins with one) on any Lua error.
  std::vector<nxArray> callFunction(const std::string& functionName, int nlhs,
                                    const std::vector<nxArray>& args);

 private:
  void setModulePath(const LuaHostOptions& options);

  lua_State* L = nullptr;
  bool attached = false;
};

/// Pushes an array as a Lua value by the conversion rules of docs/host-language.md.
void pushNxArray(lua_State* L, const nxArray& value);
/// Converts the Lua value at `index` to an array by the same rules. Throws std::invalid_argument
/// for a value that has no array form (functions, threads, tables with mixed keys, ...).
nxArray toNxArray(lua_State* L, int index);

/// Runs `body(L)` and turns a C++ exception into a Lua error whose message is the exception's
/// `what()` (for message-ID exceptions: identifier, ": " and text), and any other exception into a
/// Lua error saying so; Lua's own errors pass through.
/// Use it in every C function that calls C++ code that may throw.
template <class F>
int luaGuard(lua_State* L, F&& body) {
  std::string error;
  try {
    return body(L);
  } catch (const std::exception& e) {
    error = e.what();
  } catch (void*) {
    throw;  // a Lua error: the C++ build of Lua throws a pointer to its own jump record
  } catch (...) {
    // Anything else would reach Lua's own handler, which would take a stray stack value for the
    // error message.
    error = "a native function failed with an exception of unknown type";
  }
  lua_pushlstring(L, error.data(), error.size());
  return lua_error(L);
}

}  // namespace blockara
