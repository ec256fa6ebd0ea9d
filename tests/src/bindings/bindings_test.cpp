// The bound classes as the host language sees them: every method of the controller from Lua,
// the printing form of "getViolations", the gates of the entries that may create an engine, and
// constraint prerequisites given as host-language objects.
#include <gtest/gtest.h>

#include <lua.hpp>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/language/cospackage.h"
#include "host/language/luahost.h"
#include "tests/src/enginefixture.h"

namespace bkedittimecheck::testing {
namespace {

class ControllerLuaTest : public EngineFixture {
 protected:
  void SetUp() override {
    EngineFixture::SetUp();
    initialize_module();
    lua = std::make_unique<blockara::LuaHost>(
        blockara::LuaHostOptions{std::filesystem::path(BKETC_RESOURCE_DIR), {}, true});
  }
  void TearDown() override {
    lua.reset();
    terminate_module();
    EngineFixture::TearDown();
  }
  /// Runs `code` with `c` bound to the controller; the Lua error, or "" when none.
  std::string run(const std::string& code) {
    return lua->runString("local c = bkedittimecheck.EditTimeController.getInstance()\n" + code)
        .value_or("");
  }

  std::unique_ptr<blockara::LuaHost> lua;
};

TEST_F(ControllerLuaTest, EveryMethodAnswersAndActsAndUnknownNamesAreNoError) {
  BKRootBD* d = open(u"m");
  BKBlock* go = d->editing().addBlock(u"m", "Goto", u"go");
  auto engine = engineOf(u"m");
  ASSERT_TRUE(engine);
  const std::string id = std::to_string(engine->engineId());
  const std::string handle = std::to_string(go->getHandle());

  // Every bound method answers from Lua; what each does is the switch and controller tests'.
  // (getInstance, switchConfiguration, refreshExclusions and enableRA also answer in scenarios.)
  for (const std::string& call : std::vector<std::string>{
           "c:applyStyle('m', " + id + ")", "c:updateDiagnostic('m')",
           "c:refreshExclusionsWithPartFile('m', '/tmp/none.xml')",
           "assert(#c:getViolations('m', " + handle + ") == 0)", "c:loadDefaultConfiguration('m')",
           "c:handleNewWindowOpen('m')", "c:refreshBlockaraStatePortChecks('m', " + handle + ")",
           "c:refreshWorkspaceChecks('m')", "c:turnOffErrorsAndWarnings('m')",
           "c:turnOnErrors('m')", "c:turnOnWarnings('m')", "c:turnOffErrors('m')",
           "c:turnOffWarnings('m')", "c:turnOnErrorsAndWarnings('m')", "c:enableRA('m')"}) {
    EXPECT_EQ(run(call), "") << call;
  }
  EXPECT_EQ(engineOf(u"m"), engine);
  EXPECT_TRUE(engine->getAlgorithmTable().auditorChecksEnabled);  // the name reached the engine
  EXPECT_EQ(run("c:disableRA('m') c:off('m') c:on('m') c:postNameChange('m', 'm')"), "");
  EXPECT_FALSE(engine->getAlgorithmTable().auditorChecksEnabled);
  EXPECT_NE(engineOf(u"m"), engine);
  // Unknown names are no error; a one-argument "getViolations" prints the name.
  EXPECT_EQ(run("c:on('nowhere') c:off('nowhere') c:applyStyle('nowhere', 1)"), "");
  EXPECT_NE(run("c:applyStyle('m')"), "");  // wrong arguments are a Lua error
  ::testing::internal::CaptureStdout();
  EXPECT_EQ(run("local r = c:getViolations('anything') assert(r == nil)"), "");
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "bdName = anything\n");
}

TEST_F(ControllerLuaTest, ANewEngineReadsThePreferenceAfterTheSetupFunction) {
  // The host-language setup function runs before the table takes its switches from the
  // preference: a setup that turns the preference on gives an engine with warnings on.
  bk::bkedittimecheck::bkutils::setShowEditTimeIssues(false);
  open(u"m");
  ASSERT_FALSE(engineOf(u"m"));
  lua->registerFunction("testing.showIssues", [](lua_State*) -> int {
    bk::bkedittimecheck::bkutils::setShowEditTimeIssues(true);
    return 0;
  });
  EXPECT_EQ(run("require('edittime.EditTimeCheckingSetup').setup = testing.showIssues\n"
                "c:turnOnErrors('m')"),
            "");
  auto engine = engineOf(u"m");
  ASSERT_TRUE(engine);
  EXPECT_TRUE(engine->getAlgorithmTable().showWarnings);
}

// A model parameter constraint of the host language's own classes, whose properties the
// prerequisite copy reads; each property answers one fixed value, whatever the object.
struct ForeignProperty : ncos::COSPropInfo {
  ForeignProperty(std::string name, nxArray value) : name(std::move(name)), value(value) {}
  const char* getName() const override { return name.c_str(); }
  unsigned getAttributes() const override { return 0; }
  nxArrayProxy getValue(const ncos::COSInterfacePtr&) const override { return nxArrayProxy(value); }
  void setValue(const ncos::COSInterfacePtr&, const nxArrayProxy&) const override {}
  std::string name;
  nxArray value;
};

struct ForeignClass : ncos::factory::NcosFactoryClassInfo {
  ForeignClass() : NcosFactoryClassInfo("PositiveModelParameterConstraint", "a foreign class") {}
  void populate() override {
    addProperty(std::make_unique<ForeignProperty>("ID", nxArray::charRow("fm")));
    addProperty(std::make_unique<ForeignProperty>("ParameterName", nxArray::charRow("Inline")));
    addProperty(std::make_unique<ForeignProperty>("ParameterDataType", nxArray::charRow("string")));
    addProperty(std::make_unique<ForeignProperty>("SupportedParameterValues",
                                                  nxArray::cellRow({nxArray::charRow("on")})));
  }
};

// Prerequisites given to a constraint as host-language objects, also of classes not this
// system's own. The scenario constraints_authoring sets and reads everything else from a script.
TEST_F(ControllerLuaTest, ConstraintPrerequisitesAsHostLanguageObjects) {
  ncos::omGetSubPackage(ncos::omGetGlobalPackage("Auditor"), "authoring")
      ->addClass(std::make_unique<ForeignClass>());
  ASSERT_EQ(lua->runString("function keepForeign(o) foreign = o end"), std::nullopt);
  lua->callFunction(
      "keepForeign", 0,
      {nxArray::objectScalar(ncos::COSInterface::makeOwned(
          ncos::COSPackage::findClass("Auditor.authoring.PositiveModelParameterConstraint"),
          std::make_shared<ncos::Wrappable>()))});
  const char* script = R"(
    local p = Auditor.authoring.PositiveBlockParameterConstraint()
    p:addPreRequisiteConstraintObject(foreign)
    local ids = p:getPreRequisiteConstraintIDs()
    assert(#ids == 1 and ids[1] == "fm" and p:getPreRequisiteConstraintObjects().ID == "fm")
    -- Objects of this system's own classes are linked, as the scenario shows; other values fail.
    local own = Auditor.authoring.internal.NegativeModelParameterConstraint()
    own.ID = "own"
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
  EXPECT_EQ(lua->runString(script), std::nullopt);
}

}  // namespace
}  // namespace bkedittimecheck::testing
