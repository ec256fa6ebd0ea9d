#include "src/constraints/parameterconstraintnode.h"

#include "src/constraints/parametervalueconstraint.h"

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

void scanParameterConstraintNode(ParameterValueConstraint& constraint,
                                 const boost::property_tree::ptree& tree) {
  for (const auto& [name, child] : tree) {
    if (name == "parameter") {
      constraint.setParameterName(child.data());
      const std::string type = child.get<std::string>("<xmlattr>.type", "");
      constraint.setParameterDataType(type.empty() ? "string" : type);
    } else if (name == "value") {
      constraint.addToConstraintValueVector(
          constraintValueFromNode(child, constraint.getParameterDataType()));
    } else if (name == "operator") {
      constraint.setValueOperator(child.data().empty() ? "or" : child.data());
    } else if (name == "fixvalue") {
      constraint.setFixValue(child.data());
    } else if (name == "dependson") {
      constraint.addPreRequisiteConstraintID(child.data());
    }
  }
}

}  // namespace bkedittimecheck
