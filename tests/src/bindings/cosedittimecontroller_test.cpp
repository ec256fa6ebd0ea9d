// The controller class as the host language sees it: every bound method from Lua, the printing
// form of "getViolations", and the gates of the entries that may create an engine.
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include <lua.hpp>

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

  EXPECT_EQ(run("assert(c == bkedittimecheck.EditTimeController.getInstance())"), "");
  EXPECT_EQ(run("c:applyStyle('m', " + id + ")"), "");
  EXPECT_EQ(run("c:updateDiagnostic('m')"), "");
  EXPECT_EQ(run("c:refreshExclusions('m')"), "");
  EXPECT_EQ(run("c:refreshExclusionsWithPartFile('m', '/tmp/none.xml')"), "");
  EXPECT_EQ(run("local v = c:getViolations('m', " + handle + ") assert(#v == 0)"), "");
  EXPECT_EQ(run("c:switchConfiguration('/tmp/none.xml', 'm')"), "");
  EXPECT_EQ(run("c:loadDefaultConfiguration('m')"), "");
  EXPECT_EQ(run("c:handleNewWindowOpen('m')"), "");
  EXPECT_EQ(run("c:refreshBlockaraStatePortChecks('m', " + handle + ")"), "");
  EXPECT_EQ(run("c:refreshWorkspaceChecks('m')"), "");
  EXPECT_EQ(engineOf(u"m"), engine);

  // The switches reach the engine's table.
  EXPECT_EQ(run("c:turnOffErrorsAndWarnings('m')"), "");
  EXPECT_FALSE(engine->getAlgorithmTable().showErrors);
  EXPECT_FALSE(engine->getAlgorithmTable().showWarnings);
  EXPECT_EQ(run("c:turnOnErrors('m')"), "");
  EXPECT_TRUE(engine->getAlgorithmTable().showErrors);
  EXPECT_EQ(run("c:turnOnWarnings('m')"), "");
  EXPECT_TRUE(engine->getAlgorithmTable().showWarnings);
  EXPECT_EQ(run("c:turnOffErrors('m') c:turnOffWarnings('m')"), "");
  EXPECT_FALSE(engine->getAlgorithmTable().showErrors);
  EXPECT_FALSE(engine->getAlgorithmTable().showWarnings);
  EXPECT_EQ(run("c:turnOnErrorsAndWarnings('m')"), "");
  EXPECT_TRUE(engine->getAlgorithmTable().showErrors && engine->getAlgorithmTable().showWarnings);
  EXPECT_EQ(run("c:enableRA('m')"), "");
  EXPECT_TRUE(engine->getAlgorithmTable().auditorChecksEnabled);
  EXPECT_EQ(run("c:disableRA('m')"), "");
  EXPECT_FALSE(engine->getAlgorithmTable().auditorChecksEnabled);

  // off closes, on reopens with a new id, a rename moves the engine.
  EXPECT_EQ(run("c:off('m')"), "");
  EXPECT_FALSE(engineOf(u"m"));
  EXPECT_EQ(run("c:on('m')"), "");
  ASSERT_TRUE(engineOf(u"m"));
  EXPECT_NE(engineOf(u"m")->engineId(), engine->engineId());
  bkBlockDiagramSet::rename(d, u"n");
  EXPECT_EQ(run("c:postNameChange('m', 'n')"), "");
  EXPECT_FALSE(engineOf(u"m"));
  EXPECT_TRUE(engineOf(u"n"));
}

TEST_F(ControllerLuaTest, OneArgumentGetViolationsPrintsTheDiagramName) {
  ::testing::internal::CaptureStdout();
  EXPECT_EQ(run("local r = c:getViolations('anything') assert(r == nil)"), "");
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "bdName = anything\n");
}

TEST_F(ControllerLuaTest, GatesOfTheCreatingEntries) {
  // Warnings on their own create nothing; errors do.
  bk::bkedittimecheck::bkutils::setShowEditTimeIssues(false);
  open(u"m");
  EXPECT_EQ(run("c:turnOnWarnings('m')"), "");
  EXPECT_FALSE(engineOf(u"m"));
  EXPECT_EQ(run("c:turnOnErrors('m')"), "");
  EXPECT_TRUE(engineOf(u"m"));

  // A suspended diagram gets no engine from any entry; an unknown name is no error.
  BKRootBD* s = open(u"s");
  s->setSuspended(true);
  EXPECT_EQ(run("c:on('s') c:enableRA('s') c:turnOnErrorsAndWarnings('s')"), "");
  EXPECT_FALSE(engineOf(u"s"));
  EXPECT_EQ(run("c:on('nowhere') c:off('nowhere') c:applyStyle('nowhere', 1)"), "");

  // A wrong argument is a Lua error, not a crash.
  EXPECT_NE(run("c:applyStyle('m')"), "");
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
