// How the values under judgement are read from the host: block parameters captured into a
// snapshot by type code and data type, model parameters read from the active configuration set.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "host/model/bkrootbd.h"
#include "src/constraints/modelparameterconstraint.h"
#include "tests/src/constraints/constraintfixture.h"

namespace bkedittimecheck::testing {
namespace {

class ParameterValuesTest : public ConstraintFixture {};

std::shared_ptr<BlockParameterConstraint> wants(const std::string& parameter,
                                                const std::string& dataType) {
  auto c = std::make_shared<PositiveBlockParameterConstraint>();
  c->setParameterName(parameter);
  c->setParameterDataType(dataType);
  return c;
}

TEST_F(ParameterValuesTest, CaptureByTypeCodeAndDataType) {
  const BlockRecordList states = {{{"name", "x"}, {"scope", "Local"}}, {{"name", "y"}}};
  BKBlock* subsystem =
      add("SubSystem", u"s", {{"StateData", states}, {"Variant", std::string("on")}});
  struct Case {
    const char* what;
    std::shared_ptr<BlockParameterConstraint> constraint;
    bool captured;
    ParameterValue value;
  };
  const Case cases[] = {
      {"a text type code reads text whatever the data type", wants("Variant", "struct"), true,
       std::string("on")},
      {"records as struct: the first record's fields", wants("StateData", "struct"), true,
       ConstraintValue::Map{{"name", "x"}, {"scope", "Local"}}},
      {"records as array: no cell, an empty list", wants("StateData", "array"), true,
       ConstraintValue::Vector{}},
      {"records under a text data type: nothing stored", wants("StateData", "double"), false, {}},
      {"a parameter the block lacks: nothing stored", wants("Gain", "string"), false, {}},
  };
  for (const Case& c : cases) {
    auto snap = snapshot(subsystem, {c.constraint});
    const auto values = snap->getCapturedParameterValues();
    auto found = values.find(c.constraint->getParameterName());
    ASSERT_EQ(found != values.end(), c.captured) << c.what;
    if (c.captured) {
      EXPECT_EQ(found->second, c.value) << c.what;
    }
  }
  EXPECT_TRUE(snapshot(subsystem)->getCapturedParameterValues().empty())
      << "a block whose type no constraint names captures nothing";
}

TEST_F(ParameterValuesTest, ModelValuesFromTheActiveConfigurationSet) {
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
      {"text", "SolverType", "string", false, std::string("Fixed-step"), true},
      {"records as struct", "Variants", "struct", false, ConstraintValue::Map{{"name", "v1"}},
       true},
      {"records as text: unreadable both ways, empty", "Variants", "string", false, std::string(""),
       true},
      {"nxarray: not read, but stale", "SolverType", "nxarray", false, std::string("before"), true},
      {"a parameter the set lacks: untouched", "NoSuchParameter", "string", false,
       std::string("before"), false},
      {"no active set: untouched", "SolverType", "string", true, std::string("before"), false},
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
