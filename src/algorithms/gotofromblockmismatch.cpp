#include "src/algorithms/gotofromblockmismatch.h"

#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "src/algorithms/blockrelations.h"
#include "src/bkeditbd.h"
#include "src/violationdatabase.h"

namespace bkedittimecheck {

namespace {

using Block = std::shared_ptr<bkEditBlock>;
using ByTag = std::map<std::string, std::vector<Block>>;
using Records = std::vector<std::shared_ptr<EditTimeViolation>>;

const std::string& visibilityOf(const bkEditBlock& go) {
  return go.getDefaultEditBlock()->stringParam0;
}

const std::string& tagOf(const bkEditBlock& block) {
  // A Goto keeps its visibility first and its tag second; From and visibility blocks the tag.
  const bkDefaultEditBlock& d = *block.getDefaultEditBlock();
  return block.getBlockKind() == BlockKind::kGoto ? d.stringParam1 : d.stringParam0;
}

bool hasRecordFor(const Records& records, double handle) {
  for (const auto& r : records) {
    if (r->blockHandle == handle) return true;
  }
  return false;
}

class Pairing {
 public:
  Pairing(const std::string& checkId, const std::map<double, Block>& blocks) : checkId(checkId) {
    for (const auto& [handle, block] : blocks) {
      if (!block || block->getIsCommented() || !block->getDefaultEditBlock()) continue;
      switch (block->getBlockKind()) {
        case BlockKind::kFrom:
          froms[tagOf(*block)].push_back(block);
          break;
        case BlockKind::kGoto:
          gotos[tagOf(*block)].push_back(block);
          break;
        case BlockKind::kGotoTagVisibility:
          visibilities[tagOf(*block)].push_back(block);
          break;
        default:
          break;
      }
    }
  }

  // Whether Goto `go` reaches From `from` of tag `tag`. `viaVisibility` tells that the answer
  // came from the tag's visibility blocks rather than from the Goto itself.
  bool reaches(const bkEditBlock& go, const bkEditBlock& from, const std::string& tag,
               bool& viaVisibility) const {
    viaVisibility = false;
    const std::string& v = visibilityOf(go);
    if (v == "TAG_GLOBAL") return true;
    if (v == "TAG_LOCAL") return inSameSystem(go, from);
    if (v != "TAG_SCOPED") return false;
    const auto it = visibilities.find(tag);
    if (it == visibilities.end()) return containsSystemOf(go, from);
    // With visibility blocks only they are tested against the From; the Goto's place does not
    // come into it.
    viaVisibility = true;
    for (const Block& b : it->second) {
      if (containsSystemOf(*b, from)) return true;
    }
    return false;
  }

  // Whether any block of `others` pairs with `block`; `asGoto` tells which side `block` is.
  bool paired(const bkEditBlock& block, const std::vector<Block>& others, const std::string& tag,
              bool asGoto) const {
    bool matched = false;
    for (const Block& other : others) {
      bool viaVisibility = false;
      const bool hit = asGoto ? reaches(block, *other, tag, viaVisibility)
                              : reaches(*other, block, tag, viaVisibility);
      if (!hit) continue;
      matched = true;
      // A direct hit ends the search; a hit through the visibility blocks only clears the
      // mark, and the loop runs on to its end.
      if (!viaVisibility) break;
    }
    return matched;
  }

  std::shared_ptr<EditTimeViolation> record(const bkEditBlock& block, const char* type,
                                            std::uint32_t severity) const {
    auto r = std::make_shared<EditTimeViolation>(checkId, type, severity, block.getBlockHandle());
    r->isCommented = block.getIsCommented() ? 1 : 0;
    r->blockPath = block.getFullPath();
    return r;
  }

