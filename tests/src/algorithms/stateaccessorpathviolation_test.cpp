// Where a state reader or writer stands against its owner, beyond the scenario
// interactive_stateaccessor: iterator systems above either, owners given relative to the
// accessor, and the plain substring test.
#include "src/algorithms/stateaccessorpathviolation.h"

#include "tests/src/algorithms/checkbench.h"

namespace bkedittimecheck::testing {
namespace {

class StateAccessorTest : public CheckBench {
 public:
  void run() { StateAccessorPathViolation(L"m", 1).evaluate(*data, *db); }
};

TEST_F(StateAccessorTest, PlacementAgainstTheOwner) {
  struct Case {
    std::string what;
    Lines blocks;
    Lines expected;
  };
  // "it" and "jt" iterate: each holds an event listener.
  const Lines iterators{"it SubSystem", "it/el EventListener", "jt SubSystem",
                        "jt/el EventListener"};
  const auto with = [&iterators](Lines more) {
    more.insert(more.begin(), iterators.begin(), iterators.end());
    return more;
  };
  const std::vector<Case> cases{
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
  };
  for (const Case& c : cases) {
    build(c.blocks);
    run();
    EXPECT_EQ(records(), c.expected) << c.what;
  }
  // The iterator walks put back what they took from the queue.
  EXPECT_EQ(probe().subsysProperties().unsafe_size(), 2u);
}

}  // namespace
}  // namespace bkedittimecheck::testing
