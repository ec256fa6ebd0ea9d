#include "src/constraints/constraintvaluearray.h"

#include <algorithm>
#include <charconv>
#include <variant>

#include "host/language/cosclassinfo.h"
#include "host/language/cospackage.h"
#include "src/constraints/constrainterrors.h"

namespace bkedittimecheck {

namespace {

// The properties of an object's class and its superclasses, in declaration order.
void collectPropertyNames(const ncos::factory::NcosFactoryClassInfo& cls,
                          std::vector<std::string>& names) {
  for (const auto& property : cls.properties()) names.emplace_back(property->getName());
  for (const auto& super : cls.superclasses()) {
    if (auto superClass = ncos::COSPackage::findClass(super.name.str())) {
      collectPropertyNames(*superClass, names);
    }
  }
}

std::string numberText(double value) {
  char buffer[64];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, result.ptr);
}

}  // namespace

std::string textOfArray(const nxArray& value) {
  if (value.isChar()) return value.toUtf8String();
  if (!value.isScalar()) return {};
  switch (value.classID()) {
    case nxClassID::Double:
      return numberText(value.getDouble(0));
    case nxClassID::UInt32:
      return std::to_string(value.getUInt32(0));
    case nxClassID::Logical:
      return value.getLogical(0) ? "1" : "0";
    default:
      return {};
  }
}

nxArray blockParamValueToArray(const BlockParamValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return nxArray::charRow(*text);
  const BlockRecordList& records = std::get<BlockRecordList>(value);
  std::vector<std::string> names;
  for (const BlockRecord& record : records) {
    for (const auto& field : record) {
      if (std::find(names.begin(), names.end(), field.first) == names.end()) {
        names.push_back(field.first);
      }
    }
  }
  nxArray out = nxArray::structMatrix(records.empty() ? 0 : 1, records.size(), names);
  for (std::size_t i = 0; i < records.size(); ++i) {
    for (const std::string& name : names) {
      auto found = records[i].find(name);
      out.setField(i, name, nxArray::charRow(found == records[i].end() ? "" : found->second));
    }
  }
  return out;
}

ConstraintValue::Map structToMap(const nxArray& value) {
  ConstraintValue::Map fields;
  if (value.isEmpty()) return fields;
  if (value.isStruct()) {
    for (const std::string& name : value.fieldNames()) {
      fields[name] = textOfArray(*value.getField(0, name));
    }
  } else if (value.isObject()) {
    std::vector<std::string> names;
    collectPropertyNames(value.getObject(0)->classInfo(), names);
    for (const std::string& name : names) fields[name] = textOfArray(omGetProperty(value, name));
  }
  return fields;
}

ConstraintValue::Vector cellToVector(const nxArray& value) {
  ConstraintValue::Vector elements;
  if (!value.isCell()) return elements;
  for (std::size_t i = 0; i < value.numel(); ++i) elements.push_back(textOfArray(value.getCell(i)));
  return elements;
}

void checkOperatorAgainstCount(const std::string& valueOperator, std::size_t count) {
  if (count == 0) return;
  if (valueOperator == "range") {
    if (count != 2) throw UnsupportedNumberOfConstraintValues(valueOperator, "2");
    return;
  }
  if (valueOperator == "eq" || valueOperator == "gt" || valueOperator == "ge" ||
      valueOperator == "lt" || valueOperator == "le" || valueOperator == "regex") {
    if (count >= 2) throw UnsupportedNumberOfConstraintValues(valueOperator, "1");
    return;
  }
  if (valueOperator == "or") return;
  throw UnsupportedValueOperator(valueOperator);
}

std::size_t cellVectorLength(const nxArray& value, bool& isRow) {
  if (!value.isCell()) throw InvalidParameterValueInput();
  if (value.numberOfDimensions() != 2 || (value.rows() != 1 && value.cols() != 1)) {
    throw InvalidParameterValueInput();
  }
  isRow = value.rows() == 1;
  return isRow ? value.cols() : value.rows();
}

std::optional<ConstraintValue> constraintValueFromArray(const nxArray& value,
                                                        const std::string& dataType) {
  if (dataType == "struct") {
    if (!value.isStruct() && !value.isObject()) throw UnsupportedParamValue();
    return ConstraintValue(structToMap(value));
  }
  if (dataType == "array") {
    if (!value.isCell()) throw UnsupportedParamValue();
    return ConstraintValue(cellToVector(value));
  }
  if (dataType == "nxarray") return std::nullopt;
  if (!value.isChar()) throw UnsupportedParamValue();
  return ConstraintValue(value.toUtf8String());
}

nxArrayProxy constraintValuesToArray(const std::vector<ConstraintValue>& values,
                                     const std::string& dataType, bool isRow) {
  if (dataType == "nxarray") return nxArrayProxy();
  std::vector<nxArray> cells;
  cells.reserve(values.size());
  for (const ConstraintValue& item : values) {
    if (dataType == "struct") {
      const ConstraintValue::Map& fields = item.asMap();
      std::vector<std::string> names;
      for (const auto& field : fields) names.push_back(field.first);
      nxArray one = nxArray::structMatrix(1, 1, names);
      for (const auto& [name, text] : fields) one.setField(0, name, nxArray::charRow(text));
      cells.push_back(std::move(one));
    } else if (dataType == "array") {
      std::vector<nxArray> elements;
      for (const std::string& text : item.asVector()) elements.push_back(nxArray::charRow(text));
      cells.push_back(nxArray::cellRow(std::move(elements)));
    } else {
      cells.push_back(nxArray::charRow(item.asString()));
    }
  }
  return nxArrayProxy(isRow ? nxArray::cellRow(std::move(cells))
                            : nxArray::cellColumn(std::move(cells)));
}

}  // namespace bkedittimecheck
