// The controller class as the host language sees it: every bound method from Lua, the printing
// form of "getViolations", and the gates of the entries that may create an engine.
#include <gtest/gtest.h>

#include <lua.hpp>
#include <memory>
#include <optional>
#include <string>
#include <vector>

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
    std::optional<std::string> error =
        lua->runString("local c = bkedittimecheck.EditTimeController.getInstance()\n" + code);
    return error.value_or("");
  }

  std::unique_ptr<blockara::LuaHost> lua;
};

TEST_F(ControllerLuaTest, EveryMethodAnswersAndActs) {
  BKRootBD* d = open(u"m");
  BKBlock* go = d->editing().addBlock(u"m", "Goto", u"go");
  auto engine = engineOf(u"m");
  ASSERT_TRUE(engine);
  const std::string id = std::to_string(engine->engineId());
  const std::string handle = std::to_string(go->getHandle());

  // Every bound method answers from Lua; what each does is the switch and controller tests'.
  for (const std::string& call : std::vector<std::string>{
           "assert(c == bkedittimecheck.EditTimeController.getInstance())",
           "c:applyStyle('m', " + id + ")", "c:updateDiagnostic('m')", "c:refreshExclusions('m')",
           "c:refreshExclusionsWithPartFile('m', '/tmp/none.xml')",
           "assert(#c:getViolations('m', " + handle + ") == 0)",
           "c:switchConfiguration('/tmp/none.xml', 'm')", "c:loadDefaultConfiguration('m')",
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
}

TEST_F(ControllerLuaTest, UnknownNamesAreNoErrorAndOneArgumentGetViolationsPrintsTheName) {
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
  EXPECT_EQ(run("require('edittime.EditTimeCheckingSetup').setup = function() "
                "testing.showIssues() end"),
            "");
  EXPECT_EQ(run("c:turnOnErrors('m')"), "");
  auto engine = engineOf(u"m");
  ASSERT_TRUE(engine);
  EXPECT_TRUE(engine->getAlgorithmTable().showWarnings);
}

}  // namespace
}  // namespace bkedittimecheck::testing
