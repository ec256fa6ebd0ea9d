#include "host/xml/xmlreader.h"

#include <algorithm>
#include <atomic>
#include <boost/property_tree/xml_parser.hpp>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <unordered_map>
#include <vector>

namespace blockara::xml {
namespace {

namespace pt = boost::property_tree;

std::atomic<int> depthLimit{Limits{}.maxDepth};
std::atomic<std::size_t> byteLimit{Limits{}.maxBytes};

std::size_t lineAt(const std::string& text, std::size_t offset) {
  return 1 + static_cast<std::size_t>(std::count(text.begin(), text.begin() + offset, '\n'));
}

enum class Tag { start, end, empty };

// Visits the tags of `text` in document order with their kind and offset, without recursion.
// Markup the reader skips whole (comments, CDATA sections, processing instructions,
// declarations) is skipped here too, never further than the reader skips it, so that no start
// tag the reader could take is missed. Anything else malformed is left for the reader to refuse.
template <typename Visit>
void forEachTag(const std::string& text, Visit visit) {
  std::size_t i = 0;
  const auto skipPast = [&](const char* end) {
    const std::size_t at = text.find(end, i);
    i = at == std::string::npos ? text.size() : at + std::char_traits<char>::length(end);
  };
  while ((i = text.find('<', i)) != std::string::npos) {
    const std::size_t start = i;
    if (text.compare(i, 4, "<!--") == 0) {
      skipPast("-->");
    } else if (text.compare(i, 9, "<![CDATA[") == 0) {
      skipPast("]]>");
    } else if (text.compare(i, 2, "<?") == 0) {
      skipPast("?>");
    } else if (text.compare(i, 2, "<!") == 0) {
      // Ends at its first '>', never later than the reader ends a document type declaration.
      skipPast(">");
    } else if (text.compare(i, 2, "</") == 0) {
      skipPast(">");
      visit(Tag::end, start);
    } else {
      char quote = 0;
      std::size_t j = i + 1;
      for (; j < text.size(); ++j) {
        const char c = text[j];
        if (quote) {
          if (c == quote) quote = 0;
        } else if (c == '"' || c == '\'') {
          quote = c;
        } else if (c == '>') {
          break;
        }
      }
      i = j + 1;
      visit(j < text.size() && text[j - 1] == '/' ? Tag::empty : Tag::start, start);
    }
  }
}

// Throws at the first element that goes deeper than `maxDepth`. The count never drops below
// zero, so it is never lower than the depth the reader reaches.
void refuseDeepNesting(const std::string& text, const std::string& origin, int maxDepth) {
  int depth = 0;
  forEachTag(text, [&](Tag tag, std::size_t offset) {
    if (tag == Tag::end) {
      depth = std::max(0, depth - 1);
    } else if (tag == Tag::start && ++depth > maxDepth) {
      throw pt::xml_parser_error(
          "elements nested deeper than " + std::to_string(maxDepth) + " levels", origin,
          lineAt(text, offset));
    }
  });
}

bool isElement(const std::string& key) { return key.empty() || key[0] != '<'; }

// Numbers the elements of `tree` in document order (depth first, children in order).
void numberElements(const pt::ptree& tree, std::unordered_map<const pt::ptree*, std::size_t>& out) {
  std::vector<const pt::ptree*> pending{&tree};
  while (!pending.empty()) {
    const pt::ptree* node = pending.back();
    pending.pop_back();
    // Children are pushed in reverse so that the first child comes off the stack first.
    for (auto it = node->rbegin(); it != node->rend(); ++it) {
      if (isElement(it->first)) pending.push_back(&it->second);
    }
    if (node != &tree) out.emplace(node, out.size());
  }
}

[[noreturn]] void refuseSize(std::uintmax_t size, std::size_t maxBytes, const std::string& origin) {
  throw pt::xml_parser_error(
      "the text has " + std::to_string(size) + " bytes, more than " + std::to_string(maxBytes),
      origin, 0);
}

}  // namespace

Limits limits() { return {depthLimit.load(), byteLimit.load()}; }

void setLimits(const Limits& l) {
  if (l.maxDepth < 1 || l.maxBytes == 0) {
    throw std::invalid_argument("XML limits: the depth and the size must be positive");
  }
  depthLimit.store(l.maxDepth);
  byteLimit.store(l.maxBytes);
}

pt::ptree readString(const std::string& text, const std::string& origin, int flags) {
  return readString(text, origin, flags, limits());
}

pt::ptree readFile(const std::filesystem::path& path, int flags) {
  return readFile(path, flags, limits());
}

pt::ptree readString(const std::string& text, const std::string& origin, int flags,
                     const Limits& l) {
  if (text.size() > l.maxBytes) refuseSize(text.size(), l.maxBytes, origin);
  refuseDeepNesting(text, origin, l.maxDepth);
  pt::ptree tree;
  std::istringstream in(text);
  try {
    pt::read_xml(in, tree, flags);
  } catch (const pt::xml_parser_error& e) {
    throw pt::xml_parser_error(e.message(), origin, e.line());
  }
  return tree;
}

pt::ptree readFile(const std::filesystem::path& path, int flags, const Limits& l) {
  const std::string name = path.string();
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) {
    throw pt::xml_parser_error("cannot open file", name, 0);
  }
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (!error && size > l.maxBytes) refuseSize(size, l.maxBytes, name);
  std::ifstream in(path, std::ios::binary);
  if (!in) throw pt::xml_parser_error("cannot open file", name, 0);
  std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (in.bad()) throw pt::xml_parser_error("cannot read file", name, 0);
  return readString(text, name, flags, l);
}

ElementLocator::ElementLocator(const std::string& text, const pt::ptree& document) {
  std::unordered_map<const pt::ptree*, std::size_t> numbers;
  numberElements(document, numbers);
  std::vector<std::size_t> lines;
  std::size_t line = 1, counted = 0;
  forEachTag(text, [&](Tag tag, std::size_t offset) {
    if (tag == Tag::end) return;
    line +=
        static_cast<std::size_t>(std::count(text.begin() + counted, text.begin() + offset, '\n'));
    counted = offset;
    lines.push_back(line);
  });
  for (const auto& [node, number] : numbers) {
    if (number < lines.size()) lineOfNode.emplace(node, lines[number]);
  }
}

std::size_t ElementLocator::lineOf(const pt::ptree& element) const {
  const auto it = lineOfNode.find(&element);
  return it == lineOfNode.end() ? 0 : it->second;
}

}  // namespace blockara::xml
