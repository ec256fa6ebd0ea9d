// The ports of a chart's Blockara-based state against the data the chart declares, a mapping
// that cannot be read, and the snapshots the engine takes for chart states: which ports are
// always taken, what outlives a pass, what a refresh walks.
#include "src/algorithms/blockarastateportmappingviolation.h"

#include "tests/src/algorithms/interactiveroad.h"

namespace bkedittimecheck::testing {
namespace {

const BlockRecordList kDeclared{{{"name", "a"}, {"scope", "Input"}},
                                {{"name", "b"}, {"scope", "Output"}},
                                {{"name", "c"}, {"scope", "Local"}},
                                {{"name", "e"}, {"scope", "Input"}}};

class ChartStateTest : public InteractiveRoad {
 public:
  /// The chart "ch" with the state "st" declaring `kDeclared`, and ports of the state.
  void chart(const std::vector<std::pair<std::string, std::u16string>>& ports) {
    d->editing().addBlock(u"m", "Chart", u"ch");
    d->editing().addBlock(u"m/ch", "SubSystem", u"st",
                          {{"SubsystemType", std::string("8")}, {"StateData", kDeclared}});
    for (const auto& [type, name] : ports) d->editing().addBlock(u"m/ch/st", type, name);
  }
};

TEST_F(ChartStateTest, PortsAgainstTheDeclaredDataAndAcrossPasses) {
  chart(
      {{"Inport", u"a"}, {"Inport", u"c"}, {"Inport", u"u"}, {"Outport", u"b"}, {"Outport", u"e"}});
  ASSERT_TRUE(settle());
  EXPECT_EQ(all(),
            (Lines{"ch/st/c|BlockaraStateMismappedPort|1", "ch/st/e|BlockaraStateMismappedPort|1",
                   "ch/st/u|BlockaraStateUnmappedPort|1"}));
  EXPECT_EQ(glows(), (std::map<std::string, std::string>{
                        {"ch/st/c", "Error"}, {"ch/st/e", "Error"}, {"ch/st/u", "Error"}}));
  // Ports renamed in a later pass meet the state's table, which the prune kept.
  d->editing().renameBlock(u"m/ch/st/u", u"x");
  d->editing().renameBlock(u"m/ch/st/e", u"a2");
  ASSERT_TRUE(settle());
  EXPECT_EQ(all(),
            (Lines{"ch/st/a2|BlockaraStateUnmappedPort|1", "ch/st/c|BlockaraStateMismappedPort|1",
                   "ch/st/x|BlockaraStateUnmappedPort|1"}));
}

TEST_F(ChartStateTest, AMappingThatCannotBeReadLeavesPortsUnmapped) {
  chart({{"Inport", u"a"}, {"Outport", u"b"}});
  ASSERT_TRUE(settle());
  const Lines bothUnmapped{"ch/st/a|BlockaraStateUnmappedPort|1",
                           "ch/st/b|BlockaraStateUnmappedPort|1"};
  const std::vector<std::pair<std::string, Lines>> cases{
      {"function(h) error('chart closed') end", bothUnmapped},
      {"function(h) return 'a' end", bothUnmapped},
      {"function(h) return { dataName = 'a', dataScope = 'input' } end",  // short by one
       {"ch/st/b|BlockaraStateUnmappedPort|1"}},
      {"function(h) return nx.array('struct', 1, 2, { { dataName = 'a' }, "
       "{ dataName = 'b', dataScope = 'output' } }) end",  // no scope fits no port
       {"ch/st/a|BlockaraStateMismappedPort|1"}},
      {"nil", {}},  // the shipped function again
  };
  for (const auto& [function, expected] : cases) {
    runLua("package.loaded['Chartelle.BKINCE.BlockaraMan'] = " +
           (function == "nil" ? function : "{ getPortMappingInfo = " + function + " }"));
    // A change of the state takes its snapshot, and so its table, again.
    d->editing().setProperties(u"m/ch/st", {{"StateData", kDeclared}});
    ASSERT_TRUE(settle()) << function;
    EXPECT_EQ(all(), expected) << function;
  }
}

TEST_F(ChartStateTest, OnlyPortsOfAChartStateAreAlwaysTakenAndARefreshWalksTheStates) {
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

}  // namespace
}  // namespace bkedittimecheck::testing
