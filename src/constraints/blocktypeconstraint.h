#pragma once

#include <boost/property_tree/ptree.hpp>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/language/nxarray.h"
#include "src/constraints/constraint.h"

namespace bkedittimecheck {

/// A rule on the kind of a block: the pair of its block type and mask type, against a list of
/// pairs. It concerns every block, whatever its type. An empty mask type is the mask type of an
/// unmasked block, not a wildcard. Comparisons are exact.
///
/// Thread contract as `Constraint`: the list is fixed after reading (or set by the host
/// language on the main thread); the current pair is written and read by the worker.
class BlockTypeConstraint : public Constraint {
 public:
  using BlockTypeMaskTypeList = std::unordered_map<std::string, std::vector<std::string>>;

  /// Counts the pair and appends the mask type under the block type; a repeated pair stands
  /// twice.
  void addBlockMaskPairToList(std::string blockType, std::string maskType);
  /// A copy of the list.
  BlockTypeMaskTypeList getBlockTypeMaskTypeList() const { return blockTypeMaskTypeList; }
  /// How many pairs were added, repeats included.
  std::uint64_t getNumBlockTypeMaskTypePairs() const { return blockMaskPairCount; }

  /// Refreshes, then stores the pair under judgement.
  void setCurrentBlockMaskPair(std::string blockType, std::string maskType);
  /// Only the block type part of the pair, for the host language's "setCurrentBlockType";
  /// refreshes.
  void setCurrentBlockType(std::string blockType);
  /// Takes the pair of the block's rule-auditor snapshot (which the block must have); refreshes.
  void setCurrentValue(std::shared_ptr<bkEditBlock> block) override;
  /// Reads "BlockType" children (text: the type, attribute "MaskType": the mask type; an empty
  /// text is passed over) and "dependson" children, in file order.
  void scanDOMNode(boost::property_tree::ptree tree) override;

  /// The list as a host-language cell row or column (as given) of 1x1 structs with the fields
  /// "BlockType" and "MaskType". Main thread.
  nxArrayProxy getCosBlockTypeMaskTypeList() const;
  /// Replaces the list by the pairs of a cell row or column of structs or objects, each read
  /// from its fields "BlockType" and "MaskType". The list is emptied first; throws
  /// InvalidParameterValueInput for a value that is not a cell vector, and
  /// InvalidParameterValueNonStruct at the first cell that is no struct or object, keeping the
  /// pairs before it. Main thread.
  void setCosBlockTypeMaskTypeList(nxArrayProxy list);

 protected:
  BlockTypeConstraint() = default;
  BlockTypeConstraint(const BlockTypeConstraint&) = default;
  BlockTypeConstraint& operator=(const BlockTypeConstraint&) = default;

  /// True when the current pair is listed.
  bool currentPairIsListed() const;

 private:
  std::uint64_t blockMaskPairCount = 0;
  BlockTypeMaskTypeList blockTypeMaskTypeList;
  std::string currentBlockType;
  std::string currentMaskType;
};

/// The block's pair must be listed.
class PositiveBlockTypeConstraint : public BlockTypeConstraint {
 public:
  PositiveBlockTypeConstraint() = default;
  /// Reads a "PositiveBlockTypeConstraint" element of the data file.
  PositiveBlockTypeConstraint(const boost::property_tree::ptree& tree, const std::string& id);
  bool check() override;
  const std::string getFullyQualifiedNcosTypeName() const override;
};

/// The block's pair must not be listed.
class NegativeBlockTypeConstraint : public BlockTypeConstraint {
 public:
  NegativeBlockTypeConstraint() = default;
  /// Reads a "NegativeBlockTypeConstraint" element of the data file.
  NegativeBlockTypeConstraint(const boost::property_tree::ptree& tree, const std::string& id);
  bool check() override;
  const std::string getFullyQualifiedNcosTypeName() const override;
};

}  // namespace bkedittimecheck
