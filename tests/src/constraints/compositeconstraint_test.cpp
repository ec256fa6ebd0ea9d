// The evaluation protocol: prerequisites, the caching that differs between subjects, and the
// short-circuit rules of composites.
#include "src/constraints/compositeconstraint.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "src/constraints/blocktypeconstraint.h"
#include "src/constraints/modelparameterconstraint.h"
#include "tests/src/constraints/constraintfixture.h"

namespace bkedittimecheck::testing {
namespace {

// Counts how often the verdict is computed, which is what caching and short-circuits save.
template <class Base>
class Counting : public Base {
 public:
  bool check() override {
    ++calls;
    return Base::check();
  }
  int calls = 0;
};

using CountingPositive = Counting<PositiveBlockParameterConstraint>;
using CountingNegative = Counting<NegativeBlockParameterConstraint>;

// A block parameter constraint that holds exactly when the current value is "yes".
template <class C = CountingPositive>
std::shared_ptr<C> yesRule(const std::string& id, const std::string& current) {
  auto c = std::make_shared<C>();
  c->setID(id);
  c->addToConstraintValueVector(ConstraintValue("yes"));
  c->setCurrentValue(ParameterValue(current));
  return c;
}

class ProtocolTest : public ConstraintFixture {};

TEST_F(ProtocolTest, FailedPrerequisiteSkipsTheRestAndPasses) {
  struct Case {
    const char* what;
    bool negativeDependent;
    std::string p1, p2, dependentValue;
    bool expected;
    int p2Calls, dependentCalls;
  };
  const Case cases[] = {
      {"P1 fails: P2 and the dependent untouched", false, "no", "yes", "no", true, 0, 0},
      {"P1 fails, negative dependent passes alike", true, "no", "yes", "yes", true, 0, 0},
      {"both hold: dependent judged", false, "yes", "yes", "no", false, 1, 1},
      {"both hold: negative dependent judged", true, "yes", "yes", "yes", false, 1, 1},
      {"P2 fails", false, "yes", "no", "no", true, 1, 0},
  };
  for (const Case& c : cases) {
    auto p1 = yesRule("p1", c.p1);
    auto p2 = yesRule("p2", c.p2);
    auto negative = yesRule<CountingNegative>("d", c.dependentValue);
    auto positive = yesRule("d", c.dependentValue);
    std::shared_ptr<Constraint> dependent = positive;
    if (c.negativeDependent) dependent = negative;
    const auto dependentCalls = [&] { return negative->calls + positive->calls; };
    dependent->setStatus(true);
    dependent->addPreRequisiteConstraint(p1);
    dependent->addPreRequisiteConstraint(p2);
    EXPECT_EQ(CompositeConstraint::checkConstraint(bareSnapshot(), dependent), c.expected)
        << c.what;
    EXPECT_EQ(p2->calls, c.p2Calls) << c.what;
    EXPECT_EQ(dependentCalls(), c.dependentCalls) << c.what;
    if (c.dependentCalls == 0) {
      EXPECT_FALSE(dependent->WasChecked()) << c.what;
      EXPECT_TRUE(dependent->getStatus()) << c.what << ": a skipped verdict is left alone";
    }
  }
}

TEST_F(ProtocolTest, PrerequisiteListsAndNesting) {
  // A prerequisite whose own prerequisite fails counts as holding: its dependent is judged.
  auto inner = yesRule("inner", "no");
  auto middle = yesRule("middle", "no");
  middle->addPreRequisiteConstraint(inner);
  auto top = yesRule("top", "no");
  top->addPreRequisiteConstraint(middle);
  EXPECT_FALSE(CompositeConstraint::checkConstraint(bareSnapshot(), top));
  EXPECT_EQ(middle->calls, 0);
  EXPECT_EQ(top->calls, 1);

  // Linking an object whose ID the file named does not double the ID, but the object is
  // evaluated as often as it was linked.
  auto p = yesRule("p", "yes");
  auto d = yesRule("d", "yes");
  d->addPreRequisiteConstraintID("p");
  d->addPreRequisiteConstraint(p);
  d->addPreRequisiteConstraint(p);
  EXPECT_EQ(d->getPreRequisiteConstraintIDs(), std::vector<std::string>{"p"});
  EXPECT_TRUE(CompositeConstraint::checkConstraint(bareSnapshot(), d));
  EXPECT_EQ(p->calls, 2);

  d->addPreRequisiteConstraintID("p");
  EXPECT_EQ(d->getPreRequisiteConstraintIDs().size(), 2u) << "a plain ID is always appended";

  // After a reset the constraint is judged directly, and its former prerequisite keeps its flag.
  p->setIsRootConstraint(false);
  auto failing = yesRule("f", "no");
  d->addPreRequisiteConstraint(failing);
  d->resetPrerequisites();
  EXPECT_TRUE(d->getPreRequisiteConstraintIDs().empty());
  EXPECT_TRUE(CompositeConstraint::checkConstraint(bareSnapshot(), d));
  EXPECT_EQ(failing->calls, 0);
  EXPECT_FALSE(p->IsRootConstraint());
}

// Block parameter and block type constraints are judged afresh for every block; a model
// parameter constraint keeps its verdict until its value is read again.
TEST_F(ProtocolTest, CachingDiffersBetweenSubjects) {
  BKBlock* gain = add("Gain", u"g");
  const std::vector<std::shared_ptr<bkEditBlock>> blocks = {snapshot(gain), snapshot(gain),
                                                            snapshot(gain)};
  auto blockParameter = yesRule("bp", "yes");
  auto blockType = std::make_shared<Counting<PositiveBlockTypeConstraint>>();
  blockType->addBlockMaskPairToList("Gain", "");
  auto model = std::make_shared<Counting<PositiveModelParameterConstraint>>();
  model->addToConstraintValueVector(ConstraintValue("fast"));
  model->setCurrentValue(ParameterValue(std::string("fast")));

  struct Case {
    const char* what;
    std::shared_ptr<Constraint> constraint;
    std::function<int()> calls;
    int expectedCalls;
  };
  const Case cases[] = {
      {"block parameter", blockParameter, [&] { return blockParameter->calls; }, 3},
      {"block type", blockType, [&] { return blockType->calls; }, 3},
      {"model parameter", model, [&] { return model->calls; }, 1},
  };
  for (const Case& c : cases) {
    for (const auto& block : blocks) {
      EXPECT_TRUE(CompositeConstraint::checkConstraint(block, c.constraint)) << c.what;
    }
    EXPECT_EQ(c.calls(), c.expectedCalls) << c.what;
  }
  // A new value makes the model constraint stale: the next block judges it once more.
  model->setCurrentValue(ParameterValue(std::string("slow")));
  EXPECT_FALSE(model->WasChecked());
  EXPECT_FALSE(CompositeConstraint::checkConstraint(blocks[0], model));
  EXPECT_FALSE(CompositeConstraint::checkConstraint(blocks[1], model));
  EXPECT_EQ(model->calls, 2);
}

// The event thread reads a changed model parameter into its constraint while the worker may be
// judging it; the thread sanitizer build watches this for races. Afterwards the last value wins.
TEST_F(ProtocolTest, ModelValueChangesWhileTheWorkerJudges) {
  auto model = std::make_shared<PositiveModelParameterConstraint>();
  model->addToConstraintValueVector(ConstraintValue("fast"));
  std::atomic<bool> done{false};
  std::thread worker([&] {
    const auto block = bareSnapshot();
    while (!done.load()) CompositeConstraint::checkConstraint(block, model);
  });
  for (int i = 0; i < 2000; ++i) {
    model->setCurrentValue(ParameterValue(std::string(i % 2 ? "fast" : "slow")));
  }
  done.store(true);
  worker.join();
  model->setCurrentValue(ParameterValue(std::string("fast")));
  EXPECT_TRUE(CompositeConstraint::checkConstraint(bareSnapshot(), model));
}

TEST_F(ProtocolTest, BlockWithoutCapturedValueKeepsTheLastOne) {
  BKBlock* a = add("Gain", u"a", {{"Gain", std::string("yes")}});
  BKBlock* b = add("Gain", u"b", {{"Gain", std::string("no")}});
  auto rule = yesRule("r", "");
  rule->setParameterName("Gain");
  const std::vector<std::shared_ptr<BlockParameterConstraint>> wanted = {rule};
  EXPECT_TRUE(CompositeConstraint::checkConstraint(snapshot(a, wanted), rule));
  EXPECT_TRUE(CompositeConstraint::checkConstraint(snapshot(b), rule)) << "judged by a's value";
  EXPECT_FALSE(CompositeConstraint::checkConstraint(snapshot(b, wanted), rule));
}

TEST_F(ProtocolTest, BlockTypeAndMaskPairs) {
  auto unmasked = snapshot(add("Gain", u"plain"));
  auto masked = snapshot(add("Gain", u"masked", {{"MaskType", std::string("Filter")}}));
  auto other = snapshot(add("Constant", u"c"));
  auto positive = std::make_shared<PositiveBlockTypeConstraint>();
  auto negative = std::make_shared<NegativeBlockTypeConstraint>();
  for (BlockTypeConstraint* c : {static_cast<BlockTypeConstraint*>(positive.get()),
                                 static_cast<BlockTypeConstraint*>(negative.get())}) {
    c->addBlockMaskPairToList("Gain", "");
    c->addBlockMaskPairToList("Gain", "");
  }
  EXPECT_EQ(positive->getNumBlockTypeMaskTypePairs(), 2u);
  struct Case {
    const char* what;
    std::shared_ptr<bkEditBlock> block;
    bool positiveHolds;
  };
  const Case cases[] = {{"unmasked block of a listed type", unmasked, true},
                        {"masked block: the empty mask type is no wildcard", masked, false},
                        {"type not listed", other, false}};
  for (const Case& c : cases) {
    EXPECT_EQ(CompositeConstraint::checkConstraint(c.block, positive), c.positiveHolds) << c.what;
    EXPECT_EQ(CompositeConstraint::checkConstraint(c.block, negative), !c.positiveHolds) << c.what;
  }
}

TEST_F(ProtocolTest, CompositeOperatorsAndShortCircuits) {
  struct Case {
    const char* what;
    std::string op;
    std::set<std::string> ids;
    bool expected;
    int firstCalls, secondCalls;
  };
  // Children "a10" (fails) and "a9" (holds); linking puts them in ascending ID order.
  const Case cases[] = {
      {"and stops at the first failure", "and", {"a10", "a9"}, false, 1, 0},
      {"AND", "AND", {"a10", "a9"}, false, 1, 0},
      {"and over the passing child only", "and", {"a9"}, true, 0, 1},
      {"or evaluates nothing and passes", "or", {"a10", "a9"}, true, 0, 0},
      {"OR", "OR", {"a10"}, true, 0, 0},
      {"no operator", "", {"a10", "a9"}, true, 0, 0},
      {"no child concerns the block", "and", {"b1"}, true, 0, 0},
  };
  for (const Case& c : cases) {
    auto first = yesRule("a10", "no");
    auto second = yesRule("a9", "yes");
    CompositeConstraint composite;
    composite.setCompositeOperator(c.op);
    composite.addConstraint(first);
    composite.addConstraint(second);
    EXPECT_EQ(composite.check(bareSnapshot(), c.ids), c.expected) << c.what;
    EXPECT_EQ(first->calls, c.firstCalls) << c.what;
    EXPECT_EQ(second->calls, c.secondCalls) << c.what;
  }
  EXPECT_TRUE(CompositeConstraint().check(bareSnapshot(), {"a"})) << "no children";
}

}  // namespace
}  // namespace bkedittimecheck::testing
