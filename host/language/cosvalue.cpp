#include "host/language/cosvalue.h"

#include <cmath>
#include <stdexcept>

#include "host/language/cospackage.h"

namespace ncos::factory {

namespace {
[[noreturn]] void wrongClass(const nxArray& value, const char* wanted) {
  throw std::invalid_argument(std::string("expected ") + wanted + ", got a " +
                              std::to_string(value.rows()) + "x" + std::to_string(value.cols()) +
                              " " + value.className() + " array");
}
}  // namespace

std::string extractString(const nxArray& value) {
  if (value.isChar()) return value.charData();
  if (value.isEmpty()) return {};
  wrongClass(value, "a character array");
}

std::u16string extractWideString(const nxArray& value) { return toUtf16(extractString(value)); }

bool extractLogical(const nxArray& value) {
  if (value.isScalar() && value.classID() == nxClassID::Logical) return value.getLogical(0);
  if (value.isScalar() && value.classID() == nxClassID::Double) return value.getDouble(0) != 0.0;
  wrongClass(value, "a logical scalar");
}

double extractDouble(const nxArray& value) {
  if (value.isScalar()) {
    switch (value.classID()) {
      case nxClassID::Double: return value.getDouble(0);
      case nxClassID::Logical: return value.getLogical(0) ? 1.0 : 0.0;
      case nxClassID::UInt32: return value.getUInt32(0);
      default: break;
    }
  }
  wrongClass(value, "a double scalar");
}

std::uint32_t extractUInt32(const nxArray& value) {
  if (value.isScalar() && value.classID() == nxClassID::UInt32) return value.getUInt32(0);
  if (value.isScalar() && value.classID() == nxClassID::Double) {
    double d = value.getDouble(0);
    if (d >= 0 && d <= 4294967295.0 && std::floor(d) == d) return static_cast<std::uint32_t>(d);
  }
  wrongClass(value, "a uint32 scalar");
}

std::vector<std::string> extractStringVector(const nxArray& value) {
  if (value.isChar()) return {value.charData()};
  if (value.isCell()) {
    std::vector<std::string> out;
    for (std::size_t i = 0; i < value.numel(); ++i) out.push_back(extractString(value.getCell(i)));
    return out;
  }
  if (value.isEmpty()) return {};
  wrongClass(value, "a cell array of strings");
}

Wrappable* extractObject(const nxArray& value, const std::string& className) {
  if (value.isEmpty()) return nullptr;
  if (!value.isObject()) wrongClass(value, className.c_str());
  const COSInterfacePtr& object = value.getObject(0);
  if (!object->isa(COSNameID(className))) wrongClass(value, className.c_str());
  return object->native();
}

std::vector<Wrappable*> extractObjects(const nxArray& value, const std::string& className) {
  std::vector<Wrappable*> out;
  if (value.isEmpty()) return out;
  if (!value.isObject()) wrongClass(value, className.c_str());
  for (std::size_t i = 0; i < value.numel(); ++i) {
    const COSInterfacePtr& object = value.getObject(i);
    if (!object->isa(COSNameID(className))) wrongClass(value, className.c_str());
    out.push_back(object->native());
  }
  return out;
}

nxArray objectToArray(Wrappable* native, const std::string& className) {
  if (!native) return nxArray::objectMatrix(0, 0, {});
  auto cls = COSPackage::findClass(className);
  if (!cls) throw std::invalid_argument("no registered class " + className);
  return nxArray::objectScalar(COSInterface::makeBorrowed(cls, native));
}

nxArray stringsToArray(const std::vector<std::string>& values) {
  std::vector<nxArray> cells;
  for (const auto& v : values) cells.push_back(nxArray::charRow(std::string_view(v)));
  return nxArray::cellRow(std::move(cells));
}

nxArray stringsToArray(const std::vector<std::u16string>& values) {
  std::vector<nxArray> cells;
  for (const auto& v : values) cells.push_back(nxArray::charRow(std::u16string_view(v)));
  return nxArray::cellRow(std::move(cells));
}

}  // namespace ncos::factory
