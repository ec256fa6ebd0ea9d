#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bkedittimecheck {

/// One rule of an exclusion: which blocks it speaks of. Plain data, read from an exclusions file
/// on the main thread and owned by its `Exclusion`.
struct ExclusionRule {
  /// The rule kinds, by the literal of the attribute "Type".
  enum Kind : std::int32_t {
    Subsystem = 0,        ///< "Subsystem": the block is the subsystem `paramValue` or lies in it
    Library = 1,          ///< "Library": the block or a parent links below `paramValue`
    Chartelle = 2,        ///< "Chartelle": never matches
    BlockParameters = 3,  ///< "BlockParameters": never matches
    MaskType = 4,         ///< "MaskType": the parent subsystem has this mask type
    Block = 5,            ///< "Block": the block has exactly this path
    BlockType = 6,        ///< "BlockType": the block has exactly this type name
  };
  /// The kind of a rule whose "Type" is missing or unknown: outside the enumeration, so the test
  /// ends with false when it reaches the rule.
  static constexpr std::int32_t unknownKind = -1;

  /// The kind of a "Type" literal; `unknownKind` for any other text.
  static std::int32_t kindOf(const std::string& literal);

  std::wstring regExp;  ///< kept as read; no matching ever reads it
  std::wstring sid;     ///< "off": `paramValue` is a path; anything else: it is a SID
  std::wstring paramValue;
  std::int32_t kind = unknownKind;
};

/// An exemption: blocks named by `rules` are exempt from the checks `checkIds`, for a written
/// `rationale`. ".*" in `checkIds` stands for every check (a plain comparison, not a pattern).
struct Exclusion {
  std::wstring rationale;
  std::vector<std::wstring> checkIds;
  std::vector<ExclusionRule> rules;

  /// True when an entry of `checkIds` is ".*" or equals `checkId` (compared in UTF-8).
  bool coversCheck(const std::string& checkId) const;
};

}  // namespace bkedittimecheck
