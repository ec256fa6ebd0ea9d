// Where a state reader or writer stands against its owner: one system, the owner below, the
// iterator systems above either, owners given relative to the accessor, and the plain substring
// test that is kept on purpose.
#include "src/algorithms/stateaccessorpathviolation.h"

#include <gtest/gtest.h>

#include <functional>

#include "tests/src/algorithms/checkbench.h"

namespace bkedittimecheck::testing {
namespace {

class StateAccessorTest : public CheckBench {
 public:
  struct Case {
    std::string what;
    std::function<void(StateAccessorTest&)> build;
    Lines expected;
  };

  /// An accessor `name` in `system` naming `owner`.
  void reader(const std::u16string& system, const std::u16string& name, const std::string& owner) {
    add(system, "StateReader", name, {{"StateOwnerBlock", owner}});
  }
  /// A subsystem `name` in `system` that iterates: it holds an event listener block, whose
  /// record the engine would have queued.
  void iterator(const std::u16string& system, const std::u16string& name) {
    add(system, "SubSystem", name);
    BKBlock* el = add(system + u"/" + name, "EventListener", u"el");
    bkEditBDProbe(*data).subsysProperties().push(
        SubsysProperties{toWide(el->getFullPath(false)), el->getHandle(), true});
  }
};

TEST_F(StateAccessorTest, PlacementAgainstTheOwner) {
  const std::vector<Case> cases{
      {"both directly in the root system",
       [](StateAccessorTest& t) {
         t.add(u"m", "UnitDelay", u"u");
         t.reader(u"m", u"r", "m/u");
       },
       {"/r|StateAccessorAndStateOwnerInSameSystem|1"}},
      {"no owner: only the iterator test could add",
       [](StateAccessorTest& t) { t.reader(u"m", u"r", ""); },
       {}},
      {"the owner below the accessor's system",
       [](StateAccessorTest& t) {
         t.add(u"m", "SubSystem", u"a");
         t.add(u"m/a", "SubSystem", u"b");
         t.add(u"m/a/b", "UnitDelay", u"u");
         t.reader(u"m/a", u"r", "m/a/b/u");
       },
       {"/a/r|StateOwnerInsideStateAccessorSystem|1"}},
      {"the accessor below the owner's system: no finding",
       [](StateAccessorTest& t) {
         t.add(u"m", "SubSystem", u"a");
         t.add(u"m/a", "SubSystem", u"b");
         t.add(u"m/a", "UnitDelay", u"u");
         t.reader(u"m/a/b", u"r", "m/a/u");
       },
       {}},
      {"a plain substring: 'm/a' inside 'm/ab/c' counts as below",
       [](StateAccessorTest& t) {
         t.add(u"m", "SubSystem", u"a");
         t.add(u"m", "SubSystem", u"ab");
         t.add(u"m/ab", "SubSystem", u"c");
         t.add(u"m/ab/c", "UnitDelay", u"u");
         t.reader(u"m/a", u"r", "m/ab/c/u");
       },
       {"/a/r|StateOwnerInsideStateAccessorSystem|1"}},
      {"a relative owner climbs from the accessor's system",
       [](StateAccessorTest& t) {
         t.add(u"m", "SubSystem", u"a");
         t.add(u"m/a", "SubSystem", u"b");
         t.add(u"m/a/b", "UnitDelay", u"u");
         t.reader(u"m/a", u"r", "../a/b/u");
       },
       {"/a/r|StateOwnerInsideStateAccessorSystem|1"}},
      {"a relative owner that climbs and comes back to the accessor's system",
       [](StateAccessorTest& t) {
         t.add(u"m", "SubSystem", u"a");
         t.add(u"m/a", "SubSystem", u"b");
         t.add(u"m/a/b", "UnitDelay", u"u");
         t.reader(u"m/a/b", u"r", "../b/u");
       },
       {"/a/b/r|StateAccessorAndStateOwnerInSameSystem|1"}},
      {"the accessor under an iterator, the owner outside",
       [](StateAccessorTest& t) {
         t.iterator(u"m", u"it");
         t.add(u"m", "UnitDelay", u"u");
         t.reader(u"m/it", u"r", "m/u");
       },
       {"/it/r|StateAccessorInImplicitIterator|1"}},
      {"both under one iterator",
       [](StateAccessorTest& t) {
         t.iterator(u"m", u"it");
         t.add(u"m/it", "UnitDelay", u"u");
         t.reader(u"m/it", u"r", "m/it/u");
       },
       {"/it/r|StateAccessorAndStateOwnerInSameSystem|1"}},
      {"under two different iterators",
       [](StateAccessorTest& t) {
         t.iterator(u"m", u"it");
         t.iterator(u"m", u"jt");
         t.add(u"m/jt", "UnitDelay", u"u");
         t.reader(u"m/it", u"r", "m/jt/u");
       },
       {"/it/r|StateAccessorInImplicitIterator|1"}},
      {"the owner is itself an iterator system: its walk starts at the owner",
       [](StateAccessorTest& t) {
         t.iterator(u"m", u"it");
         t.reader(u"m", u"r", "m/it");
       },
       {"/r|StateAccessorAndStateOwnerInSameSystem|1", "/r|StateAccessorInImplicitIterator|1"}},
  };
  for (const Case& c : cases) {
    reset();
    c.build(*this);
    snapshotAll();
    StateAccessorPathViolation(L"m", 1).evaluate(*data, *db);
    EXPECT_EQ(records(StateAccessorPathViolation::kCheckId), c.expected) << c.what;
  }
}

TEST_F(StateAccessorTest, ARemovedOwnerClearsThePathFindingsAndTheIteratorQueueStaysWhole) {
  iterator(u"m", u"it");
  add(u"m", "UnitDelay", u"u");
  BKBlock* r = add(u"m", "StateWriter", u"w", {{"StateOwnerBlock", std::string("m/u")}});
  snapshotAll();
  StateAccessorPathViolation(L"m", 1).evaluate(*data, *db);
  ASSERT_EQ(records(StateAccessorPathViolation::kCheckId),
            (Lines{"/w|StateAccessorAndStateOwnerInSameSystem|1"}));
  d->editing().setProperties(u"m/w", {{"StateOwnerBlock", std::string("")}});
  retake(r);
  StateAccessorPathViolation(L"m", 1).evaluate(*data, *db);
  EXPECT_EQ(records(StateAccessorPathViolation::kCheckId), Lines{});
  EXPECT_EQ(bkEditBDProbe(*data).subsysProperties().unsafe_size(), 1u);
}

}  // namespace
}  // namespace bkedittimecheck::testing
