#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "src/configuration/exclusion.h"

class BKRootBD;
class BKBlock;

namespace bkedittimecheck {

struct EditTimeViolation;

/// The exclusions of one diagram, read from the diagram's exclusions file or, when it names none,
/// from the part "/auditor/exclusions.xml" of its package; and the one question they answer: is
/// this block exempt from this rule-auditor violation? An exempt violation stays in the store;
/// only its display and its report are held back.
///
/// Thread contract: main thread only (loads and tests talk to the host model). No locks; the
/// worker never reaches this object.
class ExclusionManager {
 public:
  /// The part of a diagram's package that holds its exclusions.
  static constexpr const char* exclusionsPart = "/auditor/exclusions.xml";
  /// Files whose elements nest deeper than this are refused before they are parsed.
  static constexpr int maxNesting = 64;

  ExclusionManager() = default;
  ExclusionManager(const ExclusionManager&) = delete;
  ExclusionManager& operator=(const ExclusionManager&) = delete;

  /// Main thread. The regular load: the diagram's exclusions file when it names one, else a
  /// temporary copy of its package part (made fresh and exclusively). Without a file path, a
  /// package or the part, nothing changes and the old exclusions stay. Throws as
  /// `loadExclusionsFromFile`, and `bksPackageHelper::PackageError` when the copy cannot be
  /// written (the exclusions then stay as they were).
  void loadExclusions(BKRootBD* diagram);

  /// Main thread. Replaces the exclusions with those of the file `path` and publishes the
  /// subsystem exclusions (`EditTimePreferences::setCEExclusions`). A file that cannot be read,
  /// is no well-formed XML or nests deeper than `maxNesting` throws
  /// `boost::property_tree::xml_parser_error` naming the file, with the exclusions unchanged. A
  /// file without "rsccat.SystemList.System.ExclusionList" throws
  /// `boost::property_tree::ptree_bad_path`, with the exclusions empty and nothing published.
  /// "Subsystem" and "Block" rules are resolved against `diagram` here: a SID becomes the path
  /// of its block, an "off" path is prefixed with the diagram name.
  void loadExclusionsFromFile(BKRootBD* diagram, const std::wstring& path);

  /// Main thread. True when the exclusions exempt `block` from `violation`. Rules are tried in
  /// file order and the first that decides, decides: a "Library" rule always decides, a
  /// "MaskType" rule decides when it matches without looking at check IDs, a rule of unknown
  /// kind decides false. Meant for the rule-auditor severities 3 and 4. Never throws beyond
  /// allocation.
  bool isExcluded(const BKBlock& block, const EditTimeViolation& violation) const;

  /// Main thread. The exclusion that exempts `block` from `violation`, by the same rules and
  /// order as `isExcluded`; null when none does. Points into `getExclusions()`, valid until the
  /// next load.
  const Exclusion* exemptionOf(const BKBlock& block, const EditTimeViolation& violation) const;

  /// Main thread. True when `rule` speaks of `block`, whatever the checks of its exclusion: the
  /// block part of the decision alone, for telling which rules name no block any more. Chartelle,
  /// block-parameter and unknown rules speak of no block.
  static bool ruleSelects(const ExclusionRule& rule, const BKBlock& block);

  /// Main thread. The exclusions, in file order.
  const std::vector<Exclusion>& getExclusions() const { return exclusions; }
  /// Main thread. A count that moves at every load, whatever it read.
  std::uint64_t getRevision() const { return revision; }

 private:
  std::vector<Exclusion> exclusions;  // main thread; replaced whole at each load
  std::uint64_t revision = 0;         // main thread
};

}  // namespace bkedittimecheck
