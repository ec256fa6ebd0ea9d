#include "host/model/blockmutator.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "host/model/subsystemblock.h"

namespace {

const char* const kOrientations[] = {"right", "down", "left", "up"};

std::string where(const BKBlock& block) {
  return ConvertUStringToStdString(block.getFullPath(false)) + ": ";
}

[[noreturn]] void reject(const BKBlock& block, const std::string& name,
                         const std::string& problem) {
  throw std::invalid_argument(where(block) + name + ": " + problem);
}

// A switch may be given as a boolean or as "on"/"off".
bool toSwitch(const BKBlock& block, const std::string& name, const BlockValue& value) {
  if (const auto* on = std::get_if<bool>(&value)) return *on;
  if (const auto* text = std::get_if<std::string>(&value)) {
    if (*text == "on") return true;
    if (*text == "off") return false;
  }
  reject(block, name, "expected \"on\" or \"off\"");
}

std::string toText(const BKBlock& block, const std::string& name, const BlockValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  if (const auto* number = std::get_if<double>(&value)) return formatNumber(*number);
  if (const auto* on = std::get_if<bool>(&value)) return *on ? "on" : "off";
  reject(block, name, "expected a text value");
}

double toNumber(const BKBlock& block, const std::string& name, const BlockValue& value) {
  if (const auto* number = std::get_if<double>(&value)) return *number;
  if (const auto* text = std::get_if<std::string>(&value)) {
    try {
      std::size_t used = 0;
      double parsed = std::stod(*text, &used);
      if (used == text->size()) return parsed;
    } catch (const std::exception&) {
    }
  }
  reject(block, name, "expected a number");
}

int toOrientation(const BKBlock& block, const BlockValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) {
    for (int i = 0; i < 4; ++i)
      if (*text == kOrientations[i]) return i;
  }
  if (const auto* number = std::get_if<double>(&value)) {
    if (*number == std::floor(*number) && *number >= 0 && *number <= 3)
      return static_cast<int>(*number);
  }
  reject(block, "Orientation", "expected \"right\", \"down\", \"left\", \"up\" or 0 to 3");
}

// Applies (apply = true) or only checks (apply = false) one property or parameter.
void assign(BKBlock& block, const std::string& name, const BlockValue& value, bool apply,
            BlockParamValue* paramSlot, int& orientation, bool& showName, bool& alternate,
            std::array<double, 4>& position, BKMask& mask, std::string& linkStatus,
            bksvString& referenceBlock) {
  if (const BKPrmDesc* desc = block.getGrPrmDesc(name)) {
    if (desc->typeCode == BKPRM_RECORDS) {
      const auto* records = std::get_if<BlockRecordList>(&value);
      if (!records) reject(block, name, "expected a list of records");
      if (apply) *paramSlot = *records;
      return;
    }
    std::string text = desc->typeCode == BKPRM_CHECKBOX
                           ? std::string(toSwitch(block, name, value) ? "on" : "off")
                           : toText(block, name, value);
    if (!desc->options.empty() &&
        std::find(desc->options.begin(), desc->options.end(), text) == desc->options.end())
      reject(block, name, "\"" + text + "\" is not one of its options");
    if (apply) *paramSlot = text;
    return;
  }
  if (name == "ShowName") {
    bool on = toSwitch(block, name, value);
    if (apply) showName = on;
  } else if (name == "NamePlacement") {
    std::string text = toText(block, name, value);
    if (text != "normal" && text != "alternate")
      reject(block, name, "expected \"normal\" or \"alternate\"");
    if (apply) alternate = text == "alternate";
  } else if (name == "Orientation") {
    int o = toOrientation(block, value);
    if (apply) orientation = o;
  } else if (name == "Position") {
    const auto* numbers = std::get_if<std::vector<double>>(&value);
    if (!numbers || numbers->size() != 4) reject(block, name, "expected {x, y, w, h}");
    for (double n : *numbers)
      if (!std::isfinite(n)) reject(block, name, "expected finite numbers");
    if (apply) std::copy(numbers->begin(), numbers->end(), position.begin());
  } else if (name == "MaskType") {
    std::string text = toText(block, name, value);
    if (apply) {
      mask.type = i18n::to_u16string(text);
      bkgg::noteStructureChange();
    }
  } else if (name == "MaskInitialization") {
    std::string text = toText(block, name, value);
    if (apply) mask.initialization = text;
  } else if (name == "MaskParameters") {
    double count = toNumber(block, name, value);
    if (count < 0 || count != std::floor(count) || count > 1e6)
      reject(block, name, "expected a count");
    if (apply) mask.parameterCount = static_cast<int>(count);
  } else if (name == "LinkStatus") {
    std::string text = toText(block, name, value);
    if (text != "none" && text != "resolved" && text != "implicit")
      reject(block, name, "expected \"none\", \"resolved\" or \"implicit\"");
    if (apply) {
      linkStatus = text;
      bkgg::noteStructureChange();
    }
  } else if (name == "ReferenceBlock") {
    std::string text = toText(block, name, value);
    if (apply) {
      referenceBlock = i18n::to_u16string(text);
      bkgg::noteStructureChange();
    }
  } else {
    reject(block, name,
           "block type " + block.getType().name + " has no such property or parameter");
  }
}

}  // namespace

