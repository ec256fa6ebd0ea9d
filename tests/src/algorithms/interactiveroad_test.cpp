// The interactive checks on the whole road, with the program's scripting API in the host
// language: missing variables (event codes 17 and 18, the feature level that picks the severity,
// the ways the question fails below the host language), the ports of a chart's Blockara-based
// state against the data it declares, and the Goto/From check at the limit of routing blocks. The
// shipped missing-variable function's rule is the scenario interactive_missingvariable's.
#include "app/luaapi.h"
#include "host/prefs/bkfeature.h"
#include "host/prefs/hostfeatures.h"
#include "src/algorithms/blockmissingparams.h"
#include "src/evaluation/feval.h"
#include "tests/src/roadfixture.h"

namespace bkedittimecheck::testing {
namespace {

/// The model "m" (not under the rule auditor) on the road, the worker in manual mode.
class InteractiveRoad : public RoadFixture {
 public:
  void SetUp() override {
    RoadFixture::SetUp();
    blockara::app::installLuaApi(*lua);
    d = open(u"m");
    ASSERT_TRUE(settle());
  }
  void TearDown() override {
    BlockMissingParams::setQuestion({});
    BKFEAT_ShowMissingVarsAtEditTime->setLevel(1);
    RoadFixture::TearDown();
  }

  void runLua(const std::string& code) {
    const auto error = lua->runString(code, "=test");
    ASSERT_FALSE(error) << *error;
  }
  /// Every record of `m` as "path|type|severity[|commented]", the path below "m", sorted.
  Lines all() const { return recordLines(d, *engineOf(u"m")->getViolations()); }
  void setGain(const std::u16string& name, const std::string& gain) {
    d->editing().setProperties(u"m/" + name, {{"Gain", gain}});
  }
  /// Replaces the missing-variable function by `body`, a Lua function expression.
  void replaceQuestion(const std::string& body) {
    runLua("package.loaded['Blockara.BlockEditTimeController'] = { findMissingVariable = " + body +
           " }");
  }

  /// The chart "ch" with the state "st" declaring `kDeclared`, and ports of the state.
  void chart(const std::vector<std::pair<std::string, std::u16string>>& ports) {
    d->editing().addBlock(u"m", "Chart", u"ch");
    d->editing().addBlock(u"m/ch", "SubSystem", u"st",
                          {{"SubsystemType", std::string("8")}, {"StateData", kDeclared}});
    for (const auto& [type, name] : ports) d->editing().addBlock(u"m/ch/st", type, name);
  }
  inline static const BlockRecordList kDeclared{{{"name", "a"}, {"scope", "Input"}},
                                                {{"name", "b"}, {"scope", "Output"}},
                                                {{"name", "c"}, {"scope", "Local"}},
                                                {{"name", "e"}, {"scope", "Input"}}};

  BKRootBD* d = nullptr;
};

TEST_F(InteractiveRoad, MissingVariablesOnEventCodes17And18AndTheFeatureLevel) {
  runLua("asked = 0");
  replaceQuestion("function(h, n) asked = asked + 1; return true end");
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
  // The variables signal (event 17) drops every mark without asking.
  runLua("asked = 0; blockara.diagram('m'):variablesChanged()");
  ASSERT_TRUE(settle());
  EXPECT_EQ(all(), Lines{});
  runLua("assert(asked == 0, 'event 17 asked')");
}

TEST_F(InteractiveRoad, MissingVariableFailuresChangeNothingAndTheNextBatchAsksAgain) {
  place(d, u"m", "Gain", u"g", {{"Gain", std::string("k")}});
  place(d, u"m", "Gain", u"h", {{"Gain", std::string("k")}});
  ASSERT_TRUE(settle());
  const Lines marked{"g|BlockEditTimeMissingParams|1", "h|BlockEditTimeMissingParams|1"};
  ASSERT_EQ(all(), marked);
  runLua("blockara.workspace.k = 1");
  // The host-language function failing in each way is the host-fault scenario's; here the
  // question fails below it: a future without state, and no machine to ask.
  using Question = BlockMissingParams::Question;
  for (const Question& question : std::vector<Question>{
           [](const std::vector<double>&, const std::wstring&) {
             return std::future<std::vector<bool>>{};
           },
           [](const std::vector<double>& handles, const std::wstring& name) {
             return postFEvalMissingVariables(nullptr, BlockMissingParams::kFunction, handles, name);
           }}) {
    BlockMissingParams::setQuestion(question);
    {
      blockara::EditBatch batch(*d);  // two blocks in the question
      setGain(u"g", "k");
      setGain(u"h", "k");
    }
    ASSERT_TRUE(settle());
    EXPECT_EQ(all(), marked);
    BlockMissingParams::setQuestion({});
  }
  setGain(u"g", "k");
  ASSERT_TRUE(settle());
  EXPECT_EQ(all(), (Lines{"h|BlockEditTimeMissingParams|1"}));
}

TEST_F(InteractiveRoad, OnlyPortsOfAChartStateAreAlwaysTakenAndARefreshWalksTheStates) {
  chart({});
  d->editing().addBlock(u"m/ch", "SubSystem", u"st2", {{"SubsystemType", std::string("8")}});
  d->editing().addBlock(u"m/ch", "SubSystem", u"plain");
  ASSERT_TRUE(settle());
  bkEditBD& data = *engineOf(u"m")->getData();
  // Added off view: a port of a plain subsystem waits for a scan, a port of a state does not.
  d->editing().addBlock(u"m/ch/plain", "Inport", u"pi");
  d->editing().addBlock(u"m/ch/plain", "Outport", u"po");
  BKBlock* port = d->editing().addBlock(u"m/ch/st", "Inport", u"si");
  d->editing().addBlock(u"m/ch/st", "Outport", u"so");
  EXPECT_EQ(takeChanged(data), (Lines{"si", "so"}));
  // A refresh from a block inside a state takes every state beside that block's owner.
  takeEvents();
  controller().refreshBlockaraStatePortChecks(L"m", port->getHandle());
  EXPECT_EQ(takeChanged(data), (Lines{"st", "st2"}));
  EXPECT_EQ(takeEvents(), (Events{{EditTimeEvent::kChartRefresh, false}}));
  ASSERT_TRUE(settle());
}

TEST_F(InteractiveRoad, GotoFromStopsPastTheThousandthRoutingBlock) {
  // A From "f" of tag A alone, then in one batch `froms` more Froms and a Goto of that tag.
  const auto fromsThenGoto = [this](BKRootBD* diagram, int froms) {
    const std::u16string root = diagram->getName();
    const blockara::PropertyMap tagA{{"GotoTag", std::string("A")}};
    diagram->editing().addBlock(root, "From", u"f", tagA);
    ASSERT_TRUE(settle());
    blockara::EditBatch batch(*diagram);
    for (int i = 1; i <= froms; ++i)
      diagram->editing().addBlock(root, "From", i18n::to_u16string("f" + std::to_string(i)), tagA);
    diagram->editing().addBlock(root, "Goto", u"g", tagA);
  };
  fromsThenGoto(d, 998);  // the Goto is the thousandth: every From is matched
  ASSERT_TRUE(settle());
  EXPECT_EQ(all(), Lines{});
  BKRootBD* n = open(u"n");
  fromsThenGoto(n, 999);  // the Goto is the 1001st: the check leaves the old finding alone
  ASSERT_TRUE(settle());
  EXPECT_EQ(recordLines(n, *engineOf(u"n")->getViolations()), Lines{"f|NoMatchingGoTO|0"});
}

}  // namespace
}  // namespace bkedittimecheck::testing
