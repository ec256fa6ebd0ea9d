// Missing variables on the whole road: the shipped host-language function against the base
// workspace, event codes 17 and 18, the feature level that picks the severity, and every way the
// question can fail, after which the next batch asks again.
#include "src/algorithms/blockmissingparams.h"

#include <gtest/gtest.h>

#include "host/prefs/bkfeature.h"
#include "host/prefs/hostfeatures.h"
#include "src/evaluation/feval.h"
#include "tests/src/algorithms/interactiveroad.h"

namespace bkedittimecheck::testing {
namespace {

class MissingVariableTest : public InteractiveRoad {
 public:
  void SetUp() override {
    InteractiveRoad::SetUp();
    d = open(u"m");
    ASSERT_TRUE(settle());
  }
  void TearDown() override {
    BlockMissingParams::setQuestion({});
    BKFEAT_ShowMissingVarsAtEditTime->setLevel(1);
    InteractiveRoad::TearDown();
  }

  BKRootBD* d = nullptr;
};

TEST_F(MissingVariableTest, TheWorkspaceDecidesAndACompileSignalRefreshes) {
  runLua("blockara.workspace.known = 2");
  place(d, u"m", "Gain", u"g", {{"Gain", std::string("2*k + known")}});
  place(d, u"m", "Gain", u"h", {{"Gain", std::string("max(known, pi) * 1e-3")}});
  place(d, u"m", "Constant", u"c", {{"Value", std::string("'k' ")}});
  ASSERT_TRUE(settle());
  EXPECT_EQ(all(d), (Lines{"/g|BlockEditTimeMissingParams|1"}));
  EXPECT_EQ(glows(d), (std::map<std::string, std::string>{{"/g", "Error"}}));

  // Defining the variable and raising the workspace signal rescans the view and asks again.
  runLua("blockara.workspace.k = 1; blockara.diagram('m'):workspaceChanged()");
  ASSERT_TRUE(settle());
  EXPECT_EQ(all(d), Lines{});
  EXPECT_TRUE(glows(d).empty());
}

TEST_F(MissingVariableTest, EventCodes17And18AndTheFeatureLevel) {
  runLua(R"(
    asked = 0
    package.loaded["Blockara.BlockEditTimeController"] = { findMissingVariable = function(h, n)
      asked = asked + 1
      local t = type(h) == "number" and { h } or h:totable()
      local out = {}
      for i = 1, #t do out[i] = t[i] ~= 0 end
      return nx.array("logical", 1, #t, out)
    end })");
  // An added block is not asked about: its graph has not been scanned (event 18).
  d->editing().addBlock(u"m", "Gain", u"g", {{"Gain", std::string("k")}});
  ASSERT_TRUE(settle());
  EXPECT_EQ(all(d), Lines{});
  // A change asks (event 21); below level 3 the mark is an error.
  d->editing().setProperties(u"m/g", {{"Gain", std::string("k2")}});
  ASSERT_TRUE(settle());
  EXPECT_EQ(all(d), (Lines{"/g|BlockEditTimeMissingParams|1"}));
  // From level 3 on it is a warning, a record of its own: the error stays beside it.
  BKFEAT_ShowMissingVarsAtEditTime->setLevel(3);
  d->editing().setProperties(u"m/g", {{"Gain", std::string("k3")}});
  ASSERT_TRUE(settle());
  EXPECT_EQ(all(d), (Lines{"/g|BlockEditTimeMissingParams|0", "/g|BlockEditTimeMissingParams|1"}));
  EXPECT_EQ(glows(d), (std::map<std::string, std::string>{{"/g", "Error,Warn"}}));
  // The variables-changed signal (event 17) drops every mark without asking.
  runLua("askedBefore = asked; blockara.diagram('m'):variablesChanged()");
  ASSERT_TRUE(settle());
  EXPECT_EQ(all(d), Lines{});
  runLua("assert(asked == askedBefore, 'event 17 asked the host language')");
  // With no mark left, the signal runs no table at all.
  takeEvents();
  runLua("blockara.diagram('m'):variablesChanged()");
  ASSERT_TRUE(settle());
  EXPECT_TRUE(takeEvents().empty());
}

TEST_F(MissingVariableTest, FailuresChangeNothingAndTheNextBatchAsksAgain) {
  place(d, u"m", "Gain", u"g", {{"Gain", std::string("k")}});
  place(d, u"m", "Gain", u"h", {{"Gain", std::string("k")}});
  ASSERT_TRUE(settle());
  // Both blocks change in one batch, so that the question names two blocks.
  const auto touchBoth = [this] {
    blockara::EditBatch batch(*d);
    d->editing().setProperties(u"m/g", {{"Gain", std::string("k")}});
    d->editing().setProperties(u"m/h", {{"Gain", std::string("k")}});
  };
  const Lines marked{"/g|BlockEditTimeMissingParams|1", "/h|BlockEditTimeMissingParams|1"};
  ASSERT_EQ(all(d), marked);
  runLua("blockara.workspace.k = 1");

  struct Failure {
    std::string what;
    std::string lua;                         // replaces the host-language function
    BlockMissingParams::Question question;  // or how the question is asked
  };
  const std::vector<Failure> failures{
      {"an evaluation that raises an error",
       "package.loaded['Blockara.BlockEditTimeController'] = { findMissingVariable = "
       "function() error('no workspace today') end }",
       {}},
      {"an answer one short",
       "package.loaded['Blockara.BlockEditTimeController'] = { findMissingVariable = "
       "function(h) return nx.array('logical', 1, 1, { false }) end }",
       {}},
      {"an empty answer",
       "package.loaded['Blockara.BlockEditTimeController'] = { findMissingVariable = "
       "function(h) return nx.array('logical', 1, 0, {}) end }",
       {}},
      {"an answer that is no logical array",
       "package.loaded['Blockara.BlockEditTimeController'] = { findMissingVariable = "
       "function(h) return 'no' end }",
       {}},
      {"a future without state", "",
       [](const std::vector<double>&, const std::wstring&) {
         return std::future<std::vector<bool>>{};
       }},
      {"no virtual machine to ask", "",
       [](const std::vector<double>& handles, const std::wstring& name) {
         return postFEvalMissingVariables(nullptr, BlockMissingParams::kFunction, handles, name);
       }},
  };
  for (const Failure& f : failures) {
    if (!f.lua.empty()) runLua(f.lua);
    BlockMissingParams::setQuestion(f.question);
    touchBoth();
    ASSERT_TRUE(settle()) << f.what;
    EXPECT_EQ(all(d), marked) << f.what;
    runLua("package.loaded['Blockara.BlockEditTimeController'] = nil");
    BlockMissingParams::setQuestion({});
  }
  // The shipped function is back: the next batch asks and clears the block it changed.
  d->editing().setProperties(u"m/g", {{"Gain", std::string("k")}});
  ASSERT_TRUE(settle());
  EXPECT_EQ(all(d), (Lines{"/h|BlockEditTimeMissingParams|1"}));
}

}  // namespace
}  // namespace bkedittimecheck::testing
