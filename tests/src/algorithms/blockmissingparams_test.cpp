// Missing variables on the whole road: event codes 17 and 18, the feature level that picks the
// severity, and every way the question can fail, after which the next batch asks again. The
// shipped function's rule is the scenario interactive_missingvariable's.
#include "src/algorithms/blockmissingparams.h"

#include "host/prefs/bkfeature.h"
#include "host/prefs/hostfeatures.h"
#include "src/evaluation/feval.h"
#include "tests/src/algorithms/interactiveroad.h"

namespace bkedittimecheck::testing {
namespace {

class MissingVariableTest : public InteractiveRoad {
 public:
  void TearDown() override {
    BlockMissingParams::setQuestion({});
    BKFEAT_ShowMissingVarsAtEditTime->setLevel(1);
    InteractiveRoad::TearDown();
  }
  void setGain(const std::u16string& name, const std::string& gain) {
    d->editing().setProperties(u"m/" + name, {{"Gain", gain}});
  }
  // Replaces the host-language function by `body`, a Lua function expression.
  void replace(const std::string& body) {
    runLua("package.loaded['Blockara.BlockEditTimeController'] = { findMissingVariable = " + body +
           " }");
  }
};

TEST_F(MissingVariableTest, EventCodes17And18AndTheFeatureLevel) {
  runLua("asked = 0");
  replace("function(h, n) asked = asked + 1; return true end");
  d->editing().addBlock(u"m", "Gain", u"g");  // an added block waits for its scan (event 18)
  ASSERT_TRUE(settle());
  runLua("assert(asked == 0, 'event 18 asked')");
  setGain(u"g", "k");
  ASSERT_TRUE(settle());
  // From level 3 on a mark is a warning, a record of its own beside the error.
  BKFEAT_ShowMissingVarsAtEditTime->setLevel(3);
  setGain(u"g", "k2");
  ASSERT_TRUE(settle());
  EXPECT_EQ(all(), (Lines{"g|BlockEditTimeMissingParams|0", "g|BlockEditTimeMissingParams|1"}));
  // The variables signal (event 17) drops every mark without asking; with none left it runs
  // no table at all.
  runLua("asked = 0; blockara.diagram('m'):variablesChanged()");
  ASSERT_TRUE(settle());
  EXPECT_EQ(all(), Lines{});
  runLua("assert(asked == 0, 'event 17 asked')");
  takeEvents();
  runLua("blockara.diagram('m'):variablesChanged()");
  EXPECT_TRUE(takeEvents().empty());
}

TEST_F(MissingVariableTest, FailuresChangeNothingAndTheNextBatchAsksAgain) {
  place(d, u"m", "Gain", u"g", {{"Gain", std::string("k")}});
  place(d, u"m", "Gain", u"h", {{"Gain", std::string("k")}});
  ASSERT_TRUE(settle());
  const Lines marked{"g|BlockEditTimeMissingParams|1", "h|BlockEditTimeMissingParams|1"};
  ASSERT_EQ(all(), marked);
  runLua("blockara.workspace.k = 1");
  using Question = BlockMissingParams::Question;
  const std::vector<std::pair<std::string, Question>> failures{
      {"function() error('no workspace today') end", {}},
      {"function() return nx.array('logical', 1, 1, { false }) end", {}},  // one short
      {"function() return 'no' end", {}},
      {"",
       [](const std::vector<double>&, const std::wstring&) {
         return std::future<std::vector<bool>>{};  // a future without state
       }},
      {"",
       [](const std::vector<double>& handles, const std::wstring& name) {
         return postFEvalMissingVariables(nullptr, BlockMissingParams::kFunction, handles, name);
       }},
  };
  for (const auto& [body, question] : failures) {
    if (!body.empty()) replace(body);
    BlockMissingParams::setQuestion(question);
    {
      blockara::EditBatch batch(*d);  // two blocks in the question
      setGain(u"g", "k");
      setGain(u"h", "k");
    }
    ASSERT_TRUE(settle()) << body;
    EXPECT_EQ(all(), marked) << body;
    runLua("package.loaded['Blockara.BlockEditTimeController'] = nil");
    BlockMissingParams::setQuestion({});
  }
  setGain(u"g", "k");
  ASSERT_TRUE(settle());
  EXPECT_EQ(all(), (Lines{"h|BlockEditTimeMissingParams|1"}));
}

}  // namespace
}  // namespace bkedittimecheck::testing
