#include "host/model/bkdfile.h"

#include <algorithm>
#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <set>
#include <sstream>

#include "host/model/bkgraph.h"
#include "host/model/bkrootbd.h"
#include "host/model/blockmutator.h"
#include "host/xml/xmlreader.h"

namespace pt = boost::property_tree;

namespace blockara {
namespace {

std::string u8(const bksvString& s) { return ConvertUStringToStdString(s); }

void writeRecords(pt::ptree& node, const BlockRecordList& records) {
  for (const auto& record : records) {
    pt::ptree& r = node.add("Record", "");
    for (const auto& [field, value] : record) {
      pt::ptree& f = r.add("Field", value);
      f.put("<xmlattr>.Name", field);
    }
  }
}

void writeValue(pt::ptree& parent, const char* tag, const std::string& name, const BlockValue& value) {
  pt::ptree& p = parent.add(tag, "");
  p.put("<xmlattr>.Name", name);
  if (const auto* text = std::get_if<std::string>(&value)) {
    p.put_value(*text);
  } else if (const auto* number = std::get_if<double>(&value)) {
    p.put_value(formatNumber(*number));
  } else if (const auto* on = std::get_if<bool>(&value)) {
    p.put_value(std::string(*on ? "on" : "off"));
  } else if (const auto* numbers = std::get_if<std::vector<double>>(&value)) {
    std::string joined;
    for (double n : *numbers) joined += (joined.empty() ? "" : " ") + formatNumber(n);
    p.put_value(joined);
  } else {
    writeRecords(p, std::get<BlockRecordList>(value));
  }
}

void writeSystem(pt::ptree& parent, const bkGraph& graph) {
  pt::ptree& system = parent.add("System", "");
  for (std::size_t i = 0; i < graph.size(); ++i) {
    const BKBlock* block = graph.blockAt(i);
    pt::ptree& b = system.add("Block", "");
    b.put("<xmlattr>.Type", block->getType().name);
    b.put("<xmlattr>.Name", u8(block->getName()));
    b.put("<xmlattr>.SID", block->getBlockId());
    b.put("<xmlattr>.Comment", block->getCommentState());
    for (const auto& name : block->propertyNames()) writeValue(b, "P", name, block->getProperty(name));
    if (const bkGraph* inside = block->getSubGraph()) writeSystem(b, *inside);
  }
}

std::function<void(const std::string&)>& warningHandler() {
  static std::function<void(const std::string&)> handler = [](const std::string& line) {
    std::cerr << line << "\n";
  };
  return handler;
}

// What one element may hold. Children in `once` may appear at most once: a second one would
// otherwise be dropped without a word.
struct Shape {
  std::initializer_list<const char*> attributes;
  std::initializer_list<const char*> children;
  std::initializer_list<const char*> once;
  bool text = false;  // whether the element's text is its value
};

bool among(const std::string& name, std::initializer_list<const char*> names) {
  return std::any_of(names.begin(), names.end(), [&](const char* n) { return name == n; });
}

bool isBlank(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isspace(c); });
}

struct Reader {
  const std::string& origin;
  const std::string& text;
  pt::ptree document;
  std::set<int> sids;
  std::unique_ptr<xml::ElementLocator> locator;  // made at the first message that needs a line
  // Each warning with its first line and number of occurrences, in the order first seen.
  struct Warning {
    std::string problem;
    std::size_t line;
    int count;
  };
  std::vector<Warning> warnings;
  std::map<std::string, std::size_t> warningIndex;  // problem -> index in warnings

  [[noreturn]] void fail(const std::string& problem) { throw ModelFileError(origin, 0, problem); }

  std::size_t lineOf(const pt::ptree& element) {
    if (!locator) locator = std::make_unique<xml::ElementLocator>(text, document);
    return locator->lineOf(element);
  }

  [[noreturn]] void failAt(const pt::ptree& element, const std::string& problem) {
    throw ModelFileError(origin, static_cast<int>(lineOf(element)), problem);
  }

  void warnAt(const pt::ptree& element, const std::string& problem) {
    auto [it, added] = warningIndex.emplace(problem, warnings.size());
    if (added) {
      warnings.push_back({problem, lineOf(element), 1});
    } else {
      ++warnings[it->second].count;
    }
  }

