// Prerequisites given to a constraint as host-language objects, also of classes not this system's
// own. The scenario constraints_authoring sets and reads everything else from a script.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/language/cospackage.h"
#include "host/language/luahost.h"
#include "src/bindings/cosconstraintclasses.h"

namespace bkedittimecheck::testing {
namespace {

// A host-language object standing for a model parameter constraint of the host language's own
// classes: its properties are what the prerequisite copy reads.
class ForeignConstraint : public ncos::Wrappable {
 public:
  std::map<std::string, nxArray> properties;
};

class ForeignProperty : public ncos::COSPropInfo {
 public:
  explicit ForeignProperty(std::string name) : name(std::move(name)) {}
  const char* getName() const override { return name.c_str(); }
  unsigned getAttributes() const override { return 0; }
  nxArrayProxy getValue(const ncos::COSInterfacePtr& object) const override {
    return nxArrayProxy(static_cast<ForeignConstraint*>(object->native())->properties[name]);
  }
  void setValue(const ncos::COSInterfacePtr& object, const nxArrayProxy& value) const override {
    static_cast<ForeignConstraint*>(object->native())->properties[name] = value.array();
  }

 private:
  std::string name;
};

class ForeignClass : public ncos::factory::NcosFactoryClassInfo {
 public:
  ForeignClass() : NcosFactoryClassInfo("PositiveModelParameterConstraint", "a foreign class") {}

 protected:
  void populate() override {
    for (const char* p : {"SupportedParameterValues", "ID", "ParameterName", "ParameterDataType"}) {
      addProperty(std::make_unique<ForeignProperty>(p));
    }
  }
};

TEST(CosConstraints, PrerequisiteObjectsOfTheHostLanguage) {
  mi::registerConstraintClasses();
  blockara::LuaHost lua({std::filesystem::path(BKETC_RESOURCE_DIR), {}, true});
  ncos::omGetSubPackage(ncos::omGetGlobalPackage("Auditor"), "authoring")
      ->addClass(std::make_unique<ForeignClass>());
  auto foreign = std::make_shared<ForeignConstraint>();
  foreign->properties = {{"SupportedParameterValues", nxArray::cellRow({nxArray::charRow("on")})},
                         {"ID", nxArray::charRow("fm")},
                         {"ParameterName", nxArray::charRow("InlineParams")},
                         {"ParameterDataType", nxArray::charRow("string")}};
  ASSERT_EQ(lua.runString("function keepForeign(o) foreign = o end"), std::nullopt);
  lua.callFunction(
      "keepForeign", 0,
      {nxArray::objectScalar(ncos::COSInterface::makeOwned(
          ncos::COSPackage::findClass("Auditor.authoring.PositiveModelParameterConstraint"),
          foreign))});
  const char* script = R"(
    local p = Auditor.authoring.PositiveBlockParameterConstraint()
    p:addPreRequisiteConstraintObject(foreign)
    local ids = p:getPreRequisiteConstraintIDs()
    assert(#ids == 1 and ids[1] == "fm", "the copy carries the object's ID")
    local copy = p:getPreRequisiteConstraintObjects()
    assert(copy.ID == "fm")
    -- An object of this system's own model class takes the overload with the self type.
    local own = Auditor.authoring.internal.NegativeModelParameterConstraint()
    own.ID = "own"
    p:addPreRequisiteConstraintObject(own)
    assert(#p:getPreRequisiteConstraintIDs() == 2)
    for _, bad in ipairs({5, "text", {own}}) do
      local ok, err = pcall(p.addPreRequisiteConstraintObject, p, bad)
      assert(not ok and err:find("bkedittimecheck:edittimecheck:UnsupportedPreReqType", 1, true), tostring(err))
    end
    -- The handles replace the list and share the objects they name.
    p.PreRequisiteConstraintHandles = nx.array("object", 1, 1, {own})
    assert(#p:getPreRequisiteConstraintIDs() == 1)
    own = nil
    collectgarbage()
    assert(p:getPreRequisiteConstraintObjects().ID == "own", "kept alive by the link")
  )";
  EXPECT_EQ(lua.runString(script), std::nullopt);
}

}  // namespace
}  // namespace bkedittimecheck::testing
