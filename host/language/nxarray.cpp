#include "host/language/nxarray.h"

#include <stdexcept>
#include <utility>

#include "host/language/cosinterface.h"
#include "host/model/bksvstring.h"

const char* nxClassName(nxClassID id) {
  switch (id) {
    case nxClassID::Cell: return "cell";
    case nxClassID::Struct: return "struct";
    case nxClassID::Logical: return "logical";
    case nxClassID::Char: return "char";
    case nxClassID::Double: return "double";
    case nxClassID::UInt32: return "uint32";
    case nxClassID::Object: return "object";
  }
  return "unknown";
}

namespace {

void checkCount(std::size_t rows, std::size_t cols, std::size_t count) {
  if (rows * cols != count) {
    throw std::invalid_argument("nxArray: " + std::to_string(rows) + "x" + std::to_string(cols) +
                                " needs " + std::to_string(rows * cols) + " elements, got " +
                                std::to_string(count));
  }
}

}  // namespace

nxArray::nxArray() = default;

nxArray nxArray::doubleScalar(double value) { return doubleMatrix(1, 1, {value}); }

nxArray nxArray::doubleMatrix(std::size_t rows, std::size_t cols, std::vector<double> values) {
  checkCount(rows, cols, values.size());
  nxArray a;
  a.nRows = rows;
  a.nCols = cols;
  a.doubles = std::move(values);
  return a;
}

nxArray nxArray::logicalScalar(bool value) { return logicalMatrix(1, 1, {value}); }

nxArray nxArray::logicalMatrix(std::size_t rows, std::size_t cols, std::vector<bool> values) {
  checkCount(rows, cols, values.size());
  nxArray a;
  a.classId = nxClassID::Logical;
  a.nRows = rows;
  a.nCols = cols;
  a.logicals = std::move(values);
  return a;
}

nxArray nxArray::uint32Scalar(std::uint32_t value) { return uint32Matrix(1, 1, {value}); }

nxArray nxArray::uint32Matrix(std::size_t rows, std::size_t cols,
                              std::vector<std::uint32_t> values) {
  checkCount(rows, cols, values.size());
  nxArray a;
  a.classId = nxClassID::UInt32;
  a.nRows = rows;
  a.nCols = cols;
  a.uint32s = std::move(values);
  return a;
}

nxArray nxArray::charRow(std::string_view utf8) {
  return charMatrix(1, utf8.size(), std::string(utf8));
}

nxArray nxArray::charRow(std::u16string_view utf16) { return charRow(toUtf8(utf16)); }

nxArray nxArray::charMatrix(std::size_t rows, std::size_t cols, std::string bytes) {
  checkCount(rows, cols, bytes.size());
  nxArray a;
  a.classId = nxClassID::Char;
  a.nRows = rows;
  a.nCols = cols;
  a.chars = std::move(bytes);
  return a;
}

nxArray nxArray::cellMatrix(std::size_t rows, std::size_t cols) {
  nxArray a;
  a.classId = nxClassID::Cell;
  a.nRows = rows;
  a.nCols = cols;
  a.cells.resize(rows * cols);
  return a;
}

nxArray nxArray::cellRow(std::vector<nxArray> values) {
  nxArray a = cellMatrix(0, 0);
  a.nRows = 1;
  a.nCols = values.size();
  a.cells = std::move(values);
  return a;
}

nxArray nxArray::cellColumn(std::vector<nxArray> values) {
  nxArray a = cellRow(std::move(values));
  std::swap(a.nRows, a.nCols);
  return a;
}

nxArray nxArray::structMatrix(std::size_t rows, std::size_t cols,
                              std::vector<std::string> fieldNames) {
  nxArray a;
  a.classId = nxClassID::Struct;
  a.nRows = rows;
  a.nCols = cols;
  a.fields = std::move(fieldNames);
  a.cells.resize(rows * cols * a.fields.size());
  return a;
}

nxArray nxArray::objectScalar(ncos::COSInterfacePtr object) {
  return objectMatrix(1, 1, {std::move(object)});
}

nxArray nxArray::objectMatrix(std::size_t rows, std::size_t cols,
                              std::vector<ncos::COSInterfacePtr> values) {
  checkCount(rows, cols, values.size());
  for (const auto& o : values) {
    if (!o) throw std::invalid_argument("nxArray: an object array cannot hold a null object");
  }
  nxArray a;
  a.classId = nxClassID::Object;
  a.nRows = rows;
  a.nCols = cols;
  a.objects = std::move(values);
  return a;
}

std::string nxArray::className() const {
  if (classId == nxClassID::Object && !objects.empty()) return objects.front()->className();
  return nxClassName(classId);
}

