// The comparison of parameter constraints: every value operator and data type, the reserved
// words, and the exceptions that end a check's run.
#include "src/constraints/constraintvalue.h"
#include "src/constraints/boundedregex.h"

#include <gtest/gtest.h>

#include <boost/any.hpp>
#include <boost/regex.hpp>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace bkedittimecheck::testing {
namespace {

using Map = ConstraintValue::Map;
using Vector = ConstraintValue::Vector;

// The items of a constraint, each made from text, fields or elements.
template <class... T>
std::vector<ConstraintValue> items(T... values) {
  return {ConstraintValue(std::move(values))...};
}

const std::string yes = "match", no = "no match";

struct MatchCase {
  const char* what;
  ParameterValue current;
  std::vector<ConstraintValue> values;
  std::string op, dataType;
  std::string outcome;  // yes, no, or the exception that ends the check's run
};

std::string outcome(const MatchCase& c) {
  try {
    return matchesConstraintValues(c.current, c.values, c.op, c.dataType) ? yes : no;
  } catch (const boost::bad_any_cast&) {
    return "bad_any_cast";
  } catch (const std::bad_variant_access&) {
    return "bad_variant_access";
  } catch (const boost::regex_error&) {
    return "regex_error";
  } catch (const std::runtime_error& e) {
    return std::string(e.what()).find("complexity") != std::string::npos ? "complexity" : e.what();
  }
}

TEST(MatchesConstraintValues, EveryOperatorDataTypeAndFailure) {
  const MatchCase cases[] = {
      {"or: none", "c", items("a", "b"), "or", "string", no},
      {"or: an empty element never matches", "", items("a", ""), "or", "string", no},
      {"eq: bytes", "1", items("1"), "eq", "double", yes},
      {"eq: no number reading", "1", items("1.0"), "eq", "double", no},
      {"regex: the whole string", "abc", items("a.c"), "regex", "string", yes},
      {"regex: a middle part is no match", "abc", items("b"), "regex", "string", no},
      {"regex: case sensitive", "ABC", items("a.c"), "regex", "string", no},
      {"range: ends in either order, lower included", "0", items("10", "0"), "range", "double",
       yes},
      {"range: upper excluded", "10", items("10", "0"), "range", "double", no},
      {"range: one value answers false", "0", items("10"), "range", "double", no},
      {"gt: a word reads 0.0", "1", items("abc"), "gt", "double", yes},
      {"gt: equal", "2", items("2"), "gt", "double", no},
      {"ge: equal", "2", items("2"), "ge", "double", yes},
      {"lt: numeric prefix", " 3.5x", items("4"), "lt", "double", yes},
      {"lt: equal", "4", items("4"), "lt", "double", no},
      {"le: equal", "4", items("4.0"), "le", "double", yes},
      {"le: 'on' reads 0.0", "on", items("-1"), "le", "logical", no},
      {"unknown operator", "a", items("a"), "ne", "string", no},
      {"reserved Selected", "Selected", items("Selected"), "or", "string", no},
      {"reserved Unselected, any operator", "Unselected", items("Unselected"), "eq", "string", no},
      {"reserved word only first", "Selected", items("x", "Selected"), "or", "string", yes},
      {"no values", "a", {}, "or", "string", no},
      {"empty operator", "a", items("a"), "", "string", no},
      {"empty data type", "a", items("a"), "or", "", no},
      {"struct: named fields equal", Map{{"a", "1"}, {"b", "2"}}, items(Map{{"a", "1"}}), "or",
       "struct", yes},
      {"struct: a field differs", Map{{"a", "1"}}, items(Map{{"a", "2"}}), "or", "struct", no},
      {"struct: an item without field", Map{{"a", "1"}}, items(Map{}), "or", "struct", no},
      {"struct: a field the value lacks", Map{{"a", "1"}}, items(Map{{"c", "1"}}), "or", "struct",
       no},
      {"struct: second item", Map{{"a", "1"}}, items(Map{{"a", "0"}}, Map{{"a", "1"}}), "or",
       "struct", yes},
      {"struct: only 'or'", Map{{"a", "1"}}, items(Map{{"a", "1"}}), "eq", "struct", no},
      {"array: ascending subset", Vector{"a", "b", "c"}, items(Vector{"a", "c"}), "or", "array",
       yes},
      {"array: not ascending", Vector{"a", "b", "c"}, items(Vector{"c", "a"}), "or", "array", no},
      {"array: an element missing", Vector{"a", "b"}, items(Vector{"a", "d"}), "or", "array", no},
      {"array: empty item", Vector{"a"}, items(Vector{}), "or", "array", yes},
      {"array: only 'or'", Vector{"a"}, items(Vector{"a"}), "range", "array", no},
      {"nxarray never matches", "a", items("a"), "or", "nxarray", no},
      // A data type that disagrees with the items or the value, and the regular expression
      // library's errors, leave the comparison: they end the run of the check.
      {"a text item under struct", Map{{"a", "1"}}, items("x"), "or", "struct", "bad_any_cast"},
      {"a map item under a text type", "x", items(Map{{"a", "1"}}), "or", "string", "bad_any_cast"},
      {"a vector item under array after a miss", Vector{"a"}, items(Vector{"z"}, "a"), "or",
       "array", "bad_any_cast"},
      {"a map value under a text type", Map{{"a", "1"}}, items("x"), "or", "string",
       "bad_variant_access"},
      {"a text value under struct", "x", items(Map{{"a", "1"}}), "or", "struct",
       "bad_variant_access"},
      {"a text value under array", "x", items(Vector{"a"}), "or", "array", "bad_variant_access"},
      {"a malformed expression", "a", items("(a"), "regex", "string", "regex_error"},
      {"a pathological expression", std::string(20000, 'a') + "b", items("(a+)+$"), "regex",
       "string", "complexity"},
      {"an expression the library's parser loops on", "ab", items("a?+(?#)b"), "regex", "string",
       "regex_error"},
  };
  for (const MatchCase& c : cases) EXPECT_EQ(outcome(c), c.outcome) << c.what;
}

// The regex library's parser never returns on a possessive repeat followed by a comment group and
// more text; such patterns are refused before it sees them, and the same text where the "+" or the
// group is quoted, escaped or in a class compiles as before.
TEST(ParserLoopTest, RefusesOnlyAPossessiveRepeatBeforeAComment) {
  for (const char* refused : {"a++(?#)b", "a*+(?#x)b", "a?+(?#)`", "a{2}+(?#)b", "(a)?+ (?#)b",
                              "[[:alpha:]]++(?#)b"}) {
    EXPECT_THROW(refuseParserLoop(refused), boost::regex_error) << refused;
  }
  for (const char* kept : {"\\++(?#)b", "[a++(?#)]b", "\\Qa++(?#)\\Eb", "a++(a)(?#)b", "a+(?#)b"}) {
    EXPECT_NO_THROW(refuseParserLoop(kept)) << kept;
    EXPECT_NO_THROW(boost::regex{kept}) << kept;
  }
}

}  // namespace
}  // namespace bkedittimecheck::testing
