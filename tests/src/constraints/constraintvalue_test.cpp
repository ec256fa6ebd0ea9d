// The comparison of parameter constraints: every value operator and data type, the reserved
// words, and the exceptions that end a check's run.
#include "src/constraints/constraintvalue.h"

#include <gtest/gtest.h>

#include <boost/any.hpp>
#include <boost/regex.hpp>
#include <chrono>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace bkedittimecheck::testing {
namespace {

using Map = ConstraintValue::Map;
using Vector = ConstraintValue::Vector;

template <class T>
std::vector<ConstraintValue> one(T value) {
  return {ConstraintValue(std::move(value))};
}

std::vector<ConstraintValue> texts(std::vector<std::string> values) {
  std::vector<ConstraintValue> out;
  for (auto& v : values) out.emplace_back(std::move(v));
  return out;
}

struct MatchCase {
  const char* what;
  ParameterValue current;
  std::vector<ConstraintValue> values;
  std::string op;
  std::string dataType;
  bool matches;
};

TEST(MatchesConstraintValues, EveryOperatorAndDataType) {
  const MatchCase cases[] = {
      {"or: some element", "b", texts({"a", "b"}), "or", "string", true},
      {"or: none", "c", texts({"a", "b"}), "or", "string", false},
      {"or: an empty element never matches", "", texts({"a", ""}), "or", "string", false},
      {"eq: bytes", "1", texts({"1"}), "eq", "double", true},
      {"eq: no number reading", "1", texts({"1.0"}), "eq", "double", false},
      {"regex: the whole string", "abc", texts({"a.c"}), "regex", "string", true},
      {"regex: a middle part is no match", "abc", texts({"b"}), "regex", "string", false},
      {"regex: case sensitive", "ABC", texts({"a.c"}), "regex", "string", false},
      {"range: ends in either order, lower included", "0", texts({"10", "0"}), "range", "double",
       true},
      {"range: inside", "5", texts({"10", "0"}), "range", "double", true},
      {"range: upper excluded", "10", texts({"10", "0"}), "range", "double", false},
      {"range: one value answers false", "0", texts({"10"}), "range", "double", false},
      {"gt: a word reads 0.0", "1", texts({"abc"}), "gt", "double", true},
      {"gt: equal", "2", texts({"2"}), "gt", "double", false},
      {"ge: equal", "2", texts({"2"}), "ge", "double", true},
      {"lt: numeric prefix", " 3.5x", texts({"4"}), "lt", "double", true},
      {"lt: equal", "4", texts({"4"}), "lt", "double", false},
      {"le: equal", "4", texts({"4.0"}), "le", "double", true},
      {"le: 'on' reads 0.0", "on", texts({"-1"}), "le", "logical", false},
      {"unknown operator", "a", texts({"a"}), "ne", "string", false},
      {"reserved Selected", "Selected", texts({"Selected"}), "or", "string", false},
      {"reserved Unselected, any operator", "Unselected", texts({"Unselected"}), "eq", "string",
       false},
      {"reserved word only first", "Selected", texts({"x", "Selected"}), "or", "string", true},
      {"no values", "a", {}, "or", "string", false},
      {"empty operator", "a", texts({"a"}), "", "string", false},
      {"empty data type", "a", texts({"a"}), "or", "", false},
      {"struct: named fields equal", Map{{"a", "1"}, {"b", "2"}}, one(Map{{"a", "1"}}), "or",
       "struct", true},
      {"struct: a field differs", Map{{"a", "1"}}, one(Map{{"a", "2"}}), "or", "struct", false},
      {"struct: an item without field", Map{{"a", "1"}}, one(Map{}), "or", "struct", false},
      {"struct: a field the value lacks", Map{{"a", "1"}}, one(Map{{"c", "1"}}), "or", "struct",
       false},
      {"struct: second item",
       Map{{"a", "1"}},
       {ConstraintValue(Map{{"a", "0"}}), ConstraintValue(Map{{"a", "1"}})},
       "or",
       "struct",
       true},
      {"struct: only 'or'", Map{{"a", "1"}}, one(Map{{"a", "1"}}), "eq", "struct", false},
      {"array: ascending subset", Vector{"a", "b", "c"}, one(Vector{"a", "c"}), "or", "array",
       true},
      {"array: not ascending", Vector{"a", "b", "c"}, one(Vector{"c", "a"}), "or", "array", false},
      {"array: an element missing", Vector{"a", "b"}, one(Vector{"a", "d"}), "or", "array", false},
      {"array: empty item", Vector{"a"}, one(Vector{}), "or", "array", true},
      {"array: only 'or'", Vector{"a"}, one(Vector{"a"}), "range", "array", false},
      {"nxarray never matches", "a", texts({"a"}), "or", "nxarray", false},
  };
  for (const MatchCase& c : cases) {
    EXPECT_EQ(matchesConstraintValues(c.current, c.values, c.op, c.dataType), c.matches) << c.what;
  }
}

// A data type that disagrees with the items or the value, and the regular expression library's
// errors, leave the comparison: they end the run of the check.
TEST(MatchesConstraintValues, MismatchesAndBadExpressionsThrow) {
  const std::string pathological = std::string(20000, 'a') + "b";
  struct ThrowCase {
    const char* what;
    ParameterValue current;
    std::vector<ConstraintValue> values;
    std::string op;
    std::string dataType;
  };
  const ThrowCase badCast[] = {
      {"a text item under struct", Map{{"a", "1"}}, texts({"x"}), "or", "struct"},
      {"a map item under a text type", "x", one(Map{{"a", "1"}}), "or", "string"},
      {"a vector item under array after a miss",
       Vector{"a"},
       {ConstraintValue(Vector{"z"}), ConstraintValue("a")},
       "or",
       "array"},
  };
  for (const ThrowCase& c : badCast) {
    EXPECT_THROW(matchesConstraintValues(c.current, c.values, c.op, c.dataType),
                 boost::bad_any_cast)
        << c.what;
  }
  const ThrowCase badGet[] = {
      {"a map value under a text type", Map{{"a", "1"}}, texts({"x"}), "or", "string"},
      {"a text value under struct", "x", one(Map{{"a", "1"}}), "or", "struct"},
      {"a text value under array", "x", {ConstraintValue(Vector{"a"})}, "or", "array"},
  };
  for (const ThrowCase& c : badGet) {
    EXPECT_THROW(matchesConstraintValues(c.current, c.values, c.op, c.dataType),
                 std::bad_variant_access)
        << c.what;
  }
  EXPECT_THROW(matchesConstraintValues("a", texts({"(a"}), "regex", "string"), boost::regex_error);

  const auto start = std::chrono::steady_clock::now();
  try {
    matchesConstraintValues(pathological, texts({"(a+)+$"}), "regex", "string");
    ADD_FAILURE() << "a pathological expression matched without complaint";
  } catch (const boost::regex_error&) {
    ADD_FAILURE() << "the expression is well formed";
  } catch (const std::runtime_error& e) {
    EXPECT_NE(std::string(e.what()).find("complexity"), std::string::npos) << e.what();
  }
  // A bound on the matcher, not on the clock: this only guards against a hang.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

}  // namespace
}  // namespace bkedittimecheck::testing