  // Refuses what would be lost or ambiguous in `node` (a repeated attribute, a second child of
  // a kind that may appear once) and warns about what the reader passes over (unknown
  // attributes and elements, text where none is read).
  // Runs once per element of the file, so it allocates nothing on the way of a good file.
  void inspect(const pt::ptree& node, const std::string& tag, const Shape& shape) {
    unsigned seenOnce = 0;  // bit i: a child named shape.once[i] was seen
    for (const auto& [key, child] : node) {
      if (key == "<xmlattr>") {
        for (const auto& [name, value] : child) {
          if (child.count(name) > 1)
            failAt(node, "<" + tag + "> has the attribute " + name + " twice");
          if (!among(name, shape.attributes))
            warnAt(node, "unknown attribute " + name + " of <" + tag + "> passed over");
        }
      } else if (key == "<xmlcomment>") {
        continue;
      } else if (among(key, shape.children)) {
        unsigned bit = 1;
        for (const char* once : shape.once) {
          if (key == once) {
            if (seenOnce & bit) failAt(child, "a second <" + key + "> in <" + tag + ">");
            seenOnce |= bit;
          }
          bit <<= 1;
        }
      } else {
        warnAt(child, "unknown element <" + key + "> in <" + tag + "> passed over");
      }
    }
    if (!shape.text && !isBlank(node.data())) warnAt(node, "text inside <" + tag + "> passed over");
  }

  int toInt(const pt::ptree& node, const std::string& text, const std::string& what) {
    try {
      std::size_t used = 0;
      int value = std::stoi(text, &used);
      if (used == text.size()) return value;
    } catch (const std::exception&) {
    }
    failAt(node, what + ": \"" + text + "\" is not an integer");
  }

  BlockRecordList readRecords(const pt::ptree& node) {
    BlockRecordList records;
    for (const auto& [tag, r] : node) {
      if (tag != "Record") continue;
      inspect(r, "Record", {{}, {"Field"}, {}});
      BlockRecord record;
      for (const auto& [ftag, f] : r) {
        if (ftag != "Field") continue;
        inspect(f, "Field", {{"Name"}, {}, {}, true});
        const std::string name = f.get<std::string>("<xmlattr>.Name", "");
        if (name.empty()) failAt(f, "a <Field> without a Name");
        if (!record.emplace(name, f.data()).second)
          failAt(f, "the field \"" + name + "\" is given twice in one record");
      }
      records.push_back(std::move(record));
    }
    return records;
  }

  BlockValue readValue(const BKBlock& block, const std::string& name, const pt::ptree& p) {
    const BKPrmDesc* desc = block.getGrPrmDesc(name);
    if (desc && desc->typeCode == BKPRM_RECORDS) {
      inspect(p, "P", {{"Name"}, {"Record"}, {}});
      return readRecords(p);
    }
    inspect(p, "P", {{"Name"}, {}, {}, true});
    if (name == "Position") {
      std::istringstream in(p.data());
      std::vector<double> numbers;
      double n;
      while (in >> n) numbers.push_back(n);
      if (!in.eof() || numbers.size() != 4)
        failAt(p, u8(block.getFullPath()) + ": Position \"" + p.data() + "\" is not four numbers");
      return numbers;
    }
    return p.data();
  }

  void readSystem(BKRootBD& diagram, bkGraph& graph, const pt::ptree& system) {
    inspect(system, "System", {{}, {"Block"}, {}});
    for (const auto& [tag, b] : system) {
      if (tag != "Block") continue;
      inspect(b, "Block", {{"Type", "Name", "SID", "Comment"}, {"P", "System"}, {"System"}});
      std::string typeName = b.get<std::string>("<xmlattr>.Type", "");
      bksvString name = i18n::to_u16string(b.get<std::string>("<xmlattr>.Name", ""));
      std::string where = u8(graph.getFullPath()) + "/" + u8(escapePathName(name));
      const BlockTypeInfo* type = BlockLibrary::instance().find(typeName);
      if (!type) failAt(b, "block " + where + ": unknown block type \"" + typeName + "\"");
      if (name.empty()) failAt(b, "a block in " + u8(graph.getFullPath()) + " has no name");
      if (diagram.findBlock(graph.getFullPath() + u'/' + escapePathName(name)))
        failAt(b, "block " + where + ": the name is used twice in its system");
      int sid = toInt(b, b.get<std::string>("<xmlattr>.SID", ""), "block " + where + " SID");
      if (sid <= 0 || !sids.insert(sid).second)
        failAt(b,
               "block " + where + ": SID " + std::to_string(sid) + " is not a new positive number");
      int comment =
          toInt(b, b.get<std::string>("<xmlattr>.Comment", "0"), "block " + where + " Comment");
      if (comment < 0 || comment > 2) failAt(b, "block " + where + ": Comment must be 0, 1 or 2");
      std::unique_ptr<BKBlock> block = BlockMutator::makeBlock(*type, name);
      BlockMutator::setPendingPath(*block, graph.getFullPath());
      BlockMutator::setSID(*block, sid);
      BlockMutator::setCommentState(*block, comment);
      const pt::ptree* inside = nullptr;
      std::set<std::string> given;
      for (const auto& [ptag, p] : b) {
        if (ptag == "P") {
          std::string prop = p.get<std::string>("<xmlattr>.Name", "");
          if (prop.empty()) failAt(p, "block " + where + ": a <P> without a Name");
          if (!given.insert(prop).second)
            failAt(p, "block " + where + ": the property " + prop + " is given twice");
          try {
            BlockMutator::set(*block, prop, readValue(*block, prop, p));
          } catch (const std::invalid_argument& e) {
            failAt(p, e.what());
          }
        } else if (ptag == "System") {
          if (!block->getSubGraph())
            failAt(p, "block " + where + ": a " + typeName + " has no system");
          inside = &p;
        }
      }
      BKBlock* placed = BlockMutator::insert(diagram, graph, std::move(block), graph.size());
      if (inside) readSystem(diagram, *placed->getSubGraph(), *inside);
    }
  }

