// The Diagram and Block types of the scripting API. A Diagram or Block value holds only a handle
// and resolves it at every call, so a script can keep one across edits, undo and close without
// ever reaching a dead object: a closed diagram or a deleted block gives a clear Lua error.
#include <lua.hpp>

#include <string>

#include "app/luaapi.h"
#include "app/luacall.h"
#include "app/luatypes.h"
#include "app/luavalues.h"
#include "app/signallog.h"
#include "host/language/luahost.h"
#include "host/model/bkgraph.h"
#include "host/model/bkrootbd.h"
#include "host/model/diagramediting.h"
#include "host/studio/studioapp.h"
#include "host/style/styler.h"

namespace blockara::app {

namespace {

struct HandleRef {
  double handle;
};

constexpr const char* kDiagramType = "blockara.Diagram";
constexpr const char* kBlockType = "blockara.Block";

BKRootBD* checkDiagram(lua_State* L, int index = 1) {
  auto* ref = static_cast<HandleRef*>(luaL_checkudata(L, index, kDiagramType));
  BKRootBD* diagram = bkBlockDiagramSet::handleToBlockDiagram(ref->handle);
  if (!diagram) luaL_error(L, "the diagram is closed");
  return diagram;
}

BKBlock* checkBlock(lua_State* L, int index = 1) {
  auto* ref = static_cast<HandleRef*>(luaL_checkudata(L, index, kBlockType));
  BKBlock* block = BKBlock::Handle2Block(ref->handle);
  if (!block || !block->getBlockDiagram()) luaL_error(L, "the block no longer exists");
  return block;
}

// Raises a compile-side or execution-side event of the diagram.
template <int Event>
constexpr auto compileEvent = [](BKRootBD* d) { d->getCompBD()->raise(Event); };
template <int Event>
constexpr auto execEvent = [](BKRootBD* d) { d->getExecBD()->raise(Event); };

// d:batch(fn): the batch ends whatever fn did, so that a failing script leaves no open batch.
void batch(lua_State* L, BKRootBD* d) {
  luaL_checktype(L, 2, LUA_TFUNCTION);
  d->editing().beginBatch();
  lua_pushvalue(L, 2);
  lua_pushvalue(L, 1);
  int status = lua_pcall(L, 1, 0, 0);
  std::string sink;
  try {
    d->editing().endBatch();
  } catch (const std::exception& e) {
    sink = e.what();
  }
  if (status != LUA_OK) lua_error(L);
  if (!sink.empty()) luaL_error(L, "%s", sink.c_str());
}

const luaL_Reg diagramMethods[] = {
    {"add", luaFunction<[](BKRootBD* d, bksvString system, std::string type, bksvString name,
                           PropertyMap props) {
       return d->editing().addBlock(system, type, name, props);
     }>},
    {"delete", luaFunction<[](BKRootBD* d, bksvString path) { d->editing().deleteBlock(path); }>},
    {"rename", luaFunction<[](BKRootBD* d, bksvString path, bksvString name) {
       d->editing().renameBlock(path, name);
     }>},
    {"move", luaFunction<[](BKRootBD* d, bksvString path, bksvString system) {
       d->editing().moveBlock(path, system);
     }>},
    {"set", luaFunction<[](BKRootBD* d, bksvString path, PropertyMap props) {
       d->editing().setProperties(path, props);
     }>},
    {"comment", luaFunction<[](lua_State* L, BKRootBD* d, bksvString path) {
       static const char* const states[] = {"none", "out", "through", nullptr};
       d->editing().setCommentState(path, luaL_checkoption(L, 3, nullptr, states));
     }>},
    {"batch", luaFunction<batch>},
    {"undo", luaFunction<[](BKRootBD* d) { return d->editing().undo(); }>},
    {"redo", luaFunction<[](BKRootBD* d) { return d->editing().redo(); }>},
    {"setModelParamRaw", luaFunction<[](lua_State* L, BKRootBD* d, std::string name) {
       // Any value, in the form tostring gives it.
       std::string value = luaL_tolstring(L, 3, nullptr);
       d->editing().setModelParam(name, BlockParamValue(value));
     }>},
    {"removeConfigSet", luaFunction<[](BKRootBD* d) { d->removeConfigSet(); }>},
    {"setExclusionFile",
     luaFunction<[](BKRootBD* d, bksvString path) { d->setExclusionFilePath(path); }>},
    {"setPart", luaFunction<[](lua_State* L, BKRootBD* d, std::string name, std::string_view text) {
       if (name.empty() || name[0] != '/') {
         luaL_error(L, "part names begin with '/': %s", name.c_str());
       }
       d->parts()[name] = std::string(text);
     }>},
    {"setAuditorMode", luaFunction<[](BKRootBD* d, bool on) { d->setAuditorMode(on); }>},
    {"setSuspended", luaFunction<[](BKRootBD* d, bool on) { d->setSuspended(on); }>},
    {"compileBegin", luaFunction<compileEvent<1>>},
    {"compileEnd", luaFunction<compileEvent<35>>},
    {"workspaceChanged", luaFunction<compileEvent<33>>},
    {"variablesChanged", luaFunction<compileEvent<34>>},
    {"simulateBegin", luaFunction<execEvent<2>>},
    {"simulateEnd", luaFunction<execEvent<5>>},
    {"openEditorRaw", luaFunction<[](BKRootBD* d, bksvString system) {
       Blockara::StudioApp::open(d)->openEditor(system);
     }>},
    {"focus", luaFunction<[](BKRootBD* d, bksvString system) {
       Blockara::StudioApp::open(d)->focus(system);
     }>},
    {"closeEditor", luaFunction<[](BKRootBD* d, bksvString system) {
       Blockara::StudioApp::open(d)->closeEditors(system);
     }>},
    {"renameDiagramRaw",
     luaFunction<[](BKRootBD* d, bksvString name) { bkBlockDiagramSet::rename(d, name); }>},
    {"save", luaFunction<[](BKRootBD* d, std::string path) { saveModelFile(*d, path); }>},
    {"close", luaFunction<[](BKRootBD* d) { bkBlockDiagramSet::close(d); }>},
    {"block", luaFunction<[](BKRootBD* d, bksvString path) { return d->findBlock(path); }>},
    {"signals", luaFunction<[](BKRootBD* d) { return SignalLog::take(d->getHandle()); }>},
    {"blocks", luaFunction<[](BKRootBD* d) { return d->blocksInPathOrder(); }>},
    {nullptr, nullptr}};

// d.name, then the methods (C++ ones and those the prelude adds to the same table).
int diagramIndex(lua_State* L) {
  std::string key = luaL_checkstring(L, 2);
  if (key == "name") {
    pushUString(L, checkDiagram(L)->getName());
    return 1;
  }
  if (key == "handle") {
    lua_pushnumber(L, static_cast<HandleRef*>(luaL_checkudata(L, 1, kDiagramType))->handle);
    return 1;
  }
  luaL_getmetatable(L, kDiagramType);
  lua_getfield(L, -1, "methods");
  lua_getfield(L, -1, key.c_str());
  return 1;
}

const luaL_Reg blockMethods[] = {
    {"get", luaFunction<[](BKBlock* block, std::string name) { return block->getProperty(name); }>},
    // The dialog parameters in dialog order, each {name=, type=} with the library's type code.
    {"parameters", luaFunction<[](BKBlock* block) {
       std::vector<std::map<std::string, BlockValue>> out;
       for (const BKPrmDesc& desc : block->getDialogInfo()) {
         out.push_back({{"name", desc.name}, {"type", static_cast<double>(desc.typeCode)}});
       }
       return out;
     }>},
    {"classes", luaFunction<[](BKBlock* block) {
       std::vector<std::string> names;
       for (const std::wstring& c : diagram::style::classesOf(block->getHandle()))
         names.emplace_back(c.begin(), c.end());
       return names;
     }>},
    {nullptr, nullptr}};

int blockIndex(lua_State* L) {
  std::string key = luaL_checkstring(L, 2);
  if (key == "handle") {
    lua_pushnumber(L, static_cast<HandleRef*>(luaL_checkudata(L, 1, kBlockType))->handle);
    return 1;
  }
  BKBlock* block = checkBlock(L);
  if (key == "path") pushUString(L, block->getFullPath(false));
  else if (key == "name") pushUString(L, block->getName());
  else if (key == "type") pushUString(L, block->getTypeName());
  else if (key == "sid") lua_pushstring(L, block->getSID().c_str());
  else {
    luaL_getmetatable(L, kBlockType);
    lua_getfield(L, -1, "methods");
    lua_getfield(L, -1, key.c_str());
  }
  return 1;
}

template <const char* Type>
int handleEquals(lua_State* L) {
  auto* a = static_cast<HandleRef*>(luaL_testudata(L, 1, Type));
  auto* b = static_cast<HandleRef*>(luaL_testudata(L, 2, Type));
  lua_pushboolean(L, a && b && a->handle == b->handle);
  return 1;
}

int diagramToString(lua_State* L) {
  auto* ref = static_cast<HandleRef*>(luaL_checkudata(L, 1, kDiagramType));
  BKRootBD* d = bkBlockDiagramSet::handleToBlockDiagram(ref->handle);
  std::string name = d ? ConvertUStringToStdString(d->getName()) : std::string("(closed)");
  lua_pushfstring(L, "Diagram %s", name.c_str());
  return 1;
}

int blockToString(lua_State* L) {
  auto* ref = static_cast<HandleRef*>(luaL_checkudata(L, 1, kBlockType));
  BKBlock* b = BKBlock::Handle2Block(ref->handle);
  std::string path = b ? ConvertUStringToStdString(b->getFullPath(false)) : "(deleted)";
  lua_pushfstring(L, "Block %s", path.c_str());
  return 1;
}

constexpr char kDiagramTypeName[] = "blockara.Diagram";
constexpr char kBlockTypeName[] = "blockara.Block";

void makeType(lua_State* L, const char* name, const luaL_Reg* methods, lua_CFunction index,
              lua_CFunction eq, lua_CFunction tostring) {
  luaL_newmetatable(L, name);
  lua_newtable(L);
  luaL_setfuncs(L, methods, 0);
  lua_setfield(L, -2, "methods");
  lua_pushcfunction(L, index);
  lua_setfield(L, -2, "__index");
  lua_pushcfunction(L, eq);
  lua_setfield(L, -2, "__eq");
  lua_pushcfunction(L, tostring);
  lua_setfield(L, -2, "__tostring");
  lua_pop(L, 1);
}

}  // namespace

void pushDiagram(lua_State* L, BKRootBD* diagram) {
  auto* ref = static_cast<HandleRef*>(lua_newuserdatauv(L, sizeof(HandleRef), 0));
  ref->handle = diagram->getHandle();
  luaL_setmetatable(L, kDiagramType);
}

void pushBlock(lua_State* L, BKBlock* block) {
  auto* ref = static_cast<HandleRef*>(lua_newuserdatauv(L, sizeof(HandleRef), 0));
  ref->handle = block->getHandle();
  luaL_setmetatable(L, kBlockType);
}

BKRootBD* toDiagram(lua_State* L, int index) { return checkDiagram(L, index); }

BKBlock* toBlock(lua_State* L, int index) { return checkBlock(L, index); }

void installObjectTypes(lua_State* L) {
  makeType(L, kDiagramType, diagramMethods, diagramIndex, handleEquals<kDiagramTypeName>,
           diagramToString);
  makeType(L, kBlockType, blockMethods, blockIndex, handleEquals<kBlockTypeName>, blockToString);
}

}  // namespace blockara::app
