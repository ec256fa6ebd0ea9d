#include "host/language/messagecatalog.h"

#include <cstdlib>
#include <stdexcept>

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>

#include "host/xml/xmlreader.h"

namespace bkmsg {

MessageCatalog& MessageCatalog::instance() {
  static MessageCatalog* catalog = [] {
    auto* c = new MessageCatalog();
    std::vector<std::filesystem::path> candidates;
    if (const char* root = std::getenv("BLOCKARA_ROOT")) candidates.emplace_back(root);
#ifdef BLOCKARA_DEFAULT_ROOT
    candidates.emplace_back(BLOCKARA_DEFAULT_ROOT);
#endif
    for (const auto& dir : candidates) {
      std::error_code ec;
      if (std::filesystem::is_regular_file(dir / "messages.xml", ec)) {
        try {
          c->load(dir / "messages.xml");
        } catch (const std::exception&) {
          // A broken installed catalogue leaves the identifiers without texts; errors still show
          // their identifiers and arguments.
        }
        break;
      }
    }
    return c;
  }();
  return *catalog;
}

void MessageCatalog::load(const std::filesystem::path& file) {
  namespace pt = boost::property_tree;
  pt::ptree tree;
  try {
    tree = blockara::xml::readFile(file, pt::xml_parser::no_comments);
  } catch (const pt::xml_parser_error& e) {
    throw std::runtime_error(file.string() + ": cannot read message catalogue: " + e.message() +
                             " (line " + std::to_string(e.line()) + ")");
  }
  std::map<std::string, std::string> added;
  const auto catalogue = tree.get_child_optional("catalogue");
  if (!catalogue) throw std::runtime_error(file.string() + ": no <catalogue> element");
  for (const auto& [tag, component] : *catalogue) {
    if (tag != "component") continue;
    const std::string name = component.get<std::string>("<xmlattr>.name", "");
    if (name.empty()) throw std::runtime_error(file.string() + ": <component> without a name");
    for (const auto& [mtag, msg] : component) {
      if (mtag != "message") continue;
      const std::string id = msg.get<std::string>("<xmlattr>.id", "");
      if (id.empty()) {
        throw std::runtime_error(file.string() + ": <message> without an id in component " + name);
      }
      added[name + ":" + id] = msg.data();
    }
  }
  std::lock_guard<std::mutex> lock(mutex);
  for (auto& [k, v] : added) texts[k] = std::move(v);
}

std::string MessageCatalog::text(const std::string& identifier) const {
  std::lock_guard<std::mutex> lock(mutex);
  auto it = texts.find(identifier);
  return it == texts.end() ? std::string() : it->second;
}

bool MessageCatalog::contains(const std::string& identifier) const {
  std::lock_guard<std::mutex> lock(mutex);
  return texts.count(identifier) > 0;
}

std::string MessageCatalog::format(const std::string& identifier,
                                   const std::vector<std::string>& args) const {
  if (contains(identifier)) return substitute(text(identifier), args);
  std::string joined;
  for (const auto& a : args) joined += (joined.empty() ? "" : ", ") + a;
  return joined;
}

std::vector<std::string> MessageCatalog::identifiers() const {
  std::lock_guard<std::mutex> lock(mutex);
  std::vector<std::string> ids;
  for (const auto& [k, v] : texts) ids.push_back(k);
  return ids;
}

std::string MessageCatalog::substitute(const std::string& pattern,
                                       const std::vector<std::string>& args) {
  std::string out;
  std::size_t i = 0;
  while (i < pattern.size()) {
    if (pattern[i] == '{') {
      std::size_t close = pattern.find('}', i + 1);
      if (close != std::string::npos && close > i + 1 && close - i <= 4) {
        std::string digits = pattern.substr(i + 1, close - i - 1);
        bool numeric = digits.find_first_not_of("0123456789") == std::string::npos;
        if (numeric) {
          std::size_t n = std::stoul(digits);
          if (n < args.size()) {
            out += args[n];
            i = close + 1;
            continue;
          }
        }
      }
    }
    out += pattern[i++];
  }
  return out;
}

}  // namespace bkmsg
