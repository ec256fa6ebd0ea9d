// The global `blockara` table of the scripting API.
#include <lua.hpp>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/luaapi.h"
#include "app/luacall.h"
#include "app/luaexpressions.h"
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

// The `opts` table of new and load: library and auditor, each left as the file says when absent.
struct OpenOptions {
  int library = -1;
  int auditor = -1;

  void applyTo(BKRootBD* d) const {
    if (library >= 0) d->setDiagramKind(library ? BKRootBD::Library : BKRootBD::Model);
    if (auditor >= 0) d->setAuditorMode(auditor != 0);
  }
};

}  // namespace

template <>
struct LuaArg<OpenOptions> {
  static OpenOptions check(lua_State* L, int index) {
    OpenOptions o;
    if (lua_isnoneornil(L, index)) return o;
    luaL_checktype(L, index, LUA_TTABLE);
    if (lua_getfield(L, index, "library") != LUA_TNIL) o.library = lua_toboolean(L, -1);
    if (lua_getfield(L, index, "auditor") != LUA_TNIL) o.auditor = lua_toboolean(L, -1);
    lua_pop(L, 2);
    return o;
  }
};

namespace {

std::string narrow(const std::wstring& text) {
  std::u16string wide(text.begin(), text.end());
  return ConvertUStringToStdString(wide);
}

// Opens a new or loaded diagram for editing with its options applied.
BKRootBD* opened(BKRootBD* d, const OpenOptions& o) {
  o.applyTo(d);
  openForEditing(d);
  return d;
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

// The one preference a script may read and write.
void checkPreferenceName(lua_State* L, const std::string& name) {
  if (name != "ShowEditTimeIssues") luaL_error(L, "unknown preference %s", name.c_str());
}

void setPreference(lua_State* L, std::string name) {
  checkPreferenceName(L, name);
  luaL_checktype(L, 2, LUA_TBOOLEAN);
  bk::bkedittimecheck::bkutils::setShowEditTimeIssues(lua_toboolean(L, 2));
}

bool getPreference(lua_State* L, std::string name) {
  checkPreferenceName(L, name);
  return bk::bkedittimecheck::bkutils::getShowEditTimeIssues();
}

lua_Integer feature(lua_State* L, std::string name, std::optional<lua_Integer> level) {
  if (level) BkFeatureRegistry::setLevel(name, static_cast<int>(*level));
  std::optional<int> now = BkFeatureRegistry::level(name);
  if (!now) luaL_error(L, "unknown feature %s", name.c_str());
  return *now;
}

// A diagram's exclusions as a table from path to a list of check IDs.
std::optional<std::map<std::string, std::vector<std::string>>> ceExclusions(bksvString name) {
  auto map = EditTimePreferences::ceExclusions(std::wstring(name.begin(), name.end()));
  if (!map) return std::nullopt;
  std::map<std::string, std::vector<std::string>> out;
  for (const auto& [path, ids] : *map) {
    std::vector<std::string>& list = out[narrow(path)];
    for (const std::wstring& id : ids) list.push_back(narrow(id));
  }
  return out;
}

// blockara.report(d, format [, path]): the findings of a diagram as text, SARIF or HTML; written
// to `path` when given, returned in every case.
std::string report(BKRootBD* d, std::optional<std::string> format,
                   std::optional<std::string> path) {
  SarifRun run;
  run.artifact = d->getFilePath();
  run.start = run.end = std::chrono::system_clock::now();
  std::string text = formatReport(*d, collectFindings(*d), format.value_or("text"), run);
  if (path && !path->empty()) {
    std::ofstream out(*path, std::ios::binary);
    out << text;
    if (!out) throw std::runtime_error(*path + ": cannot write the report");
  }
  return text;
}

// blockara.findings(d): every finding of a diagram as the reports show it, sorted; an exempt one
// carries the rationale of its exclusion.
std::vector<std::map<std::string, std::string>> findings(BKRootBD* d) {
  std::vector<std::map<std::string, std::string>> out;
  for (Finding& f : collectFindings(*d)) {
    std::map<std::string, std::string> entry = {
        {"path", f.path},         {"checkId", f.checkId},   {"type", f.type},
        {"category", f.category}, {"message", f.message}, {"hint", f.hint}};
    if (f.exempt) entry["rationale"] = f.rationale;
    out.push_back(std::move(entry));
  }
  return out;
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
  host.registerFunction("blockara.new", luaFunction<[](bksvString name, OpenOptions o) {
    return opened(bkBlockDiagramSet::create(name, o.library == 1 ? BKRootBD::Library
                                                                 : BKRootBD::Model),
                  o);
  }>);
  host.registerFunction("blockara.load", luaFunction<[](std::string path, OpenOptions o) {
    return opened(loadModelFile(path), o);
  }>);
  host.registerFunction("blockara.diagram", luaFunction<[](bksvString name) {
    return bkBlockDiagramSet::nameToBlockDiagram(name);
  }>);
  // The live block of a handle, or nil once it is gone.
  host.registerFunction("blockara.block", luaFunction<[](double handle) {
    return BKBlock::Handle2Block(handle);
  }>);
  host.registerFunction("blockara.idle", luaFunction<[](std::optional<double> seconds) {
    auto timeout = std::chrono::milliseconds(
        static_cast<long long>(std::max(seconds.value_or(10.0), 0.0) * 1000.0));
    return EventLoop::instance().runUntilQuiet(timeout);
  }>);
  host.registerFunction("blockara.step", step);
  host.registerFunction("blockara.setPreference", luaFunction<setPreference>);
  host.registerFunction("blockara.getPreference", luaFunction<getPreference>);
  host.registerFunction("blockara.setPreferencesDirectory",
                        luaFunction<[](std::string dir) { svSetPreferencesDirectory(dir); }>);
  host.registerFunction("blockara.setInstallationRoot",
                        luaFunction<[](std::string dir) { svSetNumeriaRoot(dir); }>);
  host.registerFunction("blockara.feature", luaFunction<feature>);
  host.registerFunction("blockara.checkSelection",
                        luaFunction<[] { return EditTimePreferences::checkSelectionMap(); }>);
  host.registerFunction("blockara.ceExclusions", luaFunction<ceExclusions>);
  host.registerFunction("blockara.report", luaFunction<report>);
  host.registerFunction("blockara.findings", luaFunction<findings>);
  installExpressionAnswers(L);
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
