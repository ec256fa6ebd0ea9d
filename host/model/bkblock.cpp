#include "host/model/bkblock.h"

#include <charconv>
#include <cmath>
#include <optional>
#include <stdexcept>
#include <vector>

#include "host/model/bkgraph.h"
#include "host/model/blockmutator.h"

namespace {

// Live blocks by handle, for every diagram of the process, at the handle's whole part less one
// (handles are issued in sequence); a slot is null once its block is gone. Main thread only.
// Never destroyed: blocks held by other statics are destroyed at exit, after this table would be.
std::vector<BKBlock*>& liveBlocks() {
  static auto* blocks = new std::vector<BKBlock*>();
  return *blocks;
}

constexpr double kHandleFraction = 0.0001220703125;

// The slot of `handle`, or none for a number that was never issued as a handle.
std::optional<std::size_t> slotOf(double handle) {
  const double whole = std::floor(handle);
  if (handle - whole != kHandleFraction || whole < 1 || whole > 1e15) return std::nullopt;
  return static_cast<std::size_t>(whole) - 1;
}

const char* const kOrientations[] = {"right", "down", "left", "up"};

}  // namespace

double issueHandle() {
  // A fraction that is exact in binary keeps handles non-integral, as a host's are, so that
  // code that truncates a handle to an integer shows up at once.
  static double next = 0;
  next += 1;
  return next + kHandleFraction;
}

std::string formatNumber(double value) {
  char buffer[64];
  auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, result.ptr);
}

bksvString escapePathName(const bksvString& name) {
  bksvString out;
  out.reserve(name.size());
  for (char16_t c : name) {
    out += c;
    if (c == u'/') out += u'/';
  }
  return out;
}

BKBlock::BKBlock(const BlockTypeInfo& type, bksvString name)
    : handle(issueHandle()), type(&type), name(std::move(name)) {
  const std::size_t slot = *slotOf(handle);
  if (liveBlocks().size() <= slot) liveBlocks().resize(slot + 1, nullptr);
  liveBlocks()[slot] = this;
  bkgg::noteStructureChange();
}

BKBlock::~BKBlock() {
  liveBlocks()[*slotOf(handle)] = nullptr;
  bkgg::noteStructureChange();
}

BKBlock* BKBlock::Handle2Block(double handle) {
  const std::optional<std::size_t> slot = slotOf(handle);
  return slot && *slot < liveBlocks().size() ? liveBlocks()[*slot] : nullptr;
}

bksvString BKBlock::getTypeName() const {
  return bksvString(type->name.begin(), type->name.end());
}

std::string BKBlock::getGrNameNonUnicode() const { return ConvertUStringToStdString(name); }

bksvString BKBlock::getFullPath(bool) const { return cachedPath; }

BKRootBD* BKBlock::getBlockDiagram() const { return graph ? graph->getBlockDiagram() : nullptr; }

const BKPrmDesc* BKBlock::getGrPrmDesc(const std::string& paramName) const {
  return type->findParam(paramName);
}

bool BKBlock::getGrPrmVisible(const BKPrmDesc* desc) const { return desc && desc->visible; }

const BlockParamValue* BKBlock::getParam(const std::string& paramName) const {
  for (const auto& [setName, value] : params)
    if (setName == paramName) return &value;
  const BKPrmDesc* desc = type->findParam(paramName);
  return desc ? &desc->initial : nullptr;
}

BlockParamValue* BKBlock::paramSlot(const std::string& paramName) {
  for (auto& [setName, value] : params)
    if (setName == paramName) return &value;
  const BKPrmDesc* desc = type->findParam(paramName);
  if (!desc) return nullptr;
  return &params.emplace_back(paramName, desc->initial).second;
}

bool BKBlock::RareFields::isInitial() const {
  return mask.type.empty() && mask.initialization.empty() && mask.parameterCount == 0 &&
         linkStatus == "none" && referenceBlock.empty();
}

const BKBlock::RareFields& BKBlock::initialRareFields() {
  static const RareFields initial;
  return initial;
}

std::string BKBlock::getParamText(const std::string& paramName) const {
  const BlockParamValue* value = getParam(paramName);
  if (!value)
    throw std::out_of_range(ConvertUStringToStdString(cachedPath) + ": block type " + type->name +
                            " has no parameter " + paramName);
  if (const auto* text = std::get_if<std::string>(value)) return *text;
  std::string out;
  for (const auto& record : std::get<BlockRecordList>(*value)) {
    if (!out.empty()) out += ';';
    bool first = true;
    for (const auto& [field, text] : record) {
      if (!first) out += ',';
      out += field + '=' + text;
      first = false;
    }
  }
  return out;
}

int BKBlock::getGrEnumPrmValue(int index) const {
  if (index < 0 || index >= static_cast<int>(type->params.size())) return -1;
  const BKPrmDesc& desc = type->params[index];
  if (desc.options.empty()) return -1;
  const auto* text = std::get_if<std::string>(getParam(desc.name));
  for (std::size_t i = 0; text && i < desc.options.size(); ++i)
    if (desc.options[i] == *text) return static_cast<int>(i);
  return -1;
}

std::string BKBlock::getGrParamValue(const BKBlock* block, int index, int) {
  if (!block || index < 0 || index >= static_cast<int>(block->type->params.size())) return {};
  return block->getParamText(block->type->params[index].name);
}

unsigned BKBlock::getPlatformFlags() const {
  return (showName ? 0x2u : 0u) | (namePlacementAlternate ? 0x4u : 0u);
}

bool BKBlock::IsChartelleBased() const {
  if (type->isChart) return true;
  const BKBlock* owner = graph ? graph->getOwner() : nullptr;
  return owner && owner->type->isChart;
}

BlockValue BKBlock::getProperty(const std::string& propName) const {
  if (const BlockParamValue* value = getParam(propName)) {
    if (const auto* text = std::get_if<std::string>(value)) return *text;
    return std::get<BlockRecordList>(*value);
  }
  if (propName == "ShowName") return std::string(showName ? "on" : "off");
  if (propName == "NamePlacement") return std::string(namePlacementAlternate ? "alternate" : "normal");
  if (propName == "Orientation") return std::string(kOrientations[orientation & 3]);
  if (propName == "Position") return std::vector<double>(position.begin(), position.end());
  const RareFields& r = rareFields();
  if (propName == "MaskType") return ConvertUStringToStdString(r.mask.type);
  if (propName == "MaskInitialization") return r.mask.initialization;
  if (propName == "MaskParameters") return static_cast<double>(r.mask.parameterCount);
  if (propName == "LinkStatus") return r.linkStatus;
  if (propName == "ReferenceBlock") return ConvertUStringToStdString(r.referenceBlock);
  throw std::invalid_argument(ConvertUStringToStdString(cachedPath) + ": block type " + type->name +
                              " has no property or parameter " + propName);
}

std::vector<std::string> BKBlock::propertyNames() const {
  std::vector<std::string> names;
  for (const auto& desc : type->params) names.push_back(desc.name);
  for (const char* common : {"ShowName", "NamePlacement", "Orientation", "Position", "MaskType",
                             "MaskInitialization", "MaskParameters", "LinkStatus", "ReferenceBlock"})
    names.emplace_back(common);
  return names;
}
