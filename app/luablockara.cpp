// The global `blockara` table of the scripting API.
#include <lua.hpp>

#include <chrono>
#include <fstream>
#include <stdexcept>
#include <string>

#include "app/luaapi.h"
#include "app/luatypes.h"
#include "app/luavalues.h"
#include "app/report.h"
#include "app/signallog.h"
#include "host/language/luahost.h"
#include "host/model/bkrootbd.h"
#include "host/prefs/bkfeatureregistry.h"
#include "host/prefs/directories.h"
#include "host/prefs/edittimepreferences.h"
#include "host/runtime/cooperativetaskmanager.h"
#include "host/runtime/eventloop.h"
#include "host/studio/studioapp.h"
#include "src/moduleentries.h"

namespace blockara::app {

namespace {

using bk::bkedittimecheck::bkutils::EditTimePreferences;

// Reads the `opts` table of new and load: library and auditor. Absent fields are nil.
struct OpenOptions {
  int library = -1;  // -1: as the file says
  int auditor = -1;
};

OpenOptions checkOpenOptions(lua_State* L, int index) {
  OpenOptions o;
  if (lua_isnoneornil(L, index)) return o;
  luaL_checktype(L, index, LUA_TTABLE);
  if (lua_getfield(L, index, "library") != LUA_TNIL) o.library = lua_toboolean(L, -1);
  if (lua_getfield(L, index, "auditor") != LUA_TNIL) o.auditor = lua_toboolean(L, -1);
  lua_pop(L, 2);
  return o;
}

void applyOpenOptions(BKRootBD* d, const OpenOptions& o) {
  if (o.library >= 0) d->setDiagramKind(o.library ? BKRootBD::Library : BKRootBD::Model);
  if (o.auditor >= 0) d->setAuditorMode(o.auditor != 0);
}

std::string narrow(const std::wstring& text) {
  std::u16string wide(text.begin(), text.end());
  return ConvertUStringToStdString(wide);
}

int newDiagram(lua_State* L) {
  bksvString name = checkUString(L, 1);
  OpenOptions o = checkOpenOptions(L, 2);
  return luaGuard(L, [&](lua_State*) {
    BKRootBD* d = bkBlockDiagramSet::create(name, o.library == 1 ? BKRootBD::Library
                                                                 : BKRootBD::Model);
    applyOpenOptions(d, o);
    openForEditing(d);
    pushDiagram(L, d);
    return 1;
  });
}

int loadDiagram(lua_State* L) {
  std::string path = luaL_checkstring(L, 1);
  OpenOptions o = checkOpenOptions(L, 2);
  return luaGuard(L, [&](lua_State*) {
    BKRootBD* d = loadModelFile(path);
    applyOpenOptions(d, o);
    openForEditing(d);
    pushDiagram(L, d);
    return 1;
  });
}

int findDiagram(lua_State* L) {
  BKRootBD* d = bkBlockDiagramSet::nameToBlockDiagram(checkUString(L, 1));
  if (d) pushDiagram(L, d);
  else lua_pushnil(L);
  return 1;
}

int idle(lua_State* L) {
  double seconds = luaL_optnumber(L, 1, 10.0);
  if (seconds < 0) seconds = 0;
  auto timeout = std::chrono::milliseconds(static_cast<long long>(seconds * 1000.0));
  return luaGuard(L, [&](lua_State*) {
    lua_pushboolean(L, EventLoop::instance().runUntilQuiet(timeout));
    return 1;
  });
}

// blockara.step(): one step of the main loop, for scripts that watch work proceed. Runs the
// host-language commands posted so far, or else one slice of the cooperative tasks; with neither
// waiting but the checker busy, first waits (up to 10 s) for the worker to post its result.
// Returns "posted" or "task" for what ran, false when the loop was idle.
int step(lua_State* L) {
  return luaGuard(L, [&](lua_State*) {
    EventLoop& loop = EventLoop::instance();
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (loop.pendingCount() == 0 && !Performance::CooperativeTaskManager::hasPendingWork() &&
           !loop.busyReasons().empty() && std::chrono::steady_clock::now() < deadline) {
      loop.waitForPosted(std::chrono::milliseconds(1));
    }
    const char* what = loop.pendingCount() > 0 ? "posted"
                       : Performance::CooperativeTaskManager::hasPendingWork() ? "task"
                                                                                : nullptr;
    if (!what) {
      lua_pushboolean(L, false);
      return 1;
    }
    loop.pumpOnce();
    lua_pushstring(L, what);
    return 1;
  });
}

int setPreference(lua_State* L) {
  std::string name = luaL_checkstring(L, 1);
  if (name != "ShowEditTimeIssues") return luaL_error(L, "unknown preference %s", name.c_str());
  luaL_checktype(L, 2, LUA_TBOOLEAN);
  bk::bkedittimecheck::bkutils::setShowEditTimeIssues(lua_toboolean(L, 2));
  return 0;
}

int getPreference(lua_State* L) {
  std::string name = luaL_checkstring(L, 1);
  if (name != "ShowEditTimeIssues") return luaL_error(L, "unknown preference %s", name.c_str());
  lua_pushboolean(L, bk::bkedittimecheck::bkutils::getShowEditTimeIssues());
  return 1;
}

int setPreferencesDirectory(lua_State* L) {
  std::string dir = luaL_checkstring(L, 1);
  return luaGuard(L, [&](lua_State*) {
    svSetPreferencesDirectory(dir);
    return 0;
  });
}

int setInstallationRoot(lua_State* L) {
  std::string dir = luaL_checkstring(L, 1);
  return luaGuard(L, [&](lua_State*) {
    svSetNumeriaRoot(dir);
    return 0;
  });
}

int feature(lua_State* L) {
  std::string name = luaL_checkstring(L, 1);
  if (!lua_isnoneornil(L, 2)) {
    int level = static_cast<int>(luaL_checkinteger(L, 2));
    BkFeatureRegistry::setLevel(name, level);
  }
  std::optional<int> level = BkFeatureRegistry::level(name);
  if (!level) return luaL_error(L, "unknown feature %s", name.c_str());
  lua_pushinteger(L, *level);
  return 1;
}

// blockara.block(handle): the live block of a handle, or nil once it is gone.
int blockByHandle(lua_State* L) {
  BKBlock* block = BKBlock::Handle2Block(luaL_checknumber(L, 1));
  if (block) pushBlock(L, block);
  else lua_pushnil(L);
  return 1;
}

int checkSelection(lua_State* L) {
  auto map = EditTimePreferences::checkSelectionMap();
  if (!map) {
    lua_pushnil(L);
    return 1;
  }
  lua_createtable(L, 0, static_cast<int>(map->size()));
  for (const auto& [id, on] : *map) {
    lua_pushboolean(L, on);
    lua_setfield(L, -2, id.c_str());
  }
  return 1;
}

int ceExclusions(lua_State* L) {
  bksvString name16 = checkUString(L, 1);
  std::wstring name(name16.begin(), name16.end());
  auto map = EditTimePreferences::ceExclusions(name);
  if (!map) {
    lua_pushnil(L);
    return 1;
  }
  lua_createtable(L, 0, static_cast<int>(map->size()));
  for (const auto& [path, ids] : *map) {
    lua_createtable(L, static_cast<int>(ids.size()), 0);
    for (std::size_t i = 0; i < ids.size(); ++i) {
      lua_pushstring(L, narrow(ids[i]).c_str());
      lua_seti(L, -2, static_cast<lua_Integer>(i + 1));
    }
    lua_setfield(L, -2, narrow(path).c_str());
  }
  return 1;
}

// blockara.report(d, format [, path]): the findings of a diagram as text, SARIF or HTML; written
// to `path` when given, returned in every case.
int report(lua_State* L) {
  BKRootBD* d = toDiagram(L, 1);
  std::string format = luaL_optstring(L, 2, "text");
  std::string path = luaL_optstring(L, 3, "");
  return luaGuard(L, [&](lua_State*) {
    std::string text = formatReport(*d, collectFindings(*d), format, d->getFilePath());
    if (!path.empty()) {
      std::ofstream out(path, std::ios::binary);
      out << text;
      if (!out) throw std::runtime_error(path + ": cannot write the report");
    }
    lua_pushlstring(L, text.data(), text.size());
    return 1;
  });
}

}  // namespace

void openForEditing(BKRootBD* diagram) {
  SignalLog::attach(diagram);
  RegisterEditBdEvents(diagram);
  RegisterCompBdEvents(diagram->getCompBD());
  RegisterExecPlugins(diagram->getExecBD());
  Blockara::StudioApp::open(diagram)->openEditor(diagram->getName());
  diagram->notifyOpened();
}

void installLuaApi(LuaHost& host) {
  lua_State* L = host.state();
  installObjectTypes(L);
  host.registerFunction("blockara.new", newDiagram);
  host.registerFunction("blockara.load", loadDiagram);
  host.registerFunction("blockara.diagram", findDiagram);
  host.registerFunction("blockara.block", blockByHandle);
  host.registerFunction("blockara.idle", idle);
  host.registerFunction("blockara.step", step);
  host.registerFunction("blockara.setPreference", setPreference);
  host.registerFunction("blockara.getPreference", getPreference);
  host.registerFunction("blockara.setPreferencesDirectory", setPreferencesDirectory);
  host.registerFunction("blockara.setInstallationRoot", setInstallationRoot);
  host.registerFunction("blockara.feature", feature);
  host.registerFunction("blockara.checkSelection", checkSelection);
  host.registerFunction("blockara.ceExclusions", ceExclusions);
  host.registerFunction("blockara.report", report);
  lua_getglobal(L, "blockara");
  lua_newtable(L);
  lua_setfield(L, -2, "workspace");
  // The Diagram methods table, for the prelude to extend.
  luaL_getmetatable(L, "blockara.Diagram");
  lua_getfield(L, -1, "methods");
  lua_setfield(L, -3, "Diagram");
  lua_pop(L, 2);
  if (auto error = host.runString("require('blockara.prelude')", "=blockara.prelude")) {
    throw std::runtime_error("the Lua prelude failed: " + *error);
  }
}

}  // namespace blockara::app
