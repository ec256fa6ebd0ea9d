// The whole-diagram cross-block checks on small diagrams, each run on a bench of snapshots:
// Goto/From pairing under each visibility, data store duplicates under each setting, and where
// a state accessor stands against its owner; the groups a severity selects, the order in which
// the store is brought up to date, and the commented blocks that count or keep old records.
#include <gtest/gtest.h>

#include <functional>

#include "host/model/bkrootbd.h"
#include "host/runtime/eventloop.h"
#include "src/algorithms/datastoreusage.h"
#include "src/algorithms/gotofromblockmismatch.h"
#include "src/algorithms/stateaccessorpathviolation.h"
#include "tests/src/bkeditbdprobe.h"
#include "tests/src/blockline.h"

namespace bkedittimecheck::testing {
namespace {

using Lines = std::vector<std::string>;

/// A diagram "m" in the reference host without an engine, snapshotted by the test into a
/// `bkEditBD` of its own, and a store: a whole-diagram check's `evaluate` runs on exactly that,
/// on the test's thread.
class CheckBench : public ::testing::Test {
 public:
  struct Case {
    std::string what;
    Lines blocks;    // see BlockLine; "commented=1" comments the block out
    Lines expected;  // the store as "path|type|severity[|commented]", the path below "m"
  };

  void SetUp() override { blockara::EventLoop::instance().adoptCurrentThread(); }
  void TearDown() override { bkBlockDiagramSet::closeAll(); }

  /// A fresh diagram, snapshot and store with `blocks` in order of creation. Every block is
  /// snapshotted, and each event listener queued as the engine queues it.
  void build(const Lines& blocks) {
    bkBlockDiagramSet::closeAll();
    d = bkBlockDiagramSet::create(u"m", BKRootBD::Model);
    data = std::make_unique<bkEditBD>(L"m", false);
    db = std::make_unique<ViolationDatabase>();
    for (const std::string& line : blocks) {
      BlockLine entry(u"m", line);
      const bool commented = entry.props.erase("commented") > 0;
      BKBlock* b = d->editing().addBlock(entry.system, entry.type, entry.name, entry.props);
      if (commented) d->editing().setCommentState(entry.path(), 1);
      if (entry.type == "EventListener") {
        probe().subsysProperties().push(
            SubsysProperties{toWide(b->getFullPath(false)), b->getHandle(), true});
      }
    }
    for (BKBlock* b : d->blocksInPathOrder()) retake(b);
  }

  /// Builds each case, runs the check with `run` and compares the store.
  void runCases(const std::vector<Case>& cases, const std::function<void()>& run) {
    for (const Case& c : cases) {
      build(c.blocks);
      run();
      EXPECT_EQ(records(), c.expected) << c.what;
    }
  }

  /// Snapshots one block again, as a later batch would.
  void retake(BKBlock* b) {
    probe().blocks()[b->getHandle()] = std::make_shared<bkEditBlock>(b, false);
  }
  BKBlock* block(const std::u16string& path) const { return d->findBlock(u"m/" + path); }
  bkEditBDProbe probe() { return bkEditBDProbe(*data); }
  Lines records() const { return recordLines(d, *db); }

  void goToFrom(std::uint32_t severity = GoToFromBlockMismatch::kSeverity) {
    GoToFromBlockMismatch(L"m", severity).evaluate(*data, *db);
  }
  void dataStore(std::int32_t setting, std::uint32_t severity = DataStoreUsage::kSeverity) {
    data->setUniqueDataStoreMsg(setting);
    DataStoreUsage(L"m", severity).evaluate(*data, *db);
  }