  void readConfigSets(BKRootBD& diagram, const pt::ptree& sets) {
    inspect(sets, "ConfigSets", {{"Active"}, {"ConfigSet"}, {}});
    diagram.configSets().clear();
    for (const auto& [tag, s] : sets) {
      if (tag != "ConfigSet") continue;
      inspect(s, "ConfigSet", {{"Name"}, {"Param"}, {}});
      ConfigSet set(s.get<std::string>("<xmlattr>.Name", "Configuration"));
      std::set<std::string> given;
      for (const auto& [ptag, p] : s) {
        if (ptag != "Param") continue;
        std::string pname = p.get<std::string>("<xmlattr>.Name", "");
        if (pname.empty())
          failAt(p, "configuration set " + set.getName() + ": a <Param> without a Name");
        if (!given.insert(pname).second)
          failAt(p, "configuration set " + set.getName() + ": the parameter " + pname +
                        " is given twice");
        if (p.count("Record")) {
          inspect(p, "Param", {{"Name"}, {"Record"}, {}});
          set.setProp(pname, readRecords(p));
        } else {
          inspect(p, "Param", {{"Name"}, {}, {}, true});
          set.setProp(pname, p.data());
        }
      }
      diagram.configSets().push_back(std::move(set));
    }
    std::string active = sets.get<std::string>("<xmlattr>.Active", "none");
    if (active == "none") {
      diagram.setActiveConfigSet(std::nullopt);
    } else {
      int index = toInt(sets, active, "ConfigSets Active");
      if (index < 0 || index >= static_cast<int>(diagram.configSets().size()))
        failAt(sets, "ConfigSets Active " + active + " names no configuration set");
      diagram.setActiveConfigSet(static_cast<std::size_t>(index));
    }
  }

  std::unique_ptr<BKRootBD> read() {
    try {
      document = xml::readString(text, origin);
    } catch (const pt::xml_parser_error& e) {
      throw ModelFileError(origin, static_cast<int>(e.line()), e.message());
    }
    inspect(document, "document", {{}, {"BlockDiagram"}, {"BlockDiagram"}});
    auto found = document.find("BlockDiagram");
    if (found == document.not_found()) fail("the root element is not <BlockDiagram>");
    const pt::ptree& root = found->second;
    inspect(root, "BlockDiagram",
            {{"Name", "Kind", "NextSID", "EditFlags", "Suspended"},
             {"ExclusionFile", "ConfigSets", "System"},
             {"ExclusionFile", "ConfigSets", "System"}});
    bksvString name = i18n::to_u16string(root.get<std::string>("<xmlattr>.Name", ""));
    if (name.empty() || name.find(u'/') != bksvString::npos)
      failAt(root, "the diagram name \"" + u8(name) + "\" is empty or contains \"/\"");
    std::string kind = root.get<std::string>("<xmlattr>.Kind", "model");
    if (kind != "model" && kind != "library")
      failAt(root, "Kind \"" + kind + "\" is not model or library");
    auto diagram = std::make_unique<BKRootBD>(name, kind == "library" ? BKRootBD::Library : BKRootBD::Model);
    long long flags = 0;
    try {
      flags = std::stoll(root.get<std::string>("<xmlattr>.EditFlags", "0"));
    } catch (const std::exception&) {
      failAt(root, "EditFlags is not a number");
    }
    if (flags < 0 || flags > 0xFFFFFFFFLL) failAt(root, "EditFlags is out of range");
    diagram->editParams().flags = static_cast<std::uint32_t>(flags);
    std::string suspended = root.get<std::string>("<xmlattr>.Suspended", "off");
    if (suspended != "on" && suspended != "off")
      failAt(root, "Suspended \"" + suspended + "\" is not on or off");
    diagram->setSuspended(suspended == "on");
    if (auto file = root.get_child_optional("ExclusionFile")) {
      inspect(*file, "ExclusionFile", {{}, {}, {}, true});
      diagram->setExclusionFilePath(i18n::to_u16string(file->data()));
    }
    if (auto sets = root.get_child_optional("ConfigSets")) readConfigSets(*diagram, *sets);
    if (auto system = root.get_child_optional("System"))
      readSystem(*diagram, *diagram->getRootGraph(), *system);
    int next = toInt(root, root.get<std::string>("<xmlattr>.NextSID", "1"), "NextSID");
    if (next > diagram->peekNextSID()) diagram->setNextSID(next);
    return diagram;
  }

