#include "src/constraints/parameterconstraintnode.h"

namespace bkedittimecheck {

ConstraintValue constraintValueFromNode(const boost::property_tree::ptree& value,
                                        const std::string& dataType) {
  if (dataType == "struct") {
    ConstraintValue::Map fields;
    for (const auto& [name, child] : value) fields[name] = child.data();
    return ConstraintValue(std::move(fields));
  }
  if (dataType == "array") {
    ConstraintValue::Vector elements;
    for (const auto& [name, child] : value) {
      if (name == "element") elements.push_back(child.data());
    }
    return ConstraintValue(std::move(elements));
  }
  return ConstraintValue(value.data());
}

}  // namespace bkedittimecheck