  BKRootBD* d = nullptr;
  std::unique_ptr<bkEditBD> data;
  std::unique_ptr<ViolationDatabase> db;
};

TEST_F(CheckBench, GoToFromMismatchesUnderEachVisibility) {
  runCases(
      {
          {"a local pair in one system", {"g Goto GotoTag=A", "f From GotoTag=A"}, {}},
          {"a local Goto does not reach below, whatever visibility block stands there",
           {"s SubSystem", "g Goto GotoTag=A", "v GotoTagVisibility GotoTag=A",
            "s/f From GotoTag=A"},
           {"g|NoMatchingFrom|0", "s/f|NoMatchingGoTO|0"}},
          {"a scoped Goto without visibility block reaches below its system",
           {"s SubSystem", "g Goto GotoTag=A TagVisibility=scoped", "s/f From GotoTag=A"},
           {"g|NoMatchingGoToTagVisibilityBlock|1"}},
          {"a scoped Goto without visibility block does not reach a sibling system",
           {"s SubSystem", "t SubSystem", "s/g Goto GotoTag=A TagVisibility=scoped",
            "t/f From GotoTag=A"},
           {"s/g|NoMatchingFrom|0", "s/g|NoMatchingGoToTagVisibilityBlock|1",
            "t/f|NoMatchingGoTO|0"}},
          {"with a visibility block only it is tested against the From, not the Goto",
           {"s SubSystem", "t SubSystem", "s/g Goto GotoTag=A TagVisibility=scoped",
            "t/v GotoTagVisibility GotoTag=A", "t/f From GotoTag=A"},
           {}},
          {"a visibility block that covers nothing fails the scoped pair",
           {"s SubSystem", "t SubSystem", "s/g Goto GotoTag=A TagVisibility=scoped",
            "s/f From GotoTag=A", "t/v GotoTagVisibility GotoTag=A"},
           {"s/f|NoMatchingGoTO|0", "s/g|NoMatchingFrom|0"}},
          {"local Gotos in different systems, each with its From",
           {"s SubSystem", "g Goto GotoTag=A", "f From GotoTag=A", "s/h Goto GotoTag=A",
            "s/e From GotoTag=A"},
           {}},
          {"a local and a global Goto in one system do not compete; two local ones do",
           {"g Goto GotoTag=A", "h Goto GotoTag=A TagVisibility=global", "f From GotoTag=A",
            "x Goto GotoTag=B", "y Goto GotoTag=B"},
           {"x|DuplicateGoTo|1", "x|NoMatchingFrom|0", "y|DuplicateGoTo|1", "y|NoMatchingFrom|0"}},
          {"two visibility blocks of one tag in one system, a third elsewhere",
           {"s SubSystem", "v GotoTagVisibility GotoTag=A", "w GotoTagVisibility GotoTag=A",
            "s/u GotoTagVisibility GotoTag=A"},
           {"v|DuplicateGoToTagVisibility|1", "w|DuplicateGoToTagVisibility|1"}},
          {"the system test is a plain substring test: 'm/a/' lies inside 'm/b/m/a/'",
           {"a SubSystem", "b SubSystem", "b/m SubSystem", "b/m/a SubSystem",
            "a/g Goto GotoTag=A TagVisibility=scoped", "b/m/a/f From GotoTag=A"},
           {"a/g|NoMatchingGoToTagVisibilityBlock|1"}},
      },
      [this] { goToFrom(); });
}

TEST_F(CheckBench, GoToFromSeveritiesSelectTheirGroupsAndTheStoreIsUpdatedInKindOrder) {
  build({"g Goto GotoTag=A TagVisibility=scoped", "h Goto GotoTag=A TagVisibility=scoped"});
  goToFrom(Severity::kWarning);
  EXPECT_EQ(records(), (Lines{"g|NoMatchingFrom|0", "h|NoMatchingFrom|0"}));
  goToFrom(Severity::kError);  // the other group's records are stale now
  EXPECT_EQ(records(), (Lines{"g|DuplicateGoTo|1", "g|NoMatchingGoToTagVisibilityBlock|1",
                              "h|DuplicateGoTo|1", "h|NoMatchingGoToTagVisibilityBlock|1"}));
  // Gotos first, then Froms, then visibility blocks; made in the opposite order, so that the
  // handle order cannot explain the clears.
  build({"v GotoTagVisibility GotoTag=A", "f From GotoTag=A", "g Goto GotoTag=A"});
  goToFrom();
  EXPECT_EQ(db->pendingClears(),
            (std::vector<double>{block(u"g")->getHandle(), block(u"f")->getHandle(),
                                 block(u"v")->getHandle()}));
}

TEST_F(CheckBench, GoToFromACommentedGotoKeepsItsRecordUntilNoGotoViolates) {
  build({"g Goto GotoTag=A TagVisibility=global", "h Goto GotoTag=A TagVisibility=global",
         "f From GotoTag=A", "x Goto GotoTag=B"});
  goToFrom();
  ASSERT_EQ(records(), (Lines{"g|DuplicateGoTo|1", "h|DuplicateGoTo|1", "x|NoMatchingFrom|0"}));
  // g leaves the pairing; only a removal by type reaches its record, and x holds that off.
  d->editing().setCommentState(u"m/g", 1);
  retake(block(u"g"));
  goToFrom();
  EXPECT_EQ(records(), (Lines{"g|DuplicateGoTo|1", "x|NoMatchingFrom|0"}));
  d->editing().setProperties(u"m/x", {{"GotoTag", std::string("A")}});
  retake(block(u"x"));
  goToFrom();
  EXPECT_EQ(records(), Lines{});
}

// Across systems the scenario interactive_datastore shows each setting through the road.
TEST_F(CheckBench, DataStoreDuplicatesUnderEachSetting) {
  const Lines oneSystem{"a DataStoreMemory DataStoreName=A", "b DataStoreMemory DataStoreName=A",
                        "c DataStoreMemory DataStoreName=C"};
  const Lines sameGraph{"a|DuplicateDataStoreMemoryBlocksSameGraph|1",
                        "b|DuplicateDataStoreMemoryBlocksSameGraph|1"};
  runCases(
      {{"one system, setting none", oneSystem, sameGraph},
       // The first of three commented counts but is not reported; the second of two
       // commented is left out.
       {"commented",
        {"a DataStoreMemory DataStoreName=A commented=1", "b DataStoreMemory DataStoreName=A",
         "c DataStoreMemory DataStoreName=A", "s SubSystem", "s/d DataStoreMemory DataStoreName=D",
         "s/e DataStoreMemory DataStoreName=D commented=1"},
        {"b|DuplicateDataStoreMemoryBlocksSameGraph|1",
         "c|DuplicateDataStoreMemoryBlocksSameGraph|1"}}},
      [this] { dataStore(0); });
  runCases({{"one system, setting error: both types",
             oneSystem,
             {"a|DuplicateDataStoreMemoryBlocksDiagnostic|1",
              "a|DuplicateDataStoreMemoryBlocksSameGraph|1",
              "b|DuplicateDataStoreMemoryBlocksDiagnostic|1",
              "b|DuplicateDataStoreMemoryBlocksSameGraph|1"}}},
           [this] { dataStore(2); });

  // A setting change replaces the severity; warnings only look for nothing and clear all.
  build(
      {"s SubSystem", "a DataStoreMemory DataStoreName=A", "s/b DataStoreMemory DataStoreName=A"});
  dataStore(2);
  dataStore(1);
  EXPECT_EQ(records(), (Lines{"a|DuplicateDataStoreMemoryBlocksDiagnostic|0",
                              "s/b|DuplicateDataStoreMemoryBlocksDiagnostic|0"}));
  dataStore(1, Severity::kWarning);
  EXPECT_EQ(records(), Lines{});
}

TEST_F(CheckBench, StateAccessorPlacementAgainstTheOwner) {
  // "it" and "jt" iterate: each holds an event listener.
  const auto with = [](Lines more) {
    more.insert(more.begin(),
                {"it SubSystem", "it/el EventListener", "jt SubSystem", "jt/el EventListener"});
    return more;
  };
  runCases(
      {
          {"a plain substring: 'm/a' inside 'm/ab/c' counts as below",
           {"a SubSystem", "ab SubSystem", "ab/c SubSystem", "ab/c/u UnitDelay",
            "a/r StateReader StateOwnerBlock=m/ab/c/u"},
           {"a/r|StateOwnerInsideStateAccessorSystem|1"}},
          {"a relative owner climbs from the accessor's system",
           {"a SubSystem", "a/b SubSystem", "a/b/u UnitDelay",
            "a/r StateReader StateOwnerBlock=../a/b/u"},
           {"a/r|StateOwnerInsideStateAccessorSystem|1"}},
          {"a relative owner that climbs back into the accessor's system",
           {"a SubSystem", "a/b SubSystem", "a/b/u UnitDelay",
            "a/b/r StateReader StateOwnerBlock=../b/u"},
           {"a/b/r|StateAccessorAndStateOwnerInSameSystem|1"}},
          {"both under one iterator",
           with({"it/u UnitDelay", "it/r StateReader StateOwnerBlock=m/it/u"}),
           {"it/r|StateAccessorAndStateOwnerInSameSystem|1"}},
          {"under two different iterators",
           with({"jt/u UnitDelay", "it/r StateReader StateOwnerBlock=m/jt/u"}),
           {"it/r|StateAccessorInImplicitIterator|1"}},
          {"the owner is itself an iterator system",
           with({"r StateReader StateOwnerBlock=m/it"}),
           {"r|StateAccessorAndStateOwnerInSameSystem|1", "r|StateAccessorInImplicitIterator|1"}},
      },
      [this] { StateAccessorPathViolation(L"m", 1).evaluate(*data, *db); });
  // The iterator walks put back what they took from the queue.
  EXPECT_EQ(probe().subsysProperties().unsafe_size(), 2u);
}

}  // namespace
}  // namespace bkedittimecheck::testing
