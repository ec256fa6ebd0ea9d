// The Diagram and Block types of the scripting API. A Diagram or Block value holds only a handle
// and resolves it at every call, so a script can keep one across edits, undo and close without
// ever reaching a dead object: a closed diagram or a deleted block gives a clear Lua error.
#include <lua.hpp>

#include <string>

#include "app/luaapi.h"
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

int comment(lua_State* L) {
  BKRootBD* d = checkDiagram(L);
  bksvString path = checkUString(L, 2);
  static const char* const states[] = {"none", "out", "through", nullptr};
  int state = luaL_checkoption(L, 3, nullptr, states);
  return luaGuard(L, [&](lua_State*) {
    d->editing().setCommentState(path, state);
    return 0;
  });
}

int batch(lua_State* L) {
  BKRootBD* d = checkDiagram(L);
  luaL_checktype(L, 2, LUA_TFUNCTION);
  d->editing().beginBatch();
  lua_pushvalue(L, 2);
  lua_pushvalue(L, 1);
  int status = lua_pcall(L, 1, 0, 0);
  // The batch ends whatever the function did, so that a failing script leaves no open batch.
  std::string sink;
  try {
    d->editing().endBatch();
  } catch (const std::exception& e) {
    sink = e.what();
  }
  if (status != LUA_OK) return lua_error(L);
  if (!sink.empty()) return luaL_error(L, "%s", sink.c_str());
  return 0;
}

template <bool Forward>
int history(lua_State* L) {
  BKRootBD* d = checkDiagram(L);
  return luaGuard(L, [&](lua_State*) {
    lua_pushboolean(L, Forward ? d->editing().redo() : d->editing().undo());
    return 1;
  });
}

template <int Event>
int compileEvent(lua_State* L) {
  BKRootBD* d = checkDiagram(L);
  return luaGuard(L, [&](lua_State*) {
    d->getCompBD()->raise(Event);
    return 0;
  });
}

template <int Event>
int execEvent(lua_State* L) {
  BKRootBD* d = checkDiagram(L);
  return luaGuard(L, [&](lua_State*) {
    d->getExecBD()->raise(Event);
    return 0;
  });
}

