// The block constraint check: its data read from a customization file (the order rules,
// duplicate and unknown IDs, value forms), the values read from the host and the evaluation
// protocol (prerequisites, caching by subject, composites). Whole checks over host blocks are
// judged end to end by the scenario constraints_modelparam and, for the worked example of the
// user guide, by the example scenario.
#include <gtest/gtest.h>

#include <atomic>
#include <boost/any.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "host/model/bkrootbd.h"
#include "host/model/diagramediting.h"
#include "host/xml/xmlreader.h"
#include "src/constraints/bkeditblock.h"
#include "src/constraints/blockparamconstraintdata.h"
#include "src/constraints/blocktypeconstraint.h"
#include "src/constraints/compositeconstraint.h"
#include "src/constraints/modelparameterconstraint.h"

namespace bkedittimecheck::testing {
namespace {

using boost::property_tree::ptree;

ptree parse(const std::string& xml) { return blockara::xml::readString(xml, "constraints.xml"); }

// A configuration with one check of each given (ID element, body) in CheckCellArray.
std::string configuration(const std::string& checks) {
  return "<RAConfiguration><CheckCellArray>" + checks + "</CheckCellArray></RAConfiguration>";
}

std::string constraintCheck(const std::string& id, const std::string& blockConstraints) {
  return "<Check><ID checkType=\"BlockConstraintCheck\">" + id +
         "</ID><InputParameters><InputParameter Name=\"Data File\"><BlockConstraints>" +
         blockConstraints + "</BlockConstraints></InputParameter></InputParameters></Check>";
}

std::shared_ptr<BlockConstraintCheckData> readOne(const std::string& blockConstraints) {
  BlockParamConstraintData data(parse(configuration(constraintCheck("k", blockConstraints))));
  return data.getCheckData("k");
}

/// The block parameter constraint of ID `id` in `check`.
std::shared_ptr<BlockParameterConstraint> parameterConstraint(
    const std::shared_ptr<BlockConstraintCheckData>& check, const std::string& id) {
  return std::dynamic_pointer_cast<BlockParameterConstraint>(check->getConstraintsById().at(id));
}

std::vector<std::string> idsOf(const std::vector<std::shared_ptr<Constraint>>& constraints) {
  std::vector<std::string> ids;
  for (const auto& c : constraints) ids.push_back(c->getID());
  return ids;
}

// The check IDs read from `xml`, each marked "*" when its data has composites; or the
// property tree's exception, which the reader passes through when it cannot do without a node.
std::string checksIn(const std::string& xml) {
  try {
    BlockParamConstraintData data(parse(xml));
    std::string out;
    for (const std::string& id : data.getConstraintCheckIds()) {
      out += id + (data.getCheckData(id)->hasCompositeConstraints() ? "* " : " ");
    }
    return out;
  } catch (const boost::property_tree::ptree_bad_path&) {
    return "bad path";
  }
}

TEST(BlockParamConstraintData, OrderOfTheConfiguration) {
  const std::string body =
      "<PositiveBlockTypeConstraint id=\"t\"/>"
      "<CompositeConstraint><ID>t</ID></CompositeConstraint>";
  const std::string id = "<ID checkType=\"BlockConstraintCheck\">k</ID>";
  const std::string dataFile =
      "<InputParameters><InputParameter Name=\"Data File\"><BlockConstraints>" + body +
      "</BlockConstraints></InputParameter></InputParameters>";
  const auto check = [&](const std::string& parameter) {
    return "<Check>" + id + "<InputParameters>" + parameter + "</InputParameters></Check>";
  };
  const struct {
    const char* what;
    std::string checks, expected;
  } cases[] = {
      {"a constraint check", constraintCheck("k", body), "k* "},
      {"no checkType", "<Check><ID>k</ID>" + dataFile + "</Check>", ""},
      {"another checkType", "<Check><ID checkType=\"Other\">k</ID>" + dataFile + "</Check>", ""},
      {"InputParameters before ID", "<Check>" + dataFile + id + "</Check>", ""},
      {"other children of the list", "<Note/>" + constraintCheck("k", body), "k* "},
      {"a repeated check ID: the first data stays",
       constraintCheck("k", body) + constraintCheck("k", ""), "k* k* "},
      {"a parameter of another name", check("<InputParameter Name=\"Other\"/>"), "k "},
      {"a data file without constraints", check("<InputParameter Name=\"Data File\"/>"),
       "bad path"},
  };
  for (const auto& c : cases) EXPECT_EQ(checksIn(configuration(c.checks)), c.expected) << c.what;
  EXPECT_EQ(checksIn("<RAConfiguration/>"), "bad path");
}

TEST(BlockParamConstraintData, DuplicateUnknownAndDefaultedElementsAndValueForms) {
  auto check = readOne(R"(<!-- a comment among the constraints -->
    <PositiveBlockParameterConstraint BlockType="Gain"><parameter>Gain</parameter></PositiveBlockParameterConstraint>
    <NegativeBlockParameterConstraint BlockType="Gain"><parameter>Other</parameter></NegativeBlockParameterConstraint>
    <PositiveBlockParameterConstraint id="d" BlockType="Gain"><parameter>First</parameter>
      <operator/><dependson>nowhere</dependson><dependson>x</dependson></PositiveBlockParameterConstraint>
    <NegativeBlockParameterConstraint id="d" BlockType="Sum"><parameter>Second</parameter></NegativeBlockParameterConstraint>
    <NegativeModelParameterConstraint id="x"><parameter>SolverType</parameter><value>fast</value></NegativeModelParameterConstraint>
    <NegativeBlockTypeConstraint id="t"><BlockType/><BlockType MaskType="M">Gain</BlockType></NegativeBlockTypeConstraint>
    <Unknown id="u"/>
    <CompositeConstraint><ID>t</ID><ID>t</ID><ID>missing</ID><operator/></CompositeConstraint>
    <CompositeConstraint><ID>d</ID></CompositeConstraint>
    <PositiveBlockParameterConstraint id="s" BlockType="SubSystem"><parameter type="struct">StateData</parameter>
      <value><name>x</name><scope>Local</scope></value></PositiveBlockParameterConstraint>
    <PositiveBlockParameterConstraint id="a" BlockType="Sum"><parameter type="array">Inputs</parameter>
      <value><element>a</element><skip>b</skip><element>c</element></value></PositiveBlockParameterConstraint>
    <PositiveBlockParameterConstraint id="late" BlockType="Gain">
      <value>early</value><parameter type="struct">Gain</parameter></PositiveBlockParameterConstraint>)");
  ASSERT_TRUE(check);
  const auto& byId = check->getConstraintsById();
  EXPECT_EQ(byId.size(), 7u) << "'', 'd', 'x', 't', 's', 'a', 'late'";
  EXPECT_EQ(parameterConstraint(check, "")->getParameterName(), "Gain")
      << "the first constraint without id stays";
  auto d = parameterConstraint(check, "d");
  EXPECT_EQ(d->getParameterName(), "First");
  EXPECT_EQ(d->getValueOperator(), "or") << "empty operator text";
  EXPECT_EQ(d->getPreRequisiteConstraintIDs(), (std::vector<std::string>{"nowhere", "x"}));
  EXPECT_EQ(idsOf(d->getPreRequisiteConstraints()), std::vector<std::string>{"x"});
  EXPECT_FALSE(byId.at("x")->IsRootConstraint()) << "a prerequisite is no root";
  // The repeat is dropped from the ID map but stays in the per-type lists.
  EXPECT_EQ(check->getBlockTypeNames(),
            (std::vector<std::string>{"Gain", "Gain", "Gain", "Sum", "SubSystem", "Sum", "Gain"}));
  EXPECT_EQ(check->getConstraintIdsByBlockType().at("Sum"), (std::set<std::string>{"a", "d"}));
  auto types = std::dynamic_pointer_cast<BlockTypeConstraint>(byId.at("t"));
  EXPECT_EQ(types->getNumBlockTypeMaskTypePairs(), 1u) << "an empty BlockType is passed over";
  EXPECT_EQ(types->getBlockTypeMaskTypeList().at("Gain"), std::vector<std::string>{"M"});
  const auto& composites = check->getCompositeConstraints();
  ASSERT_EQ(composites.size(), 2u);
  EXPECT_EQ(composites[0]->getCompositeOperator(), "and") << "empty operator text";
  EXPECT_EQ(idsOf(composites[0]->getConstraints()), std::vector<std::string>{"t"});
  EXPECT_EQ(composites[1]->getCompositeOperator(), "") << "no operator: passes everything";
  // Values take the form of the data type known when they are read.
  EXPECT_EQ(parameterConstraint(check, "s")->getConstraintValue().at(0).asMap(),
            (ConstraintValue::Map{{"name", "x"}, {"scope", "Local"}}));
  EXPECT_EQ(parameterConstraint(check, "a")->getConstraintValue().at(0).asVector(),
            (ConstraintValue::Vector{"a", "c"}));
  auto late = parameterConstraint(check, "late");
  EXPECT_EQ(late->getConstraintValue().at(0).asString(), "early");
  late->setCurrentValue(ParameterValue(ConstraintValue::Map{{"a", "1"}}));
  EXPECT_THROW(late->check(), boost::bad_any_cast) << "the run of the check ends here";
}

/// A snapshot that captured nothing, of no particular block.
inline std::shared_ptr<bkEditBlock> bareSnapshot() {
  return std::make_shared<bkEditBlock>(1.5, "b", 201, L"cx/b", false, false);
}

// Blocks of a real host diagram, snapshotted as the engine snapshots them under the rule
// auditor.
class ConstraintTest : public ::testing::Test {
 protected:
  void SetUp() override { diagram = bkBlockDiagramSet::create(u"cx"); }
  void TearDown() override { bkBlockDiagramSet::close(diagram); }

