#include "app/unusedexclusions.h"

#include <algorithm>

#include "host/model/bkblock.h"
#include "host/model/bkrootbd.h"
#include "src/configuration/exclusionmanager.h"
#include "src/edittimecontroller.h"
#include "src/edittimeengine.h"

namespace blockara::app {

namespace {

std::string utf8(const std::wstring& text) {
  return ConvertUStringToStdString(bksvString(text.begin(), text.end()));
}

const char* kindName(std::int32_t kind) {
  static const char* const names[] = {"Subsystem", "Library", "Chartelle", "BlockParameters",
                                      "MaskType",  "Block",   "BlockType"};
  return kind >= 0 && kind < 7 ? names[kind] : "unknown";
}

}  // namespace

std::vector<std::string> unusedExclusions(BKRootBD& diagram, const std::string& file) {
  std::vector<std::string> lines;
  const bksvString name = diagram.getName();
  auto engine = bkedittimecheck::EditTimeController::instance().findEngine(
      std::wstring(name.begin(), name.end()));
  if (!engine) return lines;
  const std::vector<BKBlock*> blocks = diagram.blocksInPathOrder();
  const auto& exclusions = engine->getExclusions()->getExclusions();
  for (std::size_t i = 0; i < exclusions.size(); ++i) {
    for (const bkedittimecheck::ExclusionRule& rule : exclusions[i].rules) {
      const bool used = std::any_of(blocks.begin(), blocks.end(), [&](const BKBlock* b) {
        return bkedittimecheck::ExclusionManager::ruleSelects(rule, *b);
      });
      if (used) continue;
      lines.push_back(file + ": exclusion " + std::to_string(i + 1) + " (\"" +
                      utf8(exclusions[i].rationale) + "\"): " + kindName(rule.kind) + " rule '" +
                      utf8(rule.paramValue) + "' matches no block");
    }
  }
  return lines;
}

}  // namespace blockara::app