std::unique_ptr<BKBlock> BlockMutator::makeBlock(const BlockTypeInfo& type,
                                                 const bksvString& name) {
  if (type.hasSystem) return std::make_unique<SubsystemBlock>(type, name);
  return std::make_unique<BKBlock>(type, name);
}

void BlockMutator::setGraphDiagram(BKBlock* block, BKRootBD* diagram) {
  bkgg::noteStructureChange();
  if (bkGraph* inside = block->getSubGraph()) {
    inside->diagram = diagram;
    for (auto& child : inside->blocks) setGraphDiagram(child.get(), diagram);
  }
}

void BlockMutator::indexTree(BKRootBD& diagram, BKBlock* block, const bksvString& parentPath) {
  block->cachedPath = parentPath + u'/' + escapePathName(block->name);
  if (block->sid == 0) block->sid = diagram.takeNextSID();
  if (block->sid >= diagram.peekNextSID()) diagram.setNextSID(block->sid + 1);
  // A block that takes over a path also takes over the key, which must view its own path.
  auto [entry, fresh] = diagram.pathIndex.try_emplace(block->cachedPath, block);
  if (!fresh) {
    diagram.pathIndex.erase(entry);
    diagram.pathIndex.emplace(block->cachedPath, block);
  }
  diagram.sidIndex[block->sid] = block;
  if (bkGraph* inside = block->getSubGraph())
    for (auto& child : inside->blocks) indexTree(diagram, child.get(), block->cachedPath);
}

void BlockMutator::unindexTree(BKRootBD& diagram, BKBlock* block) {
  auto it = diagram.pathIndex.find(block->cachedPath);
  if (it != diagram.pathIndex.end() && it->second == block) diagram.pathIndex.erase(it);
  auto sid = diagram.sidIndex.find(block->sid);
  if (sid != diagram.sidIndex.end() && sid->second == block) diagram.sidIndex.erase(sid);
  if (bkGraph* inside = block->getSubGraph())
    for (auto& child : inside->blocks) unindexTree(diagram, child.get());
}

BKBlock* BlockMutator::insert(BKRootBD& diagram, bkGraph& graph, std::unique_ptr<BKBlock> block,
                              std::size_t position) {
  BKBlock* raw = block.get();
  raw->graph = &graph;
  position = std::min(position, graph.blocks.size());
  graph.blocks.insert(graph.blocks.begin() + static_cast<std::ptrdiff_t>(position),
                      std::move(block));
  setGraphDiagram(raw, &diagram);
  indexTree(diagram, raw, graph.getFullPath());
  return raw;
}

std::pair<std::unique_ptr<BKBlock>, std::size_t> BlockMutator::detach(BKRootBD& diagram,
                                                                      BKBlock* block) {
  bkGraph* graph = block->graph;
  auto it = std::find_if(graph->blocks.begin(), graph->blocks.end(),
                         [block](const auto& owned) { return owned.get() == block; });
  std::size_t position = static_cast<std::size_t>(it - graph->blocks.begin());
  std::unique_ptr<BKBlock> owned = std::move(*it);
  graph->blocks.erase(it);
  unindexTree(diagram, block);
  block->graph = nullptr;
  setGraphDiagram(block, nullptr);
  return {std::move(owned), position};
}

void BlockMutator::rename(BKRootBD& diagram, BKBlock* block, const bksvString& newName) {
  unindexTree(diagram, block);
  block->name = newName;
  indexTree(diagram, block, block->graph->getFullPath());
}

void BlockMutator::reindexAll(BKRootBD& diagram) {
  bkgg::noteStructureChange();
  diagram.pathIndex.clear();
  diagram.sidIndex.clear();
  for (auto& child : diagram.root->blocks) indexTree(diagram, child.get(), diagram.name);
}

void BlockMutator::validate(const BKBlock& block, const std::string& name,
                            const BlockValue& value) {
  // Checking runs the same code as setting, against scratch copies.
  BKBlock& target = const_cast<BKBlock&>(block);
  BlockParamValue param;
  int orientation = 0;
  bool showName = false, alternate = false;
  std::array<double, 4> position{};
  BKMask mask;
  std::string linkStatus;
  bksvString referenceBlock;
  assign(target, name, value, true, &param, orientation, showName, alternate, position, mask,
         linkStatus, referenceBlock);
}

void BlockMutator::set(BKBlock& block, const std::string& name, const BlockValue& value) {
  validate(block, name, value);
  BlockParamValue* slot = block.paramSlot(name);
  BlockParamValue scratch;
  BKBlock::RareFields rare = block.rareFields();
  assign(block, name, value, true, slot ? slot : &scratch, block.orientation, block.showName,
         block.namePlacementAlternate, block.position, rare.mask, rare.linkStatus,
         rare.referenceBlock);
  if (block.rare)
    *block.rare = std::move(rare);
  else if (!rare.isInitial())
    block.rare = std::make_unique<BKBlock::RareFields>(std::move(rare));
}