  void pairingGroup() {
    for (const auto& [tag, list] : froms) {
      const auto it = gotos.find(tag);
      for (const Block& from : list) {
        if (it == gotos.end() || !paired(*from, it->second, tag, false)) {
          fromViolations.push_back(record(*from, "NoMatchingGoTO", Severity::kWarning));
        }
      }
    }
    for (const auto& [tag, list] : gotos) {
      const auto it = froms.find(tag);
      for (const Block& go : list) {
        if (it == froms.end() || !paired(*go, it->second, tag, true)) {
          gotoViolations.push_back(record(*go, "NoMatchingFrom", Severity::kWarning));
        }
      }
    }
    for (const auto& [tag, list] : visibilities) {
      if (list.size() < 2) continue;
      for (const Block& x : list) {
        for (const Block& y : list) {
          if (x != y && inSameSystem(*x, *y)) {
            visibilityViolations.push_back(
                record(*x, "DuplicateGoToTagVisibility", Severity::kError));
            break;
          }
        }
      }
    }
  }

  void gotoGroup() {
    for (const auto& [tag, list] : gotos) {
      for (const Block& go : list) {
        if (visibilityOf(*go) == "TAG_SCOPED" && visibilities.count(tag) == 0) {
          gotoViolations.push_back(
              record(*go, "NoMatchingGoToTagVisibilityBlock", Severity::kError));
        }
      }
      if (list.size() < 2) continue;
      for (const Block& a : list) {
        for (const Block& b : list) {
          if (a == b) continue;
          const bool bothGlobal =
              visibilityOf(*a) == "TAG_GLOBAL" && visibilityOf(*b) == "TAG_GLOBAL";
          if ((inSameSystem(*a, *b) && visibilityOf(*a) == visibilityOf(*b)) || bothGlobal) {
            gotoViolations.push_back(record(*a, "DuplicateGoTo", Severity::kError));
            break;
          }
        }
      }
    }
  }

  void apply(ViolationDatabase& database) const {
    if (gotoViolations.empty()) {
      database.removeByType(checkId, "DuplicateGoTo");
      database.removeByType(checkId, "NoMatchingFrom");
      database.removeByType(checkId, "NoMatchingGoToTagVisibilityBlock");
    }
    forgetClean(database, gotos, gotoViolations);
    for (const auto& r : gotoViolations) {
      const std::vector<EditTimeViolation> present =
          database.violationsOfBlock(r->blockHandle, checkId);
      bool known = false;
      for (const EditTimeViolation& p : present) {
        known = known || (p.checkId == r->checkId && p.violationType == r->violationType);
      }
      if (!known) database.add(r);
      for (const EditTimeViolation& p : present) {
        bool current = false;
        for (const auto& g : gotoViolations) {
          current = current || (g->blockHandle == p.blockHandle &&
                                g->violationType == p.violationType && g->checkId == p.checkId);
        }
        if (!current) database.remove(std::make_shared<EditTimeViolation>(p));
      }
    }
    for (const auto& r : fromViolations) database.add(r);
    forgetClean(database, froms, fromViolations);
    database.removeByType(checkId, "DuplicateGoToTagVisibility");
    for (const auto& r : visibilityViolations) database.add(r);
    forgetClean(database, visibilities, visibilityViolations);
  }

  Records fromViolations;
  Records gotoViolations;
  Records visibilityViolations;

 private:
  void forgetClean(ViolationDatabase& database, const ByTag& byTag, const Records& found) const {
    for (const auto& [tag, list] : byTag) {
      for (const Block& block : list) {
        if (!hasRecordFor(found, block->getBlockHandle())) {
          database.removeByCheck(block->getBlockHandle(), checkId);
        }
      }
    }
  }

  const std::string& checkId;
  ByTag froms;
  ByTag gotos;
  ByTag visibilities;
};

}  // namespace

GoToFromBlockMismatch::GoToFromBlockMismatch(const std::wstring& diagramName,
                                             std::uint32_t severity)
    : DiagramCheck(kCheckId, diagramName, severity) {}

bool GoToFromBlockMismatch::evaluate(bkEditBD& data, ViolationDatabase& database) {
  // Past the limit the check is off for the diagram rather than slow; old findings stay.
  if (data.hasTooManyRoutingBlocks()) return true;
  // The map itself: checks and folds run one after the other on the worker.
  const std::map<double, Block>& blocks = data.blockMap();
  Pairing pairing(checkId, blocks);
  if (severity == Severity::kWarning || severity == Severity::kBoth) pairing.pairingGroup();
  if (severity == Severity::kError || severity == Severity::kBoth) pairing.gotoGroup();
  pairing.apply(database);
  return true;
}

}  // namespace bkedittimecheck
