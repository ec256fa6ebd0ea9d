#pragma once

#include <array>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "host/model/bksvstring.h"
#include "host/model/blocklibrary.h"

class bkGraph;
class BKRootBD;

/// A value given to a block's setter: text, a number, a switch, a number list (Position) or
/// a record list (StateData).
using BlockValue = std::variant<std::string, double, bool, std::vector<double>, BlockRecordList>;

/// A block's mask. A block has a mask when its type is not empty.
struct BKMask {
  bksvString type;             ///< the mask type
  std::string initialization;  ///< non-empty: the mask's first query holds
  int parameterCount = 0;      ///< the number of mask parameters
};

/// One block of a diagram.
///
/// Thread contract: main thread only; a snapshot is what other threads read. A block is owned by
/// the graph that contains it or, once deleted, by the undo history that can restore it; its
/// handle resolves through `Handle2Block` exactly as long as the object exists. Handles are never
/// reused in the life of the process.
class BKBlock {
 public:
  /// Makes a detached block of `type` with parameter defaults; the editing layer inserts it.
  BKBlock(const BlockTypeInfo& type, bksvString name);
  virtual ~BKBlock();
  BKBlock(const BKBlock&) = delete;
  BKBlock& operator=(const BKBlock&) = delete;

  /// The live block with handle `handle`, or null once that block no longer exists.
  static BKBlock* Handle2Block(double handle);

  /// The block's handle, its one stable identity.
  double getHandle() const { return handle; }
  /// The block type record.
  const BlockTypeInfo& getType() const { return *type; }
  /// The type code (131 subsystem, ...).
  int getTypeCode() const { return type->code; }
  /// The type name, e.g. u"Gain".
  bksvString getTypeName() const;
  /// The block's name (a "/" in it is an ordinary character here).
  const bksvString& getName() const { return name; }
  /// The name as UTF-8.
  std::string getGrNameNonUnicode() const;
  /// The full path: diagram name, system levels and block name separated by "/", a "/" inside a
  /// name written "//". For a deleted block, the path it had when it was deleted.
  bksvString getFullPath(bool unused = false) const;
  /// The block's SID, unique in its diagram: its decimal number as text.
  std::string getSID() const { return std::to_string(sid); }
  /// The numeric block identifier (the SID number).
  int getBlockId() const { return sid; }
  /// Comment state: 0 active, 1 commented out, 2 commented through.
  int getCommentState() const { return commentState; }
  /// True for comment state 1 or 2.
  bool isCommented() const { return commentState == 1 || commentState == 2; }
  /// The graph that contains the block; null for a deleted block.
  bkGraph* getGraph() const { return graph; }
  /// The diagram of the containing graph; null for a deleted block.
  BKRootBD* getBlockDiagram() const;

  /// The type's dialog descriptors in dialog order.
  const std::vector<BKPrmDesc>& getDialogInfo() const { return type->params; }
  /// The descriptor of parameter `name`, or null.
  const BKPrmDesc* getGrPrmDesc(const std::string& paramName) const;
  /// Whether the parameter of `desc` is shown; false for null.
  bool getGrPrmVisible(const BKPrmDesc* desc) const;
  /// The value of dialog parameter `name`, or null when the type has no such parameter.
  const BlockParamValue* getParam(const std::string& paramName) const;
  /// The text of dialog parameter `name`; a record list is written as its records joined by
  /// ";", each "field=value,..." . Throws std::out_of_range naming the block and parameter when
  /// the type has no such parameter.
  std::string getParamText(const std::string& paramName) const;
  /// For an enumeration parameter at dialog position `index`: the position of the value in the
  /// options; -1 when `index` is not an enumeration or the value is not an option.
  int getGrEnumPrmValue(int index) const;
  /// The text of the parameter at dialog position `index` of `block`; `element` is ignored.
  /// Empty for a null block or a position out of range.
  static std::string getGrParamValue(const BKBlock* block, int index, int element);

  /// Orientation 0 right, 1 down, 2 left, 3 up.
  int getGrOrientation() const { return orientation; }
  /// Whether the name is shown.
  bool getShowName() const { return showName; }
  /// Whether the name stands on the alternate side.
  bool getNamePlacementAlternate() const { return namePlacementAlternate; }
  /// The platform flag word: bit 1 the name is shown, bit 2 the name is on the alternate side.
  unsigned getPlatformFlags() const;
  /// Position {x, y, width, height}.
  const std::array<double, 4>& getPosition() const { return position; }
  /// The mask, or null when the block has none.
  const BKMask* getMask() const {
    return rare && !rare->mask.type.empty() ? &rare->mask : nullptr;
  }
  /// The mask fields as stored, set or not.
  const BKMask& maskFields() const { return rareFields().mask; }
  /// Library link status: "none", "resolved" or "implicit".
  const std::string& getLinkStatus() const { return rareFields().linkStatus; }
  /// The library block path of a link; empty otherwise.
  const bksvString& getReferenceBlock() const { return rareFields().referenceBlock; }

  /// True for a block whose type contains a system level (subsystems and charts).
  virtual bool hasSubGraph() const { return false; }
  /// The contained system level, or null.
  virtual bkGraph* getSubGraph() const { return nullptr; }
  /// True for a chart block, or a block standing directly inside a chart.
  bool IsChartelleBased() const;

  /// The value of property or parameter `name` in the form a set call takes: dialog parameters
  /// as stored, "Position" as numbers, "Orientation" as its word, switches as "on"/"off".
  /// Throws std::invalid_argument naming the block and the name when there is none.
  BlockValue getProperty(const std::string& propName) const;
  /// Names of every property and dialog parameter the block has, in a fixed order.
  std::vector<std::string> propertyNames() const;

 private:
  friend class BlockMutator;  // the editing layer changes blocks only through it

  double handle;
  const BlockTypeInfo* type;
  bksvString name;
  bkGraph* graph = nullptr;
  bksvString cachedPath;  // kept current by the editing layer, also after deletion
  int sid = 0;
  int commentState = 0;
  // The parameters set since the block was made, in the order they were first set; the others
  // read the type's initial value. A block has few, so a list is smaller than a map and as fast.
  using ParamList = std::vector<std::pair<std::string, BlockParamValue>>;
  ParamList params;
  // The entry of `paramName` in `params`, made from the type's initial value when absent; null
  // when the type has no such parameter.
  BlockParamValue* paramSlot(const std::string& paramName);
  int orientation = 0;
  bool showName = true;
  bool namePlacementAlternate = false;
  std::array<double, 4> position{0, 0, 30, 30};
  // What few blocks carry (a mask, a library link), kept apart so that a plain block does not
  // pay for it; null while every field holds its initial value.
  struct RareFields {
    BKMask mask;
    std::string linkStatus = "none";
    bksvString referenceBlock;
    bool isInitial() const;
  };
  static const RareFields& initialRareFields();
  const RareFields& rareFields() const { return rare ? *rare : initialRareFields(); }
  std::unique_ptr<RareFields> rare;
};

/// The block type alias under which the snapshot code asks graphical queries.
using BKRootBlock = BKBlock;

/// Escapes a block name for use in a path: every "/" becomes "//".
bksvString escapePathName(const bksvString& name);
