#include "src/constraints/constraintvalue.h"

#include <algorithm>
#include <cstdlib>
#include <variant>

#include "src/constraints/boundedregex.h"

namespace bkedittimecheck {

namespace {

// Numbers are read as the C library's atof reads them: leading blanks, the longest numeric
// prefix, 0.0 when there is none. No units, no evaluation, no words for true or false.
double number(const std::string& text) { return std::atof(text.c_str()); }

bool matchesText(const std::string& current, const std::vector<std::string>& values,
                 const std::string& op) {
  if (values[0] == "Selected" || values[0] == "Unselected") return false;
  if (op == "or") {
    return std::any_of(values.begin(), values.end(),
                       [&](const std::string& v) { return !v.empty() && v == current; });
  }
  if (op == "eq") return current == values[0];
  if (op == "regex") return regexMatchesWhole(current, values[0]);
  const double t = number(current);
  if (op == "range") {
    if (values.size() < 2) return false;
    const double a = number(values[0]);
    const double b = number(values[1]);
    return std::min(a, b) <= t && t < std::max(a, b);
  }
  const double v = number(values[0]);
  if (op == "gt") return t > v;
  if (op == "ge") return t >= v;
  if (op == "lt") return t < v;
  if (op == "le") return t <= v;
  return false;
}

bool structItemMatches(const ConstraintValue::Map& item, const ConstraintValue::Map& current) {
  if (item.empty()) return false;
  return std::all_of(item.begin(), item.end(), [&](const auto& field) {
    auto found = current.find(field.first);
    return found != current.end() && found->second == field.second;
  });
}

// The walk of a set difference of sorted ranges, on the vectors as they stand: the item matches
// when none of its elements is left over. Neither side is sorted first, so the subset test holds
// only for elements given in ascending order.
bool arrayItemMatches(const ConstraintValue::Vector& item, const ConstraintValue::Vector& current) {
  std::size_t i = 0;
  std::size_t k = 0;
  while (i < item.size() && k < current.size()) {
    if (item[i] < current[k]) return false;
    if (current[k] < item[i]) {
      ++k;
    } else {
      ++i;
      ++k;
    }
  }
  return i == item.size();
}

}  // namespace

bool ConstraintValue::operator==(const ConstraintValue& other) const {
  if (holdsString() && other.holdsString()) return asString() == other.asString();
  if (holdsMap() && other.holdsMap()) return asMap() == other.asMap();
  if (holdsVector() && other.holdsVector()) return asVector() == other.asVector();
  return false;
}

bool matchesConstraintValues(ParameterValue current, std::vector<ConstraintValue> values,
                             std::string valueOperator, std::string dataType) {
  if (values.empty() || valueOperator.empty() || dataType.empty()) return false;
  if (dataType == "struct" || dataType == "array" || dataType == "nxarray") {
    if (valueOperator != "or") return false;
    if (dataType == "struct") {
      const auto& fields = std::get<ConstraintValue::Map>(current);
      return std::any_of(values.begin(), values.end(), [&](const ConstraintValue& v) {
        return structItemMatches(v.asMap(), fields);
      });
    }
    if (dataType == "array") {
      const auto& elements = std::get<ConstraintValue::Vector>(current);
      return std::any_of(values.begin(), values.end(), [&](const ConstraintValue& v) {
        return arrayItemMatches(v.asVector(), elements);
      });
    }
    return false;
  }
  std::vector<std::string> texts;
  texts.reserve(values.size());
  for (const ConstraintValue& v : values) texts.push_back(v.asString());
  return matchesText(std::get<std::string>(current), texts, valueOperator);
}

}  // namespace bkedittimecheck
