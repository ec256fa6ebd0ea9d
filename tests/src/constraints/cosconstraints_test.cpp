// The constraint classes as the host language sees them: hidden adding methods and prerequisites
// given as host-language objects. The scenario constraints_authoring sets and reads the rest.
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

class CosConstraintsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    mi::registerConstraintClasses();
    lua = std::make_unique<blockara::LuaHost>(
        blockara::LuaHostOptions{std::filesystem::path(BKETC_RESOURCE_DIR), {}, true});
  }
  /// Runs `code`; the Lua error, or "" when none.
  std::string run(const std::string& code) { return lua->runString(code).value_or(""); }

  std::unique_ptr<blockara::LuaHost> lua;
};

// Adding methods are hidden and take the object first, so that they stay off the class's list.
TEST_F(CosConstraintsTest, AddingMethodsAreHiddenAndStatic) {
  auto positive = ncos::COSPackage::findClass("Auditor.authoring.PositiveBlockParameterConstraint");
  ASSERT_TRUE(positive);
  const auto* add = positive->findMethods("addSupportedParameterValue").at(0);
  EXPECT_TRUE(add->isStatic() && add->isHidden());
  EXPECT_EQ(add->signature.args.at(0).className,
            "Auditor.authoring.PositiveBlockParameterConstraint");
}

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

TEST_F(CosConstraintsTest, PrerequisiteObjectsOfTheHostLanguage) {
  ncos::omGetSubPackage(ncos::omGetGlobalPackage("Auditor"), "authoring")
      ->addClass(std::make_unique<ForeignClass>());
  auto foreign = std::make_shared<ForeignConstraint>();
  foreign->properties = {{"SupportedParameterValues", nxArray::cellRow({nxArray::charRow("on")})},
                         {"ID", nxArray::charRow("fm")},
                         {"ParameterName", nxArray::charRow("InlineParams")},
                         {"ParameterDataType", nxArray::charRow("string")}};
  ASSERT_EQ(run("function keepForeign(o) foreign = o end"), "");
  lua->callFunction(
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
  EXPECT_EQ(run(script), "");
}

}  // namespace
}  // namespace bkedittimecheck::testing