  /// The rule-auditor snapshot of `block`, with the parameters `constraints` name captured.
  static std::shared_ptr<bkEditBlock> snapshot(
      BKBlock* block, std::vector<std::shared_ptr<BlockParameterConstraint>> constraints = {}) {
    auto snap = std::make_shared<bkEditBlock>(block, true);
    snap->captureConstraintParameters(block, std::move(constraints));
    return snap;
  }

  BKRootBD* diagram = nullptr;
};

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

bool judge(std::shared_ptr<Constraint> c, std::shared_ptr<bkEditBlock> block = nullptr) {
  return CompositeConstraint::checkConstraint(block ? block : bareSnapshot(), c);
}

// A failed prerequisite skips the rest and passes; a prerequisite skipped by its own failed
// prerequisite counts as holding. (The bindings test replaces a list of prerequisites.)
TEST_F(ConstraintTest, FailedPrerequisiteSkipsTheRestAndPasses) {
  struct Case {
    const char* what;
    bool negativeDependent;
    std::string p1, p1Own, p2, dependentValue;  // p1Own: P1's own prerequisite, if any
    bool expected;
    Judgements judged;
  };
  const Case cases[] = {
      {"P1 fails: P2 and the dependent untouched", false, "no", "", "yes", "no", true, {"p1"}},
      {"P1 fails, negative dependent passes alike", true, "no", "", "yes", "yes", true, {"p1"}},
      {"both hold: dependent judged", false, "yes", "", "yes", "no", false, {"p1", "p2", "d"}},
      {"P2 fails", false, "yes", "", "no", "no", true, {"p1", "p2"}},
      {"P1 skipped", false, "no", "no", "yes", "no", false, {"p1own", "p2", "d"}},
  };
  for (const Case& c : cases) {
    judged.clear();
    auto dependent = c.negativeDependent
                         ? yesRule<NegativeBlockParameterConstraint>("d", c.dependentValue)
                         : yesRule("d", c.dependentValue);
    dependent->setStatus(true);
    auto p1 = yesRule("p1", c.p1);
    if (!c.p1Own.empty()) p1->addPreRequisiteConstraint(yesRule("p1own", c.p1Own));
    dependent->addPreRequisiteConstraint(p1);
    dependent->addPreRequisiteConstraint(yesRule("p2", c.p2));
    EXPECT_EQ(judge(dependent), c.expected) << c.what;
    EXPECT_EQ(judged, c.judged) << c.what;
    if (c.judged.back() != "d") {
      EXPECT_FALSE(dependent->WasChecked()) << c.what;
      EXPECT_TRUE(dependent->getStatus()) << c.what << ": a skipped verdict is left alone";
    }
  }
}

// A model parameter constraint keeps its verdict until its value is read again. Block parameter
// and block type constraints are judged afresh for every block, as the scenario
// constraints_modelparam shows with blocks of differing verdicts under one check.
TEST_F(ConstraintTest, AModelVerdictIsKeptUntilTheValueChanges) {
  auto model = std::make_shared<Logged<PositiveModelParameterConstraint>>();
  model->setID("m");
  model->addToConstraintValueVector(ConstraintValue("fast"));
  for (const std::string value : {"fast", "slow"}) {
    judged.clear();
    model->setCurrentValue(ParameterValue(value));
    EXPECT_EQ(judge(model), value == "fast");  // each call judges another block
    EXPECT_EQ(judge(model), value == "fast");
    EXPECT_EQ(judged, Judgements{"m"}) << value;
  }
}

// The event thread reads a changed model parameter into its constraint while the worker may be
// judging it; the thread sanitizer build watches this for races. Afterwards the last value wins.
TEST_F(ConstraintTest, ModelValueChangesWhileTheWorkerJudges) {
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

TEST_F(ConstraintTest, BlockWithoutCapturedValueKeepsTheLastOne) {
  BKBlock* a = diagram->editing().addBlock(u"cx", "Gain", u"a", {{"Gain", std::string("yes")}});
  BKBlock* b = diagram->editing().addBlock(u"cx", "Gain", u"b", {{"Gain", std::string("no")}});
  auto rule = yesRule("r", "");
  rule->setParameterName("Gain");
  EXPECT_TRUE(judge(rule, snapshot(a, {rule})));
  EXPECT_TRUE(judge(rule, snapshot(b))) << "judged by a's value";
  EXPECT_FALSE(judge(rule, snapshot(b, {rule})));
}

TEST_F(ConstraintTest, CompositeOperatorsAndShortCircuits) {
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

// How the values under judgement are read from the host: block parameters captured into a
// snapshot by type code and data type, model parameters read from the active configuration set.
template <class C = PositiveBlockParameterConstraint>
std::shared_ptr<C> wants(const std::string& parameter, const std::string& dataType) {
  auto c = std::make_shared<C>();
  c->setParameterName(parameter);
  c->setParameterDataType(dataType);
  return c;
}

TEST_F(ConstraintTest, CaptureByTypeCodeAndDataType) {
  const BlockRecordList states = {{{"name", "x"}, {"scope", "Local"}}, {{"name", "y"}}};
  BKBlock* subsystem = diagram->editing().addBlock(u"cx", "SubSystem", u"s",
                                                   {{"StateData", states}, {"Variant", "on"}});
  struct Case {
    const char* what;
    std::shared_ptr<BlockParameterConstraint> constraint;
    std::optional<ParameterValue> value;  // none: nothing stored
  };
  const Case cases[] = {
      {"a text type code reads text whatever the data type", wants("Variant", "struct"), "on"},
      {"records as struct: the first record's fields", wants("StateData", "struct"),
       ConstraintValue::Map{{"name", "x"}, {"scope", "Local"}}},
      {"records as array: no cell, an empty list", wants("StateData", "array"),
       ConstraintValue::Vector{}},
      {"records under a text data type", wants("StateData", "double"), std::nullopt},
      {"a parameter the block lacks", wants("Gain", "string"), std::nullopt},
  };
  for (const Case& c : cases) {
    const auto values = snapshot(subsystem, {c.constraint})->getCapturedParameterValues();
    const auto found = values.find(c.constraint->getParameterName());
    EXPECT_EQ(found == values.end() ? std::nullopt : std::optional(found->second), c.value)
        << c.what;
  }
}

TEST_F(ConstraintTest, ModelValuesFromTheActiveConfigurationSet) {
  diagram->editing().setModelParam("SolverType", std::string("Fixed-step"));
  diagram->editing().setModelParam("Variants", BlockRecordList{{{"name", "v1"}}});
  struct Case {
    const char* what;
    std::string parameter, dataType;
    bool removeSet;
    ParameterValue expected;
    bool stale;
  };
  const Case cases[] = {
      {"records as struct", "Variants", "struct", false, ConstraintValue::Map{{"name", "v1"}},
       true},
      {"records as text: unreadable both ways, empty", "Variants", "string", false, "", true},
      {"nxarray: not read, but stale", "SolverType", "nxarray", false, "before", true},
      {"a parameter the set lacks: untouched", "NoSuchParameter", "string", false, "before", false},
      {"no active set: untouched", "SolverType", "string", true, "before", false},
  };
  for (const Case& c : cases) {
    if (c.removeSet) diagram->removeConfigSet();
    auto constraint = wants<NegativeModelParameterConstraint>(c.parameter, c.dataType);
    constraint->setCurrentValue(ParameterValue(std::string("before")));
    constraint->setWasChecked(true);
    refreshModelParameterConstraints(diagram, {{c.parameter, {constraint}}});
    EXPECT_EQ(constraint->getCurrentValue(), c.expected) << c.what;
    EXPECT_EQ(!constraint->WasChecked(), c.stale) << c.what;
  }
}

}  // namespace
}  // namespace bkedittimecheck::testing
