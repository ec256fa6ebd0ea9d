// The evaluation protocol: prerequisites, the caching that differs between subjects, and the
// short-circuit rules of composites.
#include "src/constraints/compositeconstraint.h"

#include <gtest/gtest.h>

#include <atomic>
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

// The IDs of the constraints whose verdict was computed, in order: what caching and
// short-circuits save.
std::vector<std::string> judged;

template <class Base>
class Logged : public Base {
 public:
  bool check() override {
    judged.push_back(this->getID());
    return Base::check();
  }
};

using Judgements = std::vector<std::string>;

// A block parameter constraint that holds exactly when the current value is "yes".
template <class C = PositiveBlockParameterConstraint>
std::shared_ptr<BlockParameterConstraint> yesRule(const std::string& id,
                                                  const std::string& current) {
  auto c = std::make_shared<Logged<C>>();
  c->setID(id);
  c->addToConstraintValueVector(ConstraintValue("yes"));
  c->setCurrentValue(ParameterValue(current));
  return c;
}

using ProtocolTest = ConstraintFixture;

bool judge(std::shared_ptr<Constraint> c, std::shared_ptr<bkEditBlock> block = nullptr) {
  return CompositeConstraint::checkConstraint(block ? block : bareSnapshot(), c);
}

TEST_F(ProtocolTest, FailedPrerequisiteSkipsTheRestAndPasses) {
  struct Case {
    const char* what;
    bool negativeDependent;
    std::string p1, p2, dependentValue;
    bool expected;
    Judgements judged;
  };
  const Case cases[] = {
      {"P1 fails: P2 and the dependent untouched", false, "no", "yes", "no", true, {"p1"}},
      {"P1 fails, negative dependent passes alike", true, "no", "yes", "yes", true, {"p1"}},
      {"both hold: dependent judged", false, "yes", "yes", "no", false, {"p1", "p2", "d"}},
      {"P2 fails", false, "yes", "no", "no", true, {"p1", "p2"}},
  };
  for (const Case& c : cases) {
    judged.clear();
    auto dependent = c.negativeDependent
                         ? yesRule<NegativeBlockParameterConstraint>("d", c.dependentValue)
                         : yesRule("d", c.dependentValue);
    dependent->setStatus(true);
    dependent->addPreRequisiteConstraint(yesRule("p1", c.p1));
    dependent->addPreRequisiteConstraint(yesRule("p2", c.p2));
    EXPECT_EQ(judge(dependent), c.expected) << c.what;
    EXPECT_EQ(judged, c.judged) << c.what;
    if (c.judged.back() != "d") {
      EXPECT_FALSE(dependent->WasChecked()) << c.what;
      EXPECT_TRUE(dependent->getStatus()) << c.what << ": a skipped verdict is left alone";
    }
  }
}

TEST_F(ProtocolTest, PrerequisiteListsAndNesting) {
  judged.clear();
  // A prerequisite whose own prerequisite fails counts as holding: its dependent is judged.
  auto middle = yesRule("middle", "no");
  middle->addPreRequisiteConstraint(yesRule("inner", "no"));
  auto top = yesRule("top", "no");
  top->addPreRequisiteConstraint(middle);
  EXPECT_FALSE(judge(top));
  EXPECT_EQ(judged, (Judgements{"inner", "top"}));

  // Linking an object whose ID the file named does not double the ID, but the object is
  // evaluated as often as it was linked.
  judged.clear();
  auto p = yesRule("p", "yes");
  auto d = yesRule("d", "yes");
  d->addPreRequisiteConstraintID("p");
  d->addPreRequisiteConstraint(p);
  d->addPreRequisiteConstraint(p);
  EXPECT_EQ(d->getPreRequisiteConstraintIDs(), std::vector<std::string>{"p"});
  EXPECT_TRUE(judge(d));
  EXPECT_EQ(judged, (Judgements{"p", "p", "d"}));
  d->addPreRequisiteConstraintID("p");
  EXPECT_EQ(d->getPreRequisiteConstraintIDs().size(), 2u) << "a plain ID is always appended";

  // After a reset the constraint is judged directly, and its former prerequisite keeps its flag.
  judged.clear();
  p->setIsRootConstraint(false);
  d->addPreRequisiteConstraint(yesRule("f", "no"));
  d->resetPrerequisites();
  EXPECT_TRUE(d->getPreRequisiteConstraintIDs().empty());
  EXPECT_TRUE(judge(d));
  EXPECT_EQ(judged, Judgements{"d"});
  EXPECT_FALSE(p->IsRootConstraint());
}

