// The ports of a chart's Blockara-based state against the data the chart declares: mapped,
// mismapped and unmapped ports, a mapping that cannot be read, and the snapshots the engine takes
// for chart states (which ports are always taken, what the prune keeps, what a refresh walks).
#include "src/algorithms/blockarastateportmappingviolation.h"

#include <gtest/gtest.h>

#include "tests/src/algorithms/interactiveroad.h"

namespace bkedittimecheck::testing {
namespace {

using Records = BlockRecordList;

class ChartStateTest : public InteractiveRoad {
 public:
  void SetUp() override {
    InteractiveRoad::SetUp();
    d = open(u"m");
    ASSERT_TRUE(settle());
  }

  /// A chart "ch" with the state "st" declaring `data`.
  void chart(const Records& data) {
    d->editing().addBlock(u"m", "Chart", u"ch");
    d->editing().addBlock(u"m/ch", "SubSystem", u"st",
                          {{"SubsystemType", std::string("8")}, {"StateData", data}});
  }

  BKRootBD* d = nullptr;
};

const Records kDeclared{{{"name", "a"}, {"scope", "Input"}},
                        {{"name", "b"}, {"scope", "Output"}},
                        {{"name", "c"}, {"scope", "Local"}},
                        {{"name", "e"}, {"scope", "Input"}}};

TEST_F(ChartStateTest, PortsAgainstTheDeclaredDataAndAcrossBatches) {
  chart(kDeclared);
  for (const char16_t* in : {u"a", u"c", u"u"}) d->editing().addBlock(u"m/ch/st", "Inport", in);
  for (const char16_t* out : {u"b", u"e"}) d->editing().addBlock(u"m/ch/st", "Outport", out);
  ASSERT_TRUE(settle());
  EXPECT_EQ(all(d), (Lines{"/ch/st/c|BlockaraStateMismappedPort|1",
                           "/ch/st/e|BlockaraStateMismappedPort|1",
                           "/ch/st/u|BlockaraStateUnmappedPort|1"}));
  EXPECT_EQ(glows(d), (std::map<std::string, std::string>{
                          {"/ch/st/c", "Error"}, {"/ch/st/e", "Error"}, {"/ch/st/u", "Error"}}));

  // A port renamed in a later batch is compared with the state's table, which stayed in the
  // snapshot after the earlier pass.
  d->editing().renameBlock(u"m/ch/st/u", u"x");
  d->editing().renameBlock(u"m/ch/st/e", u"z");
  ASSERT_TRUE(settle());
  EXPECT_EQ(all(d), (Lines{"/ch/st/c|BlockaraStateMismappedPort|1",
                           "/ch/st/x|BlockaraStateUnmappedPort|1",
                           "/ch/st/z|BlockaraStateUnmappedPort|1"}));
}

TEST_F(ChartStateTest, AMappingThatCannotBeReadLeavesEveryPortUnmapped) {
  struct Case {
    std::string what;
    std::string function;  // the replacement of getPortMappingInfo
    Lines expected;
  };
  const std::vector<Case> cases{
      {"the function raises an error", "function(h) error('chart closed') end",
       {"/ch/st/a|BlockaraStateUnmappedPort|1", "/ch/st/b|BlockaraStateUnmappedPort|1"}},
      {"the answer is no struct array", "function(h) return 'a' end",
       {"/ch/st/a|BlockaraStateUnmappedPort|1", "/ch/st/b|BlockaraStateUnmappedPort|1"}},
      {"the answer is short by one datum",
       "function(h) return { dataName = 'a', dataScope = 'input' } end",
       {"/ch/st/b|BlockaraStateUnmappedPort|1"}},
      {"an element without a scope: the datum fits no port",
       "function(h) return nx.array('struct', 1, 2, "
       "{ { dataName = 'a' }, { dataName = 'b', dataScope = 'output' } }) end",
       {"/ch/st/a|BlockaraStateMismappedPort|1"}},
  };
  chart(kDeclared);
  d->editing().addBlock(u"m/ch/st", "Inport", u"a");
  d->editing().addBlock(u"m/ch/st", "Outport", u"b");
  ASSERT_TRUE(settle());
  ASSERT_EQ(all(d), Lines{});
  for (const Case& c : cases) {
    runLua("package.loaded['Chartelle.BKINCE.BlockaraMan'] = { getPortMappingInfo = " +
           c.function + " }");
    // A change of the state takes its snapshot, and so its table, again.
    d->editing().setProperties(u"m/ch/st", {{"StateData", kDeclared}});
    ASSERT_TRUE(settle()) << c.what;
    EXPECT_EQ(all(d), c.expected) << c.what;
  }
  // The shipped function again: the same edit brings the table back.
  runLua("package.loaded['Chartelle.BKINCE.BlockaraMan'] = nil");
  d->editing().setProperties(u"m/ch/st", {{"StateData", kDeclared}});
  ASSERT_TRUE(settle());
  EXPECT_EQ(all(d), Lines{});
}

TEST_F(ChartStateTest, OnlyPortsOfAChartStateAreAlwaysTaken) {
  chart(kDeclared);
  d->editing().addBlock(u"m", "SubSystem", u"plain");
  ASSERT_TRUE(settle());
  bkEditBD& data = *engineOf(u"m")->getData();
  // Added off view: a port of a plain subsystem waits for a scan, a port of a state does not.
  d->editing().addBlock(u"m/plain", "Inport", u"pi");
  d->editing().addBlock(u"m/plain", "Outport", u"po");
  d->editing().addBlock(u"m/ch/st", "Inport", u"si");
  d->editing().addBlock(u"m/ch/st", "Outport", u"so");
  EXPECT_EQ(takeChanged(data), (std::vector<std::string>{"si", "so"}));
  ASSERT_TRUE(settle());
}

TEST_F(ChartStateTest, ARefreshTakesTheStatesBesideTheOwnerOfTheBlock) {
  chart(kDeclared);
  d->editing().addBlock(u"m/ch", "SubSystem", u"st2", {{"SubsystemType", std::string("8")}});
  d->editing().addBlock(u"m/ch", "SubSystem", u"notAState");
  BKBlock* port = d->editing().addBlock(u"m/ch/st", "Inport", u"a");
  ASSERT_TRUE(settle());
  bkEditBD& data = *engineOf(u"m")->getData();
  takeEvents();
  controller().refreshBlockaraStatePortChecks(L"m", port->getHandle());
  EXPECT_EQ(takeChanged(data), (std::vector<std::string>{"st", "st2"}));
  EXPECT_EQ(takeEvents(), (std::vector<Event>{{9, false}}));
  ASSERT_TRUE(settle());
}

}  // namespace
}  // namespace bkedittimecheck::testing
