#include "host/model/bkdfile.h"

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <fstream>
#include <set>
#include <sstream>

#include "host/model/bkgraph.h"
#include "host/model/bkrootbd.h"
#include "host/model/blockmutator.h"

namespace pt = boost::property_tree;

namespace blockara {
namespace {

constexpr int kMaxDepth = 500;

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

// A cheap pre-pass that bounds element nesting, so that hostile input cannot exhaust the stack
// of the recursive parser.
void checkDepth(const std::string& xml, const std::string& origin) {
  int depth = 0, line = 1;
  for (std::size_t i = 0; i + 1 < xml.size(); ++i) {
    if (xml[i] == '\n') ++line;
    if (xml[i] != '<') continue;
    char next = xml[i + 1];
    if (next == '/') {
      --depth;
    } else if (next != '?' && next != '!') {
      std::size_t close = xml.find('>', i);
      bool selfClosing = close != std::string::npos && close > 0 && xml[close - 1] == '/';
      if (!selfClosing && ++depth > kMaxDepth)
        throw ModelFileError(origin, line, "elements nested deeper than " + std::to_string(kMaxDepth));
    }
  }
}

struct Reader {
  const std::string& origin;
  std::set<int> sids;

  [[noreturn]] void fail(const std::string& problem) { throw ModelFileError(origin, 0, problem); }

  int toInt(const std::string& text, const std::string& what) {
    try {
      std::size_t used = 0;
      int value = std::stoi(text, &used);
      if (used == text.size()) return value;
    } catch (const std::exception&) {
    }
    fail(what + ": \"" + text + "\" is not an integer");
  }

  BlockRecordList readRecords(const pt::ptree& node) {
    BlockRecordList records;
    for (const auto& [tag, r] : node) {
      if (tag != "Record") continue;
      BlockRecord record;
      for (const auto& [ftag, f] : r)
        if (ftag == "Field") record[f.get<std::string>("<xmlattr>.Name", "")] = f.data();
      records.push_back(std::move(record));
    }
    return records;
  }

  BlockValue readValue(const BKBlock& block, const std::string& name, const pt::ptree& p) {
    const BKPrmDesc* desc = block.getGrPrmDesc(name);
    if (desc && desc->typeCode == BKPRM_RECORDS) return readRecords(p);
    if (name == "Position") {
      std::istringstream in(p.data());
      std::vector<double> numbers;
      double n;
      while (in >> n) numbers.push_back(n);
      if (!in.eof() || numbers.size() != 4)
        fail(u8(block.getFullPath()) + ": Position \"" + p.data() + "\" is not four numbers");
      return numbers;
    }
    return p.data();
  }

  void readSystem(BKRootBD& diagram, bkGraph& graph, const pt::ptree& system) {
    for (const auto& [tag, b] : system) {
      if (tag != "Block") continue;
      std::string typeName = b.get<std::string>("<xmlattr>.Type", "");
      bksvString name = i18n::to_u16string(b.get<std::string>("<xmlattr>.Name", ""));
      std::string where = u8(graph.getFullPath()) + "/" + u8(escapePathName(name));
      const BlockTypeInfo* type = BlockLibrary::instance().find(typeName);
      if (!type) fail("block " + where + ": unknown block type \"" + typeName + "\"");
      if (name.empty()) fail("a block in " + u8(graph.getFullPath()) + " has no name");
      if (diagram.findBlock(graph.getFullPath() + u'/' + escapePathName(name)))
        fail("block " + where + ": the name is used twice in its system");
      int sid = toInt(b.get<std::string>("<xmlattr>.SID", ""), "block " + where + " SID");
      if (sid <= 0 || !sids.insert(sid).second)
        fail("block " + where + ": SID " + std::to_string(sid) + " is not a new positive number");
      int comment = toInt(b.get<std::string>("<xmlattr>.Comment", "0"), "block " + where + " Comment");
      if (comment < 0 || comment > 2) fail("block " + where + ": Comment must be 0, 1 or 2");
      std::unique_ptr<BKBlock> block = BlockMutator::makeBlock(*type, name);
      BlockMutator::setPendingPath(*block, graph.getFullPath());
      BlockMutator::setSID(*block, sid);
      BlockMutator::setCommentState(*block, comment);
      const pt::ptree* inside = nullptr;
      for (const auto& [ptag, p] : b) {
        if (ptag == "P") {
          std::string prop = p.get<std::string>("<xmlattr>.Name", "");
          try {
            BlockMutator::set(*block, prop, readValue(*block, prop, p));
          } catch (const std::invalid_argument& e) {
            fail(e.what());
          }
        } else if (ptag == "System") {
          if (!block->getSubGraph()) fail("block " + where + ": a " + typeName + " has no system");
          inside = &p;
        }
      }
      BKBlock* placed = BlockMutator::insert(diagram, graph, std::move(block), graph.size());
      if (inside) readSystem(diagram, *placed->getSubGraph(), *inside);
    }
  }

