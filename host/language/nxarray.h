#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ncos {
class COSInterface;
/// A host-language object: the class it belongs to and the native object behind it.
using COSInterfacePtr = std::shared_ptr<COSInterface>;
}  // namespace ncos

/// The classes of host-language arrays. The numbers are the host's array class codes.
enum class nxClassID : int {
  Cell = 1,
  Struct = 2,
  Logical = 3,
  Char = 4,
  Double = 6,
  UInt32 = 13,
  Object = 17,
};

/// The class name of a class code: "cell", "struct", "logical", "char", "double", "uint32",
/// "object". Any thread.
const char* nxClassName(nxClassID id);

/// A host-language value: a two-dimensional array of one class, stored column-major.
///
/// Rows and columns are kept apart: a 1xN row and an Nx1 column are different values. Character
/// arrays hold UTF-8 bytes, one byte an element. Struct arrays hold an ordered list of field names
/// and one value per field and element. Object arrays hold shared host-language objects.
/// A value type: copies are deep for the arrays, shallow for the objects they hold. Any thread may
/// use its own copies; objects inside may only be used on the main thread.
/// Wrong-class access throws std::invalid_argument; a bad index throws std::out_of_range.
class nxArray {
 public:
  /// The empty double array, 0x0.
  nxArray();

  /// Constructors by class. `values` are column-major and must hold rows*cols elements
  /// (std::invalid_argument otherwise).
  static nxArray doubleScalar(double value);
  static nxArray doubleMatrix(std::size_t rows, std::size_t cols, std::vector<double> values);
  static nxArray logicalScalar(bool value);
  static nxArray logicalMatrix(std::size_t rows, std::size_t cols, std::vector<bool> values);
  static nxArray uint32Scalar(std::uint32_t value);
  static nxArray uint32Matrix(std::size_t rows, std::size_t cols,
                              std::vector<std::uint32_t> values);
  /// A 1xN character row of UTF-8 bytes.
  static nxArray charRow(std::string_view utf8);
  /// A 1xN character row from a wide (UTF-16) string, stored as UTF-8.
  static nxArray charRow(std::u16string_view utf16);
  static nxArray charMatrix(std::size_t rows, std::size_t cols, std::string bytes);
  /// A cell array of empty double arrays.
  static nxArray cellMatrix(std::size_t rows, std::size_t cols);
  static nxArray cellRow(std::vector<nxArray> cells);
  static nxArray cellColumn(std::vector<nxArray> cells);
  /// A struct array whose fields all hold empty double arrays.
  static nxArray structMatrix(std::size_t rows, std::size_t cols,
                             std::vector<std::string> fieldNames);
  static nxArray objectScalar(ncos::COSInterfacePtr object);
  static nxArray objectMatrix(std::size_t rows, std::size_t cols,
                              std::vector<ncos::COSInterfacePtr> objects);

  nxClassID classID() const { return classId; }
  /// "double", "char", ... ; for an object array with elements, the full class name of the first.
  std::string className() const;
  std::size_t rows() const { return nRows; }
  std::size_t cols() const { return nCols; }
  std::size_t numel() const { return nRows * nCols; }
  /// Always 2: arrays here have two dimensions.
  std::size_t numberOfDimensions() const { return 2; }
  bool isEmpty() const { return numel() == 0; }
  bool isScalar() const { return numel() == 1; }
  bool isChar() const { return classId == nxClassID::Char; }
  bool isCell() const { return classId == nxClassID::Cell; }
  bool isStruct() const { return classId == nxClassID::Struct; }
  bool isObject() const { return classId == nxClassID::Object; }

  double getDouble(std::size_t index) const;
  void setDouble(std::size_t index, double value);
  bool getLogical(std::size_t index) const;
  /// All elements of a double or logical array at once; throws std::invalid_argument for
  /// another class.
  const std::vector<double>& doubleValues() const;
  const std::vector<bool>& logicalValues() const;
  std::uint32_t getUInt32(std::size_t index) const;
  /// The character bytes, column-major.
  const std::string& charData() const;
  /// The characters of a char array as UTF-8 (column-major for a matrix).
  std::string toUtf8String() const;
  /// The characters of a char array as UTF-16.
  std::u16string toUtf16String() const;
  const nxArray& getCell(std::size_t index) const;
  void setCell(std::size_t index, nxArray value);
  const std::vector<std::string>& fieldNames() const;
  /// The value of field `name` of element `index`, or null when there is no such field.
  const nxArray* getField(std::size_t index, std::string_view name) const;
  /// Sets a field, adding it (empty in every other element) when it is new.
  void setField(std::size_t index, std::string_view name, nxArray value);
  const ncos::COSInterfacePtr& getObject(std::size_t index) const;

  /// Deep equality: class, shape, fields and elements; objects compare by identity of the
  /// native object.
  bool operator==(const nxArray& other) const;

 private:
  void requireClass(nxClassID wanted, const char* operation) const;
  void checkIndex(std::size_t index) const;

  nxClassID classId = nxClassID::Double;
  std::size_t nRows = 0;
  std::size_t nCols = 0;
  std::vector<double> doubles;
  std::vector<bool> logicals;
  std::vector<std::uint32_t> uint32s;
  std::string chars;
  std::vector<nxArray> cells;  // cell elements, or struct values (element-major, then field)
  std::vector<std::string> fields;
  std::vector<ncos::COSInterfacePtr> objects;
};

/// The object at `index` of an object array. Throws std::invalid_argument for another class,
/// std::out_of_range for a bad index. Main thread.
ncos::COSInterfacePtr omGetArrayElement(const nxArray& array, std::size_t index);

/// Reads property `name` of the first object of an object array, or field `name` of the first
/// element of a struct array. Throws when there is no such property or field (message-ID
/// "blockara:ncos:UnknownMember"), or for a dead object. Main thread.
nxArray omGetProperty(const nxArray& array, const std::string& name);

/// A shared, read-only handle to a host-language value that native code keeps uninterpreted.
/// An empty proxy holds no array. Any thread (the array inside is immutable).
class nxArrayProxy {
 public:
  nxArrayProxy() = default;
  explicit nxArrayProxy(nxArray value);
  /// True when the proxy holds no array.
  bool isNull() const { return !value; }
  /// The array; an empty proxy gives the empty double array.
  const nxArray& array() const;
  const nxArray* operator->() const { return &array(); }

 private:
  std::shared_ptr<const nxArray> value;
};

/// UTF-16 to UTF-8 and back by the host's one codec (`i18n::to_string`, `i18n::to_u16string`);
/// invalid sequences become U+FFFD. Any thread.
std::string toUtf8(std::u16string_view text);
std::u16string toUtf16(std::string_view text);
