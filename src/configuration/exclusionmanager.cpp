#include "src/configuration/exclusionmanager.h"

#include <algorithm>
#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <mutex>
#include <sstream>

#include "host/model/bkglue.h"
#include "host/model/bkgraph.h"
#include "host/model/bkrootbd.h"
#include "host/package/bkblockdiagramloadsave.h"
#include "host/package/bkspackage.h"
#include "host/prefs/edittimepreferences.h"
#include "host/xml/xmlreader.h"
#include "src/edittimeviolation.h"
#include "src/hostinterface.h"

namespace bkedittimecheck {

namespace {

namespace pt = boost::property_tree;

// The temporary copies of package parts stay while the process runs (a later reader may still
// want them) and go when it ends.
class TemporaryCopies {
 public:
  ~TemporaryCopies() {
    std::error_code ignored;
    for (const auto& file : files) std::filesystem::remove(file, ignored);
  }
  void keep(std::filesystem::path file) {
    std::lock_guard<std::mutex> lock(mutex);
    files.push_back(std::move(file));
  }

 private:
  std::mutex mutex;
  std::vector<std::filesystem::path> files;  // guarded by mutex
};

TemporaryCopies& temporaryCopies() {
  static TemporaryCopies copies;
  return copies;
}

pt::ptree readExclusionsTree(const std::wstring& path) {
  // The shared reader refuses a file nested deeper than this reader's own, lower limit before
  // the recursive parser sees it.
  blockara::xml::Limits limits = blockara::xml::limits();
  limits.maxDepth = std::min(limits.maxDepth, ExclusionManager::maxNesting);
  return blockara::xml::readFile(std::filesystem::path(path), pt::xml_parser::no_comments, limits);
}

std::wstring attribute(const pt::ptree& attributes, const char* name, const std::wstring& old) {
  const auto value = attributes.get_optional<std::string>(pt::ptree::path_type(name, '\0'));
  return value ? fromNarrow(*value) : old;
}

ExclusionRule readRule(const pt::ptree& node) {
  ExclusionRule rule;
  for (const auto& [name, child] : node) {
    if (name == "<xmlattr>") {
      rule.regExp = attribute(child, "RegExp", rule.regExp);
      rule.sid = attribute(child, "SID", rule.sid);
      if (auto type = child.get_optional<std::string>(pt::ptree::path_type("Type", '\0'))) {
        rule.kind = ExclusionRule::kindOf(*type);
      }
    } else if (name == "paramValue") {
      rule.paramValue = fromNarrow(child.data());
    }
  }
  return rule;
}

// Makes the "Subsystem" and "Block" rules speak of full paths.
void resolveRule(ExclusionRule& rule, BKRootBD* diagram) {
  if (rule.kind != ExclusionRule::Subsystem && rule.kind != ExclusionRule::Block) return;
  if (!diagram) return;
  if (rule.sid != L"off") {
    if (BKBlock* block = SIDServiceBK::findBlock(diagram, toNarrow(rule.paramValue))) {
      rule.paramValue = toWide(block->getFullPath(false));
    }
    return;
  }
  rule.paramValue = diagramNameOf(diagram) + L"/" + rule.paramValue;
}

Exclusion readExclusion(const pt::ptree& node, BKRootBD* diagram) {
  Exclusion exclusion;
  for (const auto& [name, child] : node) {
    if (name == "<xmlattr>") {
      exclusion.rationale = attribute(child, "Rationale", exclusion.rationale);
    } else if (name == "RuleList") {
      for (const auto& [ruleName, ruleNode] : child) {
        if (ruleName != "Rule") continue;
        ExclusionRule rule = readRule(ruleNode);
        resolveRule(rule, diagram);
        exclusion.rules.push_back(std::move(rule));
      }
    } else if (name == "CheckIDList") {
      for (const auto& [idName, idNode] : child) {
        if (idName == "CheckID") exclusion.checkIds.push_back(fromNarrow(idNode.data()));
      }
    }
  }
  return exclusion;
}

BKBlock* parentSubsystem(const BKBlock& block) {
  const bkGraph* graph = block.getGraph();
  return graph ? graph->getOwner() : nullptr;
}

bool libraryRuleHolds(const BKBlock& block, const std::wstring& prefix) {
  for (const BKBlock* at = &block; at; at = parentSubsystem(*at)) {
    const std::wstring reference = toWide(BKRootBlockPlatformInfo::getReferenceBlock(at, -1));
    if (reference.empty()) return false;
    if (reference.starts_with(prefix)) return true;
  }
  return false;
}

bool isInside(const std::wstring& path, const std::wstring& subsystem) {
  if (!path.starts_with(subsystem)) return false;
  return path.size() == subsystem.size() || path[subsystem.size()] == L'/';
}

}  // namespace

void ExclusionManager::loadExclusions(BKRootBD* diagram) {
  ++revision;
  if (!diagram) return;
  std::wstring path = toWide(diagram->getExclusionFilePath());
  if (path.empty()) {
    const auto reader = bkBlockDiagramLoadSave::get(diagram).getPackageReader();
    if (!reader || !reader->hasPart(exclusionsPart)) return;
    const std::filesystem::path copy = bksPackageHelper::makeTemporaryFile(".xml");
    temporaryCopies().keep(copy);
    bksPackageHelper::reader::partToFile(*reader, exclusionsPart, copy);
    path = copy.wstring();
  }
  loadExclusionsFromFile(diagram, path);
}

void ExclusionManager::loadExclusionsFromFile(BKRootBD* diagram, const std::wstring& path) {
  ++revision;
  const pt::ptree tree = readExclusionsTree(path);
  exclusions.clear();
  const pt::ptree& list = tree.get_child("rsccat.SystemList.System.ExclusionList");
  for (const auto& [name, node] : list) {
    if (name == "Exclusion") exclusions.push_back(readExclusion(node, diagram));
  }

  bk::bkedittimecheck::bkutils::EditTimePreferences::ExclusionMap published;
  for (const Exclusion& exclusion : exclusions) {
    auto rule = std::find_if(exclusion.rules.begin(), exclusion.rules.end(),
                             [](const auto& r) { return r.kind == ExclusionRule::Subsystem; });
    if (rule != exclusion.rules.end()) published.emplace(rule->paramValue, exclusion.checkIds);
  }
  bk::bkedittimecheck::bkutils::EditTimePreferences::setCEExclusions(
      diagram ? diagramNameOf(diagram) : std::wstring(), std::move(published));
}

bool ExclusionManager::ruleSelects(const ExclusionRule& rule, const BKBlock& block) {
  switch (rule.kind) {
    case ExclusionRule::Subsystem:
      return isInside(toWide(block.getFullPath(false)), rule.paramValue);
    case ExclusionRule::Library:
      return libraryRuleHolds(block, rule.paramValue);
    case ExclusionRule::MaskType: {
      const BKBlock* parent = parentSubsystem(block);
      const BKMask* mask = parent ? parent->getMask() : nullptr;
      return mask && toWide(mask->type) == rule.paramValue;
    }
    case ExclusionRule::Block:
      return toWide(block.getFullPath(false)) == rule.paramValue;
    case ExclusionRule::BlockType:
      return toWide(block.getTypeName()) == rule.paramValue;
    default:
      return false;
  }
}

const Exclusion* ExclusionManager::exemptionOf(const BKBlock& block,
                                               const EditTimeViolation& violation) const {
  for (const Exclusion& exclusion : exclusions) {
    for (const ExclusionRule& rule : exclusion.rules) {
      switch (rule.kind) {
        case ExclusionRule::Subsystem:
        case ExclusionRule::Block:
        case ExclusionRule::BlockType:
          if (ruleSelects(rule, block) && exclusion.coversCheck(violation.checkId)) {
            return &exclusion;
          }
          break;
        case ExclusionRule::Library:
          // The first library rule reached answers for the whole test, even with false.
          return ruleSelects(rule, block) ? &exclusion : nullptr;
        case ExclusionRule::Chartelle:
        case ExclusionRule::BlockParameters:
          break;
        case ExclusionRule::MaskType:
          if (ruleSelects(rule, block)) return &exclusion;
          break;
        default:
          return nullptr;
      }
    }
  }
  return nullptr;
}

bool ExclusionManager::isExcluded(const BKBlock& block, const EditTimeViolation& violation) const {
  return exemptionOf(block, violation) != nullptr;
}

}  // namespace bkedittimecheck
