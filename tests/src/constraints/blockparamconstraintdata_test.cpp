// The constraint data reader: the order rules of the configuration, duplicate and unknown IDs,
// the values read from the host, and the verdicts of whole checks on host blocks. The worked
// example of the user guide is judged end to end by the example scenario.
#include "src/constraints/blockparamconstraintdata.h"

#include <gtest/gtest.h>

#include <boost/any.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "host/model/bkgraph.h"
#include "src/constraints/blocktypeconstraint.h"
#include "src/constraints/modelparameterconstraint.h"
#include "src/hostinterface.h"
#include "tests/src/constraints/constraintfixture.h"

namespace bkedittimecheck::testing {
namespace {

using boost::property_tree::ptree;

ptree parse(const std::string& xml) {
  std::istringstream in(xml);
  ptree tree;
  boost::property_tree::read_xml(in, tree);
  return tree;
}

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

std::vector<std::string> idsOf(const std::vector<std::shared_ptr<Constraint>>& constraints) {
  std::vector<std::string> ids;
  for (const auto& c : constraints) ids.push_back(c->getID());
  return ids;
}

TEST(BlockParamConstraintData, OrderOfTheConfiguration) {
  const std::string body =
      "<PositiveBlockTypeConstraint "
      "id=\"t\"/><CompositeConstraint><ID>t</ID></CompositeConstraint>";
  const std::string dataFile =
      "<InputParameters><InputParameter Name=\"Data File\"><BlockConstraints>" + body +
      "</BlockConstraints></InputParameter></InputParameters>";
  struct Case {
    const char* what;
    std::string checks;
    std::vector<std::string> checkIds;
  };
  const Case cases[] = {
      {"a constraint check", constraintCheck("k", body), {"k"}},
      {"no checkType", "<Check><ID>k</ID>" + dataFile + "</Check>", {}},
      {"another checkType", "<Check><ID checkType=\"Other\">k</ID>" + dataFile + "</Check>", {}},
      {"InputParameters before ID",
       "<Check>" + dataFile + "<ID checkType=\"BlockConstraintCheck\">k</ID></Check>",
       {}},
      {"other children of the list", "<Note/>" + constraintCheck("k", body), {"k"}},
      {"a repeated check ID", constraintCheck("k", body) + constraintCheck("k", ""), {"k", "k"}},
      {"a parameter of another name",
       "<Check><ID checkType=\"BlockConstraintCheck\">k</ID><InputParameters>"
       "<InputParameter Name=\"Other\"/></InputParameters></Check>",
       {"k"}},
  };
  for (const Case& c : cases) {
    BlockParamConstraintData data(parse(configuration(c.checks)));
    EXPECT_EQ(data.getConstraintCheckIds(), c.checkIds) << c.what;
    auto check = data.getCheckData("k");
    EXPECT_EQ(check != nullptr, !c.checkIds.empty()) << c.what;
    if (check && std::string(c.what) == "a repeated check ID") {
      EXPECT_TRUE(check->hasCompositeConstraints()) << "the first data stays";
    }
  }
  EXPECT_EQ(BlockParamConstraintData(parse(configuration(constraintCheck("k", body))))
                .getCheckData("nope"),
            nullptr);

  // What the reader cannot do without passes the property tree's exception through.
  EXPECT_THROW(BlockParamConstraintData(parse("<RAConfiguration/>")),
               boost::property_tree::ptree_bad_path);
  EXPECT_THROW(BlockParamConstraintData(parse(configuration(
                   "<Check><ID checkType=\"BlockConstraintCheck\">k</ID><InputParameters>"
                   "<InputParameter Name=\"Data File\"/></InputParameters></Check>"))),
               boost::property_tree::ptree_bad_path);
}

TEST(BlockParamConstraintData, DuplicateUnknownAndDefaultedElements) {
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
    <CompositeConstraint><ID>d</ID></CompositeConstraint>)");
  ASSERT_TRUE(check);
  const auto& byId = check->getConstraintsById();
  EXPECT_EQ(byId.size(), 4u) << "'', 'd', 'x', 't'";
  auto empty = std::dynamic_pointer_cast<BlockParameterConstraint>(byId.at(""));
  EXPECT_EQ(empty->getParameterName(), "Gain") << "the first constraint without id stays";
  auto d = std::dynamic_pointer_cast<BlockParameterConstraint>(byId.at("d"));
  EXPECT_EQ(d->getParameterName(), "First");
  EXPECT_EQ(d->getValueOperator(), "or") << "empty operator text";
  EXPECT_EQ(d->getPreRequisiteConstraintIDs(), (std::vector<std::string>{"nowhere", "x"}));
  EXPECT_EQ(idsOf(d->getPreRequisiteConstraints()), std::vector<std::string>{"x"});
  EXPECT_FALSE(byId.at("x")->IsRootConstraint()) << "a prerequisite is no root";
  EXPECT_TRUE(d->IsRootConstraint());
  // The repeat is dropped from the ID map but stays in the per-type lists.
  EXPECT_EQ(check->getBlockTypeNames(), (std::vector<std::string>{"Gain", "Gain", "Gain", "Sum"}));
  EXPECT_EQ(check->getConstraintIdsByBlockType().at("Sum"), std::set<std::string>{"d"});
  auto types = std::dynamic_pointer_cast<BlockTypeConstraint>(byId.at("t"));
  EXPECT_EQ(types->getNumBlockTypeMaskTypePairs(), 1u) << "an empty BlockType is passed over";
  EXPECT_EQ(types->getBlockTypeMaskTypeList().at("Gain"), std::vector<std::string>{"M"});
  const auto& composites = check->getCompositeConstraints();
  ASSERT_EQ(composites.size(), 2u);
  EXPECT_EQ(composites[0]->getCompositeOperator(), "and") << "empty operator text";
  EXPECT_EQ(idsOf(composites[0]->getConstraints()), std::vector<std::string>{"t"});
  EXPECT_EQ(composites[1]->getCompositeOperator(), "") << "no operator: passes everything";
}

TEST(BlockParamConstraintData, ValueFormsFollowTheDataTypeKnownAtThatMoment) {
  auto check = readOne(R"(
    <PositiveBlockParameterConstraint id="s" BlockType="SubSystem"><parameter type="struct">StateData</parameter>
      <value><name>x</name><scope>Local</scope></value></PositiveBlockParameterConstraint>
    <PositiveBlockParameterConstraint id="a" BlockType="Sum"><parameter type="array">Inputs</parameter>
      <value><element>a</element><skip>b</skip><element>c</element></value></PositiveBlockParameterConstraint>
    <PositiveBlockParameterConstraint id="late" BlockType="Gain">
      <value>early</value><parameter type="struct">Gain</parameter></PositiveBlockParameterConstraint>)");
  ASSERT_TRUE(check);
  const auto& byId = check->getConstraintsById();
  auto s = std::dynamic_pointer_cast<BlockParameterConstraint>(byId.at("s"));
  EXPECT_EQ(s->getConstraintValue().at(0).asMap(),
            (ConstraintValue::Map{{"name", "x"}, {"scope", "Local"}}));
  auto a = std::dynamic_pointer_cast<BlockParameterConstraint>(byId.at("a"));
  EXPECT_EQ(a->getConstraintValue().at(0).asVector(), (ConstraintValue::Vector{"a", "c"}));
  auto late = std::dynamic_pointer_cast<BlockParameterConstraint>(byId.at("late"));
  EXPECT_EQ(late->getConstraintValue().at(0).asString(), "early");
  late->setCurrentValue(ParameterValue(ConstraintValue::Map{{"a", "1"}}));
  EXPECT_THROW(late->check(), boost::bad_any_cast) << "the run of the check ends here";
}

class CheckDataTest : public ConstraintFixture {};

// Whole checks over host blocks: which constraints concern a block, composites in file order.
// A range behind a model setting that holds or not is the scenario constraints_modelparam's.
TEST_F(CheckDataTest, VerdictsOfWholeChecks) {
  const std::string g = R"(
    <PositiveBlockParameterConstraint id="g" BlockType="Gain"><parameter type="double">Gain</parameter>
      <operator>range</operator><value>0</value><value>10</value><dependson>m</dependson>
    </PositiveBlockParameterConstraint>
    <PositiveModelParameterConstraint id="m"><parameter>SolverType</parameter><value>fixed</value>
    </PositiveModelParameterConstraint>)";
  const std::string t = R"(<PositiveBlockTypeConstraint id="t">
    <BlockType>Gain</BlockType><BlockType>Constant</BlockType></PositiveBlockTypeConstraint>)";
  const auto all = [](const std::string& id) {
    return "<CompositeConstraint><ID>" + id + "</ID><operator>and</operator></CompositeConstraint>";
  };
  struct Case {
    const char* what;
    std::string blockConstraints, solver;
    std::string passes;  // the verdicts for Gain 5, Gain 50, Constant and Sum, '1' for a pass
  };
  const Case cases[] = {
      {"a model constraint named directly is skipped", g + all("m"), "variable", "1111"},
      {"a block type constraint concerns every block", t + all("t"), "fixed", "1110"},
      {"two composites: a block must pass both", g + t + all("t") + all("g"), "fixed", "1010"},
      {"constraints without composite", g, "fixed", "1111"},
  };
  BKBlock* blocks[] = {add("g5 Gain Gain=5"), add("g50 Gain Gain=50"), add("c Constant"),
                       add("s Sum")};
  for (const Case& c : cases) {
    diagram->editing().setModelParam("SolverType", std::string(c.solver));
    auto check = readOne(c.blockConstraints);
    ASSERT_TRUE(check) << c.what;
    EXPECT_EQ(check->hasCompositeConstraints(),
              c.blockConstraints.find("Composite") != std::string::npos);
    refreshModelParameterConstraints(diagram, check->getModelParameterConstraintsByName());
    const auto wanted = check->getBlockParameterConstraintsByBlockType();
    for (std::size_t i = 0; i < std::size(blocks); ++i) {
      auto found = wanted.find(typeNameOf(blocks[i]));
      auto snap =
          snapshot(blocks[i], found == wanted.end() ? decltype(found->second){} : found->second);
      EXPECT_EQ(check->checkBlock(snap), c.passes[i] == '1') << c.what << ", block " << i;
    }
  }
}