const luaL_Reg diagramMethods[] = {
    {"add",
     [](lua_State* L) {
       BKRootBD* d = checkDiagram(L);
       bksvString system = checkUString(L, 2);
       std::string type = luaL_checkstring(L, 3);
       bksvString name = checkUString(L, 4);
       PropertyMap props = checkPropertyTable(L, 5);
       return luaGuard(L, [&](lua_State*) {
         pushBlock(L, d->editing().addBlock(system, type, name, props));
         return 1;
       });
     }},
    {"delete",
     [](lua_State* L) {
       BKRootBD* d = checkDiagram(L);
       bksvString path = checkUString(L, 2);
       return luaGuard(L, [&](lua_State*) {
         d->editing().deleteBlock(path);
         return 0;
       });
     }},
    {"rename",
     [](lua_State* L) {
       BKRootBD* d = checkDiagram(L);
       bksvString path = checkUString(L, 2);
       bksvString name = checkUString(L, 3);
       return luaGuard(L, [&](lua_State*) {
         d->editing().renameBlock(path, name);
         return 0;
       });
     }},
    {"move",
     [](lua_State* L) {
       BKRootBD* d = checkDiagram(L);
       bksvString path = checkUString(L, 2);
       bksvString system = checkUString(L, 3);
       return luaGuard(L, [&](lua_State*) {
         d->editing().moveBlock(path, system);
         return 0;
       });
     }},
    {"set",
     [](lua_State* L) {
       BKRootBD* d = checkDiagram(L);
       bksvString path = checkUString(L, 2);
       PropertyMap props = checkPropertyTable(L, 3);
       return luaGuard(L, [&](lua_State*) {
         d->editing().setProperties(path, props);
         return 0;
       });
     }},
    {"comment", comment},
    {"batch", batch},
    {"undo", history<false>},
    {"redo", history<true>},
    {"setModelParamRaw",
     [](lua_State* L) {
       BKRootBD* d = checkDiagram(L);
       std::string name = luaL_checkstring(L, 2);
       std::string value = luaL_tolstring(L, 3, nullptr);
       return luaGuard(L, [&](lua_State*) {
         d->editing().setModelParam(name, BlockParamValue(value));
         return 0;
       });
     }},
    {"removeConfigSet",
     [](lua_State* L) {
       checkDiagram(L)->removeConfigSet();
       return 0;
     }},
    {"setExclusionFile",
     [](lua_State* L) {
       BKRootBD* d = checkDiagram(L);
       d->setExclusionFilePath(checkUString(L, 2));
       return 0;
     }},
    {"setPart",
     [](lua_State* L) {
       BKRootBD* d = checkDiagram(L);
       std::string name = luaL_checkstring(L, 2);
       std::size_t len = 0;
       const char* text = luaL_checklstring(L, 3, &len);
       if (name.empty() || name[0] != '/') luaL_error(L, "part names begin with '/': %s", name.c_str());
       d->parts()[name] = std::string(text, len);
       return 0;
     }},
    {"setAuditorMode",
     [](lua_State* L) {
       BKRootBD* d = checkDiagram(L);
       d->setAuditorMode(lua_toboolean(L, 2));
       return 0;
     }},
    {"setSuspended",
     [](lua_State* L) {
       BKRootBD* d = checkDiagram(L);
       d->setSuspended(lua_toboolean(L, 2));
       return 0;
     }},
    {"compileBegin", compileEvent<1>},
    {"compileEnd", compileEvent<35>},
    {"workspaceChanged", compileEvent<33>},
    {"variablesChanged", compileEvent<34>},
    {"simulateBegin", execEvent<2>},
    {"simulateEnd", execEvent<5>},
    {"openEditorRaw",
     [](lua_State* L) {
       BKRootBD* d = checkDiagram(L);
       bksvString system = checkUString(L, 2);
       return luaGuard(L, [&](lua_State*) {
         Blockara::StudioApp::open(d)->openEditor(system);
         return 0;
       });
     }},
    {"focus",
     [](lua_State* L) {
       BKRootBD* d = checkDiagram(L);
       bksvString system = checkUString(L, 2);
       return luaGuard(L, [&](lua_State*) {
         Blockara::StudioApp::open(d)->focus(system);
         return 0;
       });
     }},
    {"closeEditor",
     [](lua_State* L) {
       BKRootBD* d = checkDiagram(L);
       bksvString system = checkUString(L, 2);
       return luaGuard(L, [&](lua_State*) {
         Blockara::StudioApp::open(d)->closeEditors(system);
         return 0;
       });
     }},
    {"renameDiagramRaw",
     [](lua_State* L) {
       BKRootBD* d = checkDiagram(L);
       bksvString name = checkUString(L, 2);
       return luaGuard(L, [&](lua_State*) {
         bkBlockDiagramSet::rename(d, name);
         return 0;
       });
     }},
    {"save",
     [](lua_State* L) {
       BKRootBD* d = checkDiagram(L);
       std::string path = luaL_checkstring(L, 2);
       return luaGuard(L, [&](lua_State*) {
         saveModelFile(*d, path);
         return 0;
       });
     }},
    {"close",
     [](lua_State* L) {
       BKRootBD* d = checkDiagram(L);
       return luaGuard(L, [&](lua_State*) {
         bkBlockDiagramSet::close(d);
         return 0;
       });
     }},
    {"block",
     [](lua_State* L) {
       BKRootBD* d = checkDiagram(L);
       BKBlock* block = d->findBlock(checkUString(L, 2));
       if (block) pushBlock(L, block);
       else lua_pushnil(L);
       return 1;
     }},
    {"signals",
     [](lua_State* L) {
       BKRootBD* d = checkDiagram(L);
       std::vector<std::string> lines = SignalLog::take(d->getHandle());
       lua_createtable(L, static_cast<int>(lines.size()), 0);
       for (std::size_t i = 0; i < lines.size(); ++i) {
         lua_pushlstring(L, lines[i].data(), lines[i].size());
         lua_seti(L, -2, static_cast<lua_Integer>(i + 1));
       }
       return 1;
     }},
    {"blocks",
     [](lua_State* L) {
       BKRootBD* d = checkDiagram(L);
       std::vector<BKBlock*> blocks = d->blocksInPathOrder();
       lua_createtable(L, static_cast<int>(blocks.size()), 0);
       for (std::size_t i = 0; i < blocks.size(); ++i) {
         pushBlock(L, blocks[i]);
         lua_seti(L, -2, static_cast<lua_Integer>(i + 1));
       }
       return 1;
     }},
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
    {"get",
     [](lua_State* L) {
       BKBlock* block = checkBlock(L);
       std::string name = luaL_checkstring(L, 2);
       return luaGuard(L, [&](lua_State*) {
         pushBlockValue(L, block->getProperty(name));
         return 1;
       });
     }},
    {"parameters",
     [](lua_State* L) {
       // The dialog parameters in dialog order, each {name=, type=} with the library's type code.
       BKBlock* block = checkBlock(L);
       const std::vector<BKPrmDesc>& descs = block->getDialogInfo();
       lua_createtable(L, static_cast<int>(descs.size()), 0);
       for (std::size_t i = 0; i < descs.size(); ++i) {
         lua_createtable(L, 0, 2);
         lua_pushstring(L, descs[i].name.c_str());
         lua_setfield(L, -2, "name");
         lua_pushinteger(L, descs[i].typeCode);
         lua_setfield(L, -2, "type");
         lua_seti(L, -2, static_cast<lua_Integer>(i + 1));
       }
       return 1;
     }},
    {"classes",
     [](lua_State* L) {
       BKBlock* block = checkBlock(L);
       std::vector<std::wstring> classes = diagram::style::classesOf(block->getHandle());
       lua_createtable(L, static_cast<int>(classes.size()), 0);
       for (std::size_t i = 0; i < classes.size(); ++i) {
         std::string narrow(classes[i].begin(), classes[i].end());
         lua_pushstring(L, narrow.c_str());
         lua_seti(L, -2, static_cast<lua_Integer>(i + 1));
       }
       return 1;
     }},
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

void installObjectTypes(lua_State* L) {
  makeType(L, kDiagramType, diagramMethods, diagramIndex, handleEquals<kDiagramTypeName>,
           diagramToString);
  makeType(L, kBlockType, blockMethods, blockIndex, handleEquals<kBlockTypeName>, blockToString);
}

}  // namespace blockara::app
