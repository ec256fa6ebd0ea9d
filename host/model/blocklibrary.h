#pragma once

#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

/// One record of a record-list parameter (field name -> text), such as a declared state datum.
using BlockRecord = std::map<std::string, std::string>;
/// A list of records.
using BlockRecordList = std::vector<BlockRecord>;
/// The value of a dialog parameter: text, or a list of records.
using BlockParamValue = std::variant<std::string, BlockRecordList>;

/// The descriptor of one dialog parameter of a block type.
struct BKPrmDesc {
  std::string name;                  ///< parameter name, case-sensitive
  int index = 0;                     ///< position in the type's dialog, from 0
  int typeCode = 1;                  ///< 1, 2, 5, 6, 11, 12, 14 read as text; others structured
  std::string defaultValue;          ///< value of a new block
  BlockParamValue initial;          ///< what a block reads until the parameter is set
  std::vector<std::string> options;  ///< allowed values of an enumeration (empty: free text)
  bool visible = true;               ///< shown in the block's dialog
};

/// Parameter type codes of the block library.
enum BKPrmTypeCode : int {
  BKPRM_STRING = 1,       ///< free text
  BKPRM_ENUM = 2,         ///< one of `options`
  BKPRM_CHECKBOX = 5,     ///< "on" or "off"
  BKPRM_EXPRESSION = 6,   ///< a numeric expression, kept as text
  BKPRM_PATH = 11,        ///< a block path
  BKPRM_DATATYPE = 12,    ///< a data type name
  BKPRM_IDENTIFIER = 14,  ///< a name such as a tag or a data store
  BKPRM_RECORDS = 20,     ///< a list of records (name -> text), such as declared state data
};

/// One block type of the library: what the host knows of every block of that type.
struct BlockTypeInfo {
  std::string name;                  ///< type name, e.g. "Gain"
  int code = 0;                      ///< the host's numeric type code
  bool hasSystem = false;            ///< blocks of this type contain a system level
  bool isChart = false;              ///< blocks of this type are charts
  std::vector<BKPrmDesc> params;     ///< dialog parameters in dialog order
  std::map<int, int> capabilities;   ///< capability number -> support value (absent: 1)
  std::map<std::string, std::string> footnotes;  ///< footnote kind -> comma-separated tags

  /// The descriptor named `name`, or null.
  const BKPrmDesc* findParam(const std::string& paramName) const;
  /// The support value of capability `capability`; 1 when the library gives none.
  int capability(int capabilityNumber) const;
  /// The footnote tags of kind `kind` ("codegen", "production"); empty when none.
  std::string footnote(const std::string& kind) const;
};

/// The library of built-in block types, read from an XML data file (see docs/model-format.md).
///
/// Thread contract: `instance` loads the installed library on first use; after that the library
/// is read-only and any thread may read it. `load` replaces nothing already handed out: it is
/// meant for start-up and tests, on the main thread, before any diagram exists.
class BlockLibrary {
 public:
  BlockLibrary() = default;
  BlockLibrary(const BlockLibrary&) = delete;
  BlockLibrary& operator=(const BlockLibrary&) = delete;

  /// The process-wide library. On first use it reads `defaultPath()`; throws
  /// std::runtime_error naming the file when that file is missing or malformed.
  static BlockLibrary& instance();

  /// The installed library file: `$BLOCKARA_BLOCKLIBRARY` if set, else "blocklibrary.xml" under
  /// the installation root (`svNumeriaRoot`) when it is there, else the build's resources
  /// folder's.
  static std::string defaultPath();

  /// Reads the library from `path`, replacing the current types. Throws std::runtime_error
  /// whose message names the file, the line where known and the problem; on failure the
  /// library keeps what it had.
  void load(const std::string& path);

  /// The same as `load` from XML text; `origin` names the source in error messages.
  void loadFromString(const std::string& xml, const std::string& origin);

  /// The type named `name` ("Gain") or by library path ("built-in/Gain"); null when unknown.
  const BlockTypeInfo* find(const std::string& name) const;

  /// The type with code `code`; null when unknown.
  const BlockTypeInfo* findByCode(int code) const;

  /// All type names, sorted.
  std::vector<std::string> typeNames() const;

 private:
  // Types are held by shared pointer: blocks keep raw pointers to them, and a reload must not
  // free a type that a live block still points to.
  std::map<std::string, std::shared_ptr<const BlockTypeInfo>> types;
  std::vector<std::shared_ptr<const BlockTypeInfo>> retired;  // types replaced by a reload
};