// How the values under judgement are read from the host: block parameters captured into a
// snapshot by type code and data type, model parameters read from the active configuration set.
std::shared_ptr<BlockParameterConstraint> wants(const std::string& parameter,
                                                const std::string& dataType) {
  auto c = std::make_shared<PositiveBlockParameterConstraint>();
  c->setParameterName(parameter);
  c->setParameterDataType(dataType);
  return c;
}

TEST_F(CheckDataTest, CaptureByTypeCodeAndDataType) {
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
  EXPECT_TRUE(snapshot(subsystem)->getCapturedParameterValues().empty())
      << "a block whose type no constraint names captures nothing";
}

TEST_F(CheckDataTest, ModelValuesFromTheActiveConfigurationSet) {
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
      {"text", "SolverType", "string", false, "Fixed-step", true},
      {"records as struct", "Variants", "struct", false, ConstraintValue::Map{{"name", "v1"}},
       true},
      {"records as text: unreadable both ways, empty", "Variants", "string", false, "", true},
      {"nxarray: not read, but stale", "SolverType", "nxarray", false, "before", true},
      {"a parameter the set lacks: untouched", "NoSuchParameter", "string", false, "before", false},
      {"no active set: untouched", "SolverType", "string", true, "before", false},
  };
  for (const Case& c : cases) {
    if (c.removeSet) diagram->removeConfigSet();
    auto constraint = std::make_shared<NegativeModelParameterConstraint>();
    constraint->setParameterName(c.parameter);
    constraint->setParameterDataType(c.dataType);
    constraint->setCurrentValue(ParameterValue(std::string("before")));
    constraint->setWasChecked(true);
    ModelParameterConstraintsByName byName{{c.parameter, {constraint}}};
    refreshModelParameterConstraints(diagram, byName);
    EXPECT_EQ(constraint->getCurrentValue(), c.expected) << c.what;
    EXPECT_EQ(!constraint->WasChecked(), c.stale) << c.what;
  }
}

}  // namespace
}  // namespace bkedittimecheck::testing