  // Called once the whole file was read: a file that is refused gives one message only.
  void reportWarnings() const {
    constexpr std::size_t shown = 20;
    for (std::size_t i = 0; i < warnings.size() && i < shown; ++i) {
      const Warning& w = warnings[i];
      std::string line =
          origin + (w.line > 0 ? ":" + std::to_string(w.line) : "") + ": warning: " + w.problem;
      if (w.count > 1) line += " (and " + std::to_string(w.count - 1) + " more like it)";
      warningHandler()(line);
    }
    if (warnings.size() > shown) {
      warningHandler()(origin + ": warning: " + std::to_string(warnings.size() - shown) +
                       " further kinds of content passed over");
    }
  }
};

}  // namespace

ModelFileError::ModelFileError(const std::string& file, int line, const std::string& problem)
    : std::runtime_error(file + (line > 0 ? ":" + std::to_string(line) : "") + ": " + problem),
      fileName(file),
      lineNumber(line) {}

std::string writeDiagramXml(const BKRootBD& diagram) {
  pt::ptree tree;
  pt::ptree& root = tree.add("BlockDiagram", "");
  root.put("<xmlattr>.Name", u8(diagram.getName()));
  root.put("<xmlattr>.Kind", diagram.isLibrary() ? "library" : "model");
  root.put("<xmlattr>.NextSID", diagram.peekNextSID());
  root.put("<xmlattr>.EditFlags", diagram.editParams().flags);
  root.put("<xmlattr>.Suspended", diagram.isSuspended() ? "on" : "off");
  if (!diagram.getExclusionFilePath().empty())
    root.put("ExclusionFile", u8(diagram.getExclusionFilePath()));
  pt::ptree& sets = root.add("ConfigSets", "");
  auto active = diagram.activeConfigSetIndex();
  sets.put("<xmlattr>.Active", active ? std::to_string(*active) : std::string("none"));
  for (const auto& set : diagram.configSets()) {
    pt::ptree& s = sets.add("ConfigSet", "");
    s.put("<xmlattr>.Name", set.getName());
    for (const auto& [name, value] : set.props()) {
      if (const auto* text = std::get_if<std::string>(&value))
        writeValue(s, "Param", name, *text);
      else
        writeValue(s, "Param", name, std::get<BlockRecordList>(value));
    }
  }
  writeSystem(root, *diagram.getRootGraph());
  std::ostringstream out;
  pt::write_xml(out, tree, pt::xml_writer_make_settings<std::string>(' ', 2));
  return out.str();
}

void setModelFileWarningHandler(std::function<void(const std::string&)> handler) {
  warningHandler() = std::move(handler);
}

BKRootBD* readDiagramXml(const std::string& xml, const std::string& origin) {
  Reader reader{origin, xml, {}, {}, {}, {}, {}};
  std::unique_ptr<BKRootBD> diagram = reader.read();
  BKRootBD* opened = nullptr;
  try {
    opened = bkBlockDiagramSet::adopt(std::move(diagram));
  } catch (const std::invalid_argument& e) {
    throw ModelFileError(origin, 0, e.what());
  }
  reader.reportWarnings();
  return opened;
}

void saveBkd(BKRootBD& diagram, const std::string& path) {
  std::string xml = writeDiagramXml(diagram);
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  if (!out) throw ModelFileError(path, 0, "cannot open the file for writing");
  out << xml;
  out.close();
  if (!out) throw ModelFileError(path, 0, "writing the file failed");
  diagram.setFilePath(path);
}

BKRootBD* loadBkd(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw ModelFileError(path, 0, "cannot open the file for reading");
  // A file over the size limit is refused before it is read into memory.
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (!error && size > xml::limits().maxBytes) {
    throw ModelFileError(path, 0,
                         "the text has " + std::to_string(size) + " bytes, more than " +
                             std::to_string(xml::limits().maxBytes));
  }
  std::stringstream text;
  text << in.rdbuf();
  if (in.bad()) throw ModelFileError(path, 0, "reading the file failed");
  BKRootBD* diagram = readDiagramXml(text.str(), path);
  diagram->setFilePath(path);
  return diagram;
}

}  // namespace blockara
