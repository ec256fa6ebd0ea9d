// The generic bridge from Lua to the ncos class tables: packages, classes, constructors,
// properties, methods, static methods and overloads, all found by walking the tables.

#include <new>
#include <string>
#include <vector>

#include "host/language/cospackage.h"
#include "host/language/luabridge.h"
#include "host/language/luahost.h"
#include "host/language/ncoserrors.h"

namespace blockara::luabridge {

namespace {

using ncos::COSInterfacePtr;
using ncos::factory::CallFrame;
using ncos::factory::MethodInfo;
using ncos::factory::NcosFactoryClassInfo;

void pushName(lua_State* L, const std::string& name, const char* type) {
  void* memory = lua_newuserdatauv(L, sizeof(std::string), 0);
  new (memory) std::string(name);
  luaL_setmetatable(L, type);
}

std::string& checkName(lua_State* L, int index, const char* type) {
  return *static_cast<std::string*>(luaL_checkudata(L, index, type));
}

int nameGc(lua_State* L) {
  static_cast<std::string*>(lua_touserdata(L, 1))->~basic_string();
  return 0;
}

std::shared_ptr<const NcosFactoryClassInfo> requireClass(const std::string& name) {
  auto cls = ncos::COSPackage::findClass(name);
  if (!cls) throw ncos::UnknownClass(name);
  return cls;
}

std::vector<nxArray> argumentsFrom(lua_State* L, int first) {
  std::vector<nxArray> args;
  int top = lua_gettop(L);
  for (int i = first; i <= top; ++i) args.push_back(toNxArray(L, i));
  return args;
}

std::string describeArguments(const std::vector<nxArray>& args) {
  std::string s = "(";
  for (std::size_t i = 0; i < args.size(); ++i) {
    if (i) s += ", ";
    s += args[i].className();
  }
  return s + ")";
}

bool argumentsFit(const std::vector<ncos::factory::TypeSpec>& types,
                  const std::vector<nxArray>& args, std::size_t offset) {
  if (types.size() != args.size() + offset) return false;
  for (std::size_t i = 0; i < args.size(); ++i) {
    if (!types[i + offset].accepts(args[i])) return false;
  }
  return true;
}

int pushResults(lua_State* L, const CallFrame& frame) {
  int n = static_cast<int>(std::min<std::size_t>(frame.plhs.size(), static_cast<std::size_t>(frame.nlhs)));
  for (int i = 0; i < n; ++i) pushNxArray(L, frame.plhs[static_cast<std::size_t>(i)]);
  return n;
}

/// Picks the first declared overload that takes the arguments (with `self` in front when given:
/// an instance method, or a static-form method whose first argument accepts the object) and
/// calls it.
int invoke(lua_State* L, const NcosFactoryClassInfo& cls, const std::string& name,
           const nxArray* self, const std::vector<nxArray>& args) {
  std::vector<const MethodInfo*> candidates = cls.findMethods(name);
  if (candidates.empty()) throw ncos::UnknownMember(name, cls.getFullName());
  for (const MethodInfo* m : candidates) {
    CallFrame frame;
    if (self) {
      if (!m->isStatic() && argumentsFit(m->signature.args, args, 0)) {
        frame.prhs.push_back(*self);
      } else if (m->isStatic() && !m->signature.args.empty() &&
                 m->signature.args[0].accepts(*self) && argumentsFit(m->signature.args, args, 1)) {
        frame.prhs.push_back(*self);
      } else {
        continue;
      }
    } else if (!m->isStatic() || !argumentsFit(m->signature.args, args, 0)) {
      continue;
    }
    frame.prhs.insert(frame.prhs.end(), args.begin(), args.end());
    m->impl.invoke(frame);
    return pushResults(L, frame);
  }
  throw ncos::NoMatchingSignature(name, cls.getFullName(), describeArguments(args));
}

// --- objects ---

const COSInterfacePtr& checkObject(lua_State* L, int index) {
  return *static_cast<COSInterfacePtr*>(luaL_checkudata(L, index, objectType));
}

int objectGc(lua_State* L) {
  static_cast<COSInterfacePtr*>(lua_touserdata(L, 1))->~COSInterfacePtr();
  return 0;
}

int objectMethod(lua_State* L) {
  return luaGuard(L, [](lua_State* L) {
    std::string name = lua_tostring(L, lua_upvalueindex(1));
    const COSInterfacePtr* object = testObject(L, 1);
    if (!object) {
      return luaL_error(L, "method '%s' must be called on an object (use ':')", name.c_str());
    }
    COSInterfacePtr keep = *object;
    nxArray self = nxArray::objectScalar(keep);
    return invoke(L, keep->classInfo(), name, &self, argumentsFrom(L, 2));
  });
}

int objectIndex(lua_State* L) {
  return luaGuard(L, [](lua_State* L) {
    COSInterfacePtr object = checkObject(L, 1);
    std::string key = luaL_checkstring(L, 2);
    const NcosFactoryClassInfo& cls = object->classInfo();
    if (cls.findProperty(key)) {
      pushNxArray(L, object->getProperty(key));
      return 1;
    }
    if (!cls.findMethods(key).empty()) {
      lua_pushstring(L, key.c_str());
      lua_pushcclosure(L, objectMethod, 1);
      return 1;
    }
    throw ncos::UnknownMember(key, cls.getFullName());
  });
}

int objectNewIndex(lua_State* L) {
  return luaGuard(L, [](lua_State* L) {
    COSInterfacePtr object = checkObject(L, 1);
    std::string key = luaL_checkstring(L, 2);
    object->setProperty(key, toNxArray(L, 3));
    return 0;
  });
}

int objectEq(lua_State* L) {
  const COSInterfacePtr* a = testObject(L, 1);
  const COSInterfacePtr* b = testObject(L, 2);
  lua_pushboolean(L, a && b && ((*a) == (*b) || ((*a)->native() && (*a)->native() == (*b)->native())));
  return 1;
}

int objectToString(lua_State* L) {
  const COSInterfacePtr& object = checkObject(L, 1);
  std::string s = object->className() + (object->isAlive() ? " object" : " object (deleted)");
  lua_pushstring(L, s.c_str());
  return 1;
}

// --- classes ---

int classStatic(lua_State* L) {
  return luaGuard(L, [](lua_State* L) {
    std::string className = lua_tostring(L, lua_upvalueindex(1));
    std::string name = lua_tostring(L, lua_upvalueindex(2));
    auto cls = requireClass(className);
    return invoke(L, *cls, name, nullptr, argumentsFrom(L, 1));
  });
}

int classIndex(lua_State* L) {
  return luaGuard(L, [](lua_State* L) {
    const std::string& className = checkName(L, 1, classType);
    std::string key = luaL_checkstring(L, 2);
    auto cls = requireClass(className);
    if (key == "name") {
      lua_pushstring(L, className.c_str());
      return 1;
    }
    if (cls->findMethods(key).empty()) throw ncos::UnknownMember(key, className);
    lua_pushstring(L, className.c_str());
    lua_pushstring(L, key.c_str());
    lua_pushcclosure(L, classStatic, 2);
    return 1;
  });
}

int classCall(lua_State* L) {
  return luaGuard(L, [](lua_State* L) {
    std::string className = checkName(L, 1, classType);
    auto cls = requireClass(className);
    std::vector<nxArray> args = argumentsFrom(L, 2);
    const auto& ctors = cls->constructors();
    if (ctors.empty()) throw ncos::NotConstructible(className);
    for (const auto& ctor : ctors) {
      if (!argumentsFit(ctor.signature.args, args, 0)) continue;
      std::shared_ptr<ncos::Wrappable> native = ctor.create(args);
      COSInterfacePtr object = ncos::COSInterface::makeOwned(cls, std::move(native));
      CallFrame frame;
      frame.prhs.push_back(nxArray::objectScalar(object));
      frame.prhs.insert(frame.prhs.end(), args.begin(), args.end());
      ctor.wrapper.invoke(frame);
      if (frame.nlhs > 0 && !frame.plhs.empty()) {
        pushNxArray(L, frame.plhs.front());
      } else {
        pushObject(L, object);
      }
      return 1;
    }
    throw ncos::NoMatchingSignature(cls->getShortName(), className, describeArguments(args));
  });
}

int classToString(lua_State* L) {
  std::string s = "class " + checkName(L, 1, classType);
  lua_pushstring(L, s.c_str());
  return 1;
}

// --- packages ---

int packageIndex(lua_State* L) {
  return luaGuard(L, [](lua_State* L) {
    const std::string& packageName = checkName(L, 1, packageType);
    std::string key = luaL_checkstring(L, 2);
    std::string full = packageName + "." + key;
    if (ncos::COSPackage::findPackage(full)) {
      pushName(L, full, packageType);
    } else if (ncos::COSPackage::findClass(full)) {
      pushName(L, full, classType);
    } else {
      lua_pushnil(L);
    }
    return 1;
  });
}

int packageToString(lua_State* L) {
  std::string s = "package " + checkName(L, 1, packageType);
  lua_pushstring(L, s.c_str());
  return 1;
}

int globalIndex(lua_State* L) {
  return luaGuard(L, [](lua_State* L) {
    if (lua_type(L, 2) == LUA_TSTRING && ncos::COSPackage::root().getSubPackage(lua_tostring(L, 2), false)) {
      pushName(L, lua_tostring(L, 2), packageType);
    } else {
      lua_pushnil(L);
    }
    return 1;
  });
}

}  // namespace

void pushObject(lua_State* L, const ncos::COSInterfacePtr& object) {
  void* memory = lua_newuserdatauv(L, sizeof(COSInterfacePtr), 0);
  new (memory) COSInterfacePtr(object);
  luaL_setmetatable(L, objectType);
}

const ncos::COSInterfacePtr* testObject(lua_State* L, int index) {
  return static_cast<const COSInterfacePtr*>(luaL_testudata(L, index, objectType));
}

void installNcos(lua_State* L) {
  const luaL_Reg objectMeta[] = {{"__gc", objectGc},         {"__index", objectIndex},
                                 {"__newindex", objectNewIndex}, {"__eq", objectEq},
                                 {"__tostring", objectToString}, {nullptr, nullptr}};
  luaL_newmetatable(L, objectType);
  luaL_setfuncs(L, objectMeta, 0);
  lua_pop(L, 1);
  const luaL_Reg classMeta[] = {{"__gc", nameGc},       {"__index", classIndex},
                                {"__call", classCall},  {"__tostring", classToString},
                                {nullptr, nullptr}};
  luaL_newmetatable(L, classType);
  luaL_setfuncs(L, classMeta, 0);
  lua_pop(L, 1);
  const luaL_Reg packageMeta[] = {{"__gc", nameGc},
                                  {"__index", packageIndex},
                                  {"__tostring", packageToString},
                                  {nullptr, nullptr}};
  luaL_newmetatable(L, packageType);
  luaL_setfuncs(L, packageMeta, 0);
  lua_pop(L, 1);

  lua_pushglobaltable(L);
  if (!lua_getmetatable(L, -1)) lua_newtable(L);
  lua_pushcfunction(L, globalIndex);
  lua_setfield(L, -2, "__index");
  lua_setmetatable(L, -2);
  lua_pop(L, 1);
}

}  // namespace blockara::luabridge