// Block parameter and block type constraints are judged afresh for every block; a model
// parameter constraint keeps its verdict until its value is read again.
TEST_F(ProtocolTest, CachingDiffersBetweenSubjects) {
  judged.clear();
  BKBlock* gain = add("g Gain");
  const std::vector<std::shared_ptr<bkEditBlock>> blocks = {snapshot(gain), snapshot(gain)};
  auto blockType = std::make_shared<Logged<PositiveBlockTypeConstraint>>();
  blockType->setID("bt");
  blockType->addBlockMaskPairToList("Gain", "");
  auto model = std::make_shared<Logged<PositiveModelParameterConstraint>>();
  model->setID("m");
  model->addToConstraintValueVector(ConstraintValue("fast"));
  model->setCurrentValue(ParameterValue(std::string("fast")));
  const std::shared_ptr<Constraint> constraints[] = {yesRule("bp", "yes"), blockType, model};
  for (const auto& c : constraints) {
    for (const auto& block : blocks) EXPECT_TRUE(judge(c, block));
  }
  EXPECT_EQ(judged, (Judgements{"bp", "bp", "bt", "bt", "m"}));
  // A new value makes the model constraint stale: the next block judges it once more.
  model->setCurrentValue(ParameterValue(std::string("slow")));
  EXPECT_FALSE(model->WasChecked());
  EXPECT_FALSE(judge(model, blocks[0]));
  EXPECT_FALSE(judge(model, blocks[1]));
  EXPECT_EQ(judged.size(), 6u);
}

// The event thread reads a changed model parameter into its constraint while the worker may be
// judging it; the thread sanitizer build watches this for races. Afterwards the last value wins.
TEST_F(ProtocolTest, ModelValueChangesWhileTheWorkerJudges) {
  auto model = std::make_shared<PositiveModelParameterConstraint>();
  model->addToConstraintValueVector(ConstraintValue("fast"));
  std::atomic<bool> done{false};
  std::thread worker([&] {
    const auto block = bareSnapshot();
    while (!done.load()) judge(model, block);
  });
  for (int i = 0; i < 2000; ++i) {
    model->setCurrentValue(ParameterValue(std::string(i % 2 ? "fast" : "slow")));
  }
  done.store(true);
  worker.join();
  model->setCurrentValue(ParameterValue(std::string("fast")));
  EXPECT_TRUE(judge(model));
}

TEST_F(ProtocolTest, BlockWithoutCapturedValueKeepsTheLastOne) {
  BKBlock* a = add("a Gain Gain=yes");
  BKBlock* b = add("b Gain Gain=no");
  auto rule = yesRule("r", "");
  rule->setParameterName("Gain");
  EXPECT_TRUE(judge(rule, snapshot(a, {rule})));
  EXPECT_TRUE(judge(rule, snapshot(b))) << "judged by a's value";
  EXPECT_FALSE(judge(rule, snapshot(b, {rule})));
}

// Listed and unlisted types, positive and negative, are the scenario constraints_authoring's.
TEST_F(ProtocolTest, TheEmptyMaskTypeIsNoWildcard) {
  auto positive = std::make_shared<PositiveBlockTypeConstraint>();
  positive->addBlockMaskPairToList("Gain", "");
  positive->addBlockMaskPairToList("Gain", "");
  EXPECT_EQ(positive->getNumBlockTypeMaskTypePairs(), 2u);
  EXPECT_TRUE(judge(positive, snapshot(add("plain Gain"))));
  EXPECT_FALSE(judge(positive, snapshot(add("masked Gain MaskType=Filter"))));
}

TEST_F(ProtocolTest, CompositeOperatorsAndShortCircuits) {
  struct Case {
    const char* what;
    std::string op;
    std::set<std::string> ids;
    bool expected;
    Judgements judged;
  };
  // Children "a10" (fails) and "a9" (holds); linking puts them in ascending ID order.
  const Case cases[] = {
      {"and stops at the first failure", "and", {"a10", "a9"}, false, {"a10"}},
      {"AND", "AND", {"a10", "a9"}, false, {"a10"}},
      {"and over the passing child only", "and", {"a9"}, true, {"a9"}},
      {"or evaluates nothing and passes", "or", {"a10", "a9"}, true, {}},
      {"OR", "OR", {"a10"}, true, {}},
      {"no operator", "", {"a10", "a9"}, true, {}},
      {"no child concerns the block", "and", {"b1"}, true, {}},
  };
  for (const Case& c : cases) {
    judged.clear();
    CompositeConstraint composite;
    composite.setCompositeOperator(c.op);
    composite.addConstraint(yesRule("a10", "no"));
    composite.addConstraint(yesRule("a9", "yes"));
    EXPECT_EQ(composite.check(bareSnapshot(), c.ids), c.expected) << c.what;
    EXPECT_EQ(judged, c.judged) << c.what;
  }
  EXPECT_TRUE(CompositeConstraint().check(bareSnapshot(), {"a"})) << "no children";
}

}  // namespace
}  // namespace bkedittimecheck::testing