void nxArray::requireClass(nxClassID wanted, const char* operation) const {
  if (classId != wanted) {
    throw std::invalid_argument(std::string("nxArray: ") + operation + " needs a " +
                                nxClassName(wanted) + " array, not " + nxClassName(classId));
  }
}

void nxArray::checkIndex(std::size_t index) const {
  if (index >= numel()) {
    throw std::out_of_range("nxArray: index " + std::to_string(index) + " out of range for " +
                            std::to_string(nRows) + "x" + std::to_string(nCols));
  }
}

double nxArray::getDouble(std::size_t index) const {
  requireClass(nxClassID::Double, "getDouble");
  checkIndex(index);
  return doubles[index];
}

void nxArray::setDouble(std::size_t index, double value) {
  requireClass(nxClassID::Double, "setDouble");
  checkIndex(index);
  doubles[index] = value;
}

const std::vector<double>& nxArray::doubleValues() const {
  requireClass(nxClassID::Double, "doubleValues");
  return doubles;
}

const std::vector<bool>& nxArray::logicalValues() const {
  requireClass(nxClassID::Logical, "logicalValues");
  return logicals;
}

bool nxArray::getLogical(std::size_t index) const {
  requireClass(nxClassID::Logical, "getLogical");
  checkIndex(index);
  return logicals[index];
}

std::uint32_t nxArray::getUInt32(std::size_t index) const {
  requireClass(nxClassID::UInt32, "getUInt32");
  checkIndex(index);
  return uint32s[index];
}

const std::string& nxArray::charData() const {
  requireClass(nxClassID::Char, "charData");
  return chars;
}

std::string nxArray::toUtf8String() const { return charData(); }

std::u16string nxArray::toUtf16String() const { return toUtf16(charData()); }

const nxArray& nxArray::getCell(std::size_t index) const {
  requireClass(nxClassID::Cell, "getCell");
  checkIndex(index);
  return cells[index];
}

void nxArray::setCell(std::size_t index, nxArray value) {
  requireClass(nxClassID::Cell, "setCell");
  checkIndex(index);
  cells[index] = std::move(value);
}

const std::vector<std::string>& nxArray::fieldNames() const {
  requireClass(nxClassID::Struct, "fieldNames");
  return fields;
}

const nxArray* nxArray::getField(std::size_t index, std::string_view name) const {
  requireClass(nxClassID::Struct, "getField");
  checkIndex(index);
  for (std::size_t f = 0; f < fields.size(); ++f) {
    if (fields[f] == name) return &cells[index * fields.size() + f];
  }
  return nullptr;
}

void nxArray::setField(std::size_t index, std::string_view name, nxArray value) {
  requireClass(nxClassID::Struct, "setField");
  checkIndex(index);
  std::size_t f = 0;
  while (f < fields.size() && fields[f] != name) ++f;
  if (f == fields.size()) {
    // A new field: widen every element by one empty value.
    std::vector<nxArray> widened;
    widened.reserve(numel() * (fields.size() + 1));
    for (std::size_t e = 0; e < numel(); ++e) {
      for (std::size_t g = 0; g < fields.size(); ++g) {
        widened.push_back(std::move(cells[e * fields.size() + g]));
      }
      widened.emplace_back();
    }
    fields.emplace_back(name);
    cells = std::move(widened);
  }
  cells[index * fields.size() + f] = std::move(value);
}

const ncos::COSInterfacePtr& nxArray::getObject(std::size_t index) const {
  requireClass(nxClassID::Object, "getObject");
  checkIndex(index);
  return objects[index];
}

bool nxArray::operator==(const nxArray& other) const {
  if (classId != other.classId || nRows != other.nRows || nCols != other.nCols) return false;
  switch (classId) {
    case nxClassID::Double: return doubles == other.doubles;
    case nxClassID::Logical: return logicals == other.logicals;
    case nxClassID::UInt32: return uint32s == other.uint32s;
    case nxClassID::Char: return chars == other.chars;
    case nxClassID::Cell: return cells == other.cells;
    case nxClassID::Struct: return fields == other.fields && cells == other.cells;
    case nxClassID::Object:
      for (std::size_t i = 0; i < objects.size(); ++i) {
        if (objects[i]->native() != other.objects[i]->native() ||
            objects[i]->className() != other.objects[i]->className()) {
          return false;
        }
      }
      return true;
  }
  return false;
}

ncos::COSInterfacePtr omGetArrayElement(const nxArray& array, std::size_t index) {
  return array.getObject(index);
}

nxArrayProxy::nxArrayProxy(nxArray v) : value(std::make_shared<const nxArray>(std::move(v))) {}

const nxArray& nxArrayProxy::array() const {
  static const nxArray empty;
  return value ? *value : empty;
}

std::string toUtf8(std::u16string_view text) { return i18n::to_string(text); }

std::u16string toUtf16(std::string_view text) { return i18n::to_u16string(text); }