  std::unique_ptr<BKRootBD> read(const std::string& xml) {
    checkDepth(xml, origin);
    pt::ptree tree;
    std::istringstream in(xml);
    try {
      pt::read_xml(in, tree);
    } catch (const pt::xml_parser_error& e) {
      throw ModelFileError(origin, static_cast<int>(e.line()), e.message());
    }
    auto root = tree.get_child_optional("BlockDiagram");
    if (!root) fail("the root element is not <BlockDiagram>");
    bksvString name = i18n::to_u16string(root->get<std::string>("<xmlattr>.Name", ""));
    if (name.empty() || name.find(u'/') != bksvString::npos)
      fail("the diagram name \"" + u8(name) + "\" is empty or contains \"/\"");
    std::string kind = root->get<std::string>("<xmlattr>.Kind", "model");
    if (kind != "model" && kind != "library") fail("Kind \"" + kind + "\" is not model or library");
    auto diagram = std::make_unique<BKRootBD>(name, kind == "library" ? BKRootBD::Library : BKRootBD::Model);
    long long flags = 0;
    try {
      flags = std::stoll(root->get<std::string>("<xmlattr>.EditFlags", "0"));
    } catch (const std::exception&) {
      fail("EditFlags is not a number");
    }
    if (flags < 0 || flags > 0xFFFFFFFFLL) fail("EditFlags is out of range");
    diagram->editParams().flags = static_cast<std::uint32_t>(flags);
    diagram->setSuspended(root->get<std::string>("<xmlattr>.Suspended", "off") == "on");
    diagram->setExclusionFilePath(i18n::to_u16string(root->get<std::string>("ExclusionFile", "")));
    if (auto sets = root->get_child_optional("ConfigSets")) {
      diagram->configSets().clear();
      for (const auto& [tag, s] : *sets) {
        if (tag != "ConfigSet") continue;
        ConfigSet set(s.get<std::string>("<xmlattr>.Name", "Configuration"));
        for (const auto& [ptag, p] : s) {
          if (ptag != "Param") continue;
          std::string pname = p.get<std::string>("<xmlattr>.Name", "");
          if (p.count("Record"))
            set.setProp(pname, readRecords(p));
          else
            set.setProp(pname, p.data());
        }
        diagram->configSets().push_back(std::move(set));
      }
      std::string active = sets->get<std::string>("<xmlattr>.Active", "none");
      if (active == "none") {
        diagram->setActiveConfigSet(std::nullopt);
      } else {
        int index = toInt(active, "ConfigSets Active");
        if (index < 0 || index >= static_cast<int>(diagram->configSets().size()))
          fail("ConfigSets Active " + active + " names no configuration set");
        diagram->setActiveConfigSet(static_cast<std::size_t>(index));
      }
    }
    if (auto system = root->get_child_optional("System"))
      readSystem(*diagram, *diagram->getRootGraph(), *system);
    int next = toInt(root->get<std::string>("<xmlattr>.NextSID", "1"), "NextSID");
    if (next > diagram->peekNextSID()) diagram->setNextSID(next);
    return diagram;
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

BKRootBD* readDiagramXml(const std::string& xml, const std::string& origin) {
  Reader reader{origin, {}};
  std::unique_ptr<BKRootBD> diagram = reader.read(xml);
  try {
    return bkBlockDiagramSet::adopt(std::move(diagram));
  } catch (const std::invalid_argument& e) {
    throw ModelFileError(origin, 0, e.what());
  }
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
  std::stringstream text;
  text << in.rdbuf();
  if (in.bad()) throw ModelFileError(path, 0, "reading the file failed");
  BKRootBD* diagram = readDiagramXml(text.str(), path);
  diagram->setFilePath(path);
  return diagram;
}

}  // namespace blockara
