#include "host/model/blocklibrary.h"

#include <algorithm>
#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "host/prefs/directories.h"
#include "host/xml/xmlreader.h"

#ifndef BKETC_BLOCKLIBRARY_PATH
#define BKETC_BLOCKLIBRARY_PATH "resources/blocklibrary.xml"
#endif

namespace pt = boost::property_tree;

const BKPrmDesc* BlockTypeInfo::findParam(const std::string& paramName) const {
  for (const auto& desc : params)
    if (desc.name == paramName) return &desc;
  return nullptr;
}

int BlockTypeInfo::capability(int capabilityNumber) const {
  auto it = capabilities.find(capabilityNumber);
  return it == capabilities.end() ? 1 : it->second;
}

std::string BlockTypeInfo::footnote(const std::string& kind) const {
  auto it = footnotes.find(kind);
  return it == footnotes.end() ? std::string() : it->second;
}

BlockLibrary& BlockLibrary::instance() {
  static BlockLibrary* library = [] {
    auto* made = new BlockLibrary();  // lives for the process: blocks point into it
    made->load(defaultPath());
    return made;
  }();
  return *library;
}

std::string BlockLibrary::defaultPath() {
  if (const char* path = std::getenv("BLOCKARA_BLOCKLIBRARY"); path && *path) return path;
  // An installed host finds its library under the installation root its program set.
  const std::filesystem::path underRoot = std::filesystem::path(svNumeriaRoot()) / "blocklibrary.xml";
  std::error_code error;
  if (std::filesystem::is_regular_file(underRoot, error)) return underRoot.string();
  return BKETC_BLOCKLIBRARY_PATH;
}

void BlockLibrary::load(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error(path + ": cannot open the block library file");
  std::stringstream text;
  text << in.rdbuf();
  loadFromString(text.str(), path);
}

namespace {

int toInt(const std::string& text, const std::string& origin, const std::string& what) {
  try {
    std::size_t used = 0;
    int value = std::stoi(text, &used);
    if (used == text.size()) return value;
  } catch (const std::exception&) {
  }
  throw std::runtime_error(origin + ": " + what + " is not an integer: \"" + text + "\"");
}

}  // namespace

void BlockLibrary::loadFromString(const std::string& xml, const std::string& origin) {
  pt::ptree tree;
  try {
    tree = blockara::xml::readString(xml, origin, pt::xml_parser::trim_whitespace);
  } catch (const pt::xml_parser_error& e) {
    const std::string line = e.line() > 0 ? ":" + std::to_string(e.line()) : "";
    throw std::runtime_error(origin + line + ": " + e.message());
  }
  auto root = tree.get_child_optional("BlockLibrary");
  if (!root) throw std::runtime_error(origin + ": the root element is not <BlockLibrary>");
  std::map<std::string, std::shared_ptr<const BlockTypeInfo>> loaded;
  for (const auto& [tag, node] : *root) {
    if (tag != "BlockType") continue;
    auto info = std::make_shared<BlockTypeInfo>();
    info->name = node.get<std::string>("<xmlattr>.Name", "");
    if (info->name.empty()) throw std::runtime_error(origin + ": a BlockType has no Name");
    const std::string where = "block type " + info->name;
    info->code = toInt(node.get<std::string>("<xmlattr>.Code", ""), origin, where + " Code");
    info->hasSystem = node.get<std::string>("<xmlattr>.System", "off") == "on";
    info->isChart = node.get<std::string>("<xmlattr>.Chart", "off") == "on";
    for (const auto& [childTag, child] : node) {
      if (childTag == "Param") {
        BKPrmDesc desc;
        desc.name = child.get<std::string>("<xmlattr>.Name", "");
        if (desc.name.empty()) throw std::runtime_error(origin + ": " + where + ": a Param has no Name");
        desc.index = static_cast<int>(info->params.size());
        desc.typeCode = toInt(child.get<std::string>("<xmlattr>.Type", "1"), origin,
                              where + " parameter " + desc.name + " Type");
        desc.defaultValue = child.get<std::string>("<xmlattr>.Default", "");
        desc.visible = child.get<std::string>("<xmlattr>.Visible", "on") == "on";
        for (const auto& [optionTag, option] : child)
          if (optionTag == "Option") desc.options.push_back(option.data());
        if (!desc.options.empty() &&
            std::find(desc.options.begin(), desc.options.end(), desc.defaultValue) ==
                desc.options.end())
          throw std::runtime_error(origin + ": " + where + " parameter " + desc.name +
                                   ": default \"" + desc.defaultValue + "\" is not an option");
        if (info->findParam(desc.name))
          throw std::runtime_error(origin + ": " + where + ": parameter " + desc.name + " twice");
        if (desc.typeCode == BKPRM_RECORDS)
          desc.initial = BlockRecordList{};
        else
          desc.initial = desc.defaultValue;
        info->params.push_back(std::move(desc));
      } else if (childTag == "Capability") {
        int number = toInt(child.get<std::string>("<xmlattr>.Number", ""), origin, where + " capability");
        info->capabilities[number] =
            toInt(child.get<std::string>("<xmlattr>.Support", ""), origin, where + " support");
      } else if (childTag == "Footnote") {
        info->footnotes[child.get<std::string>("<xmlattr>.Kind", "")] = child.data();
      }
    }
    if (!loaded.emplace(info->name, info).second)
      throw std::runtime_error(origin + ": block type " + info->name + " defined twice");
  }
  if (loaded.empty()) throw std::runtime_error(origin + ": the library defines no block type");
  for (auto& [name, type] : types) retired.push_back(type);
  types = std::move(loaded);
}

const BlockTypeInfo* BlockLibrary::find(const std::string& name) const {
  static const std::string prefix = "built-in/";
  std::string key = name.rfind(prefix, 0) == 0 ? name.substr(prefix.size()) : name;
  auto it = types.find(key);
  return it == types.end() ? nullptr : it->second.get();
}

const BlockTypeInfo* BlockLibrary::findByCode(int code) const {
  for (const auto& [name, type] : types)
    if (type->code == code) return type.get();
  return nullptr;
}

std::vector<std::string> BlockLibrary::typeNames() const {
  std::vector<std::string> names;
  for (const auto& [name, type] : types) names.push_back(name);
  return names;
}
