#pragma once

#include <boost/property_tree/ptree.hpp>
#include <cstddef>
#include <filesystem>
#include <string>
#include <unordered_map>

/// The one way the host and the engine read XML into a property tree.
///
/// The property tree's XML reader parses recursively, one stack frame per element level, and
/// holds the whole text and tree in memory: a file nested deep enough overflows the main thread's
/// stack, and a huge one exhausts memory. The functions here refuse such a text before it reaches
/// the reader, with the reader's own exception type, so that callers keep a single `catch`.
///
/// Thread contract: any thread. The limits are process-wide host settings read at each call.
namespace blockara::xml {

/// What a text may be before it is parsed.
struct Limits {
  /// Element levels, the root element counting as 1. Comments, CDATA sections, processing
  /// instructions, declarations and self-closing elements add no level.
  int maxDepth = 4096;
  /// Bytes of text (the file's size for a file).
  std::size_t maxBytes = std::size_t{256} << 20;
};

/// Any thread. The limits in force (the defaults above unless the host set others).
Limits limits();

/// Host setting, any thread (tests lower the limits to try them on small texts). Throws
/// `std::invalid_argument` for a depth below 1 or a size of 0, keeping the old limits.
void setLimits(const Limits& limits);

/// Any thread. Parses `text` with the property tree's XML reader and `flags`
/// (`boost::property_tree::xml_parser::no_comments`, `trim_whitespace`). Throws
/// `boost::property_tree::xml_parser_error` whose `filename()` is `origin`: for a text larger
/// than `maxBytes` (line 0), one nested deeper than `maxDepth` (the line of the element that
/// goes too deep), or one the reader refuses (the reader's message and line).
boost::property_tree::ptree readString(const std::string& text, const std::string& origin,
                                       int flags = 0);

/// Any thread. Reads the file `path` byte for byte and parses it as `readString` does, naming
/// the file in errors. A file that is missing, no regular file or cannot be read throws
/// `xml_parser_error` "cannot open file" or "cannot read file" (line 0); a file larger than
/// `maxBytes` is refused before it is read.
boost::property_tree::ptree readFile(const std::filesystem::path& path, int flags = 0);

/// Any thread. As `readString` and `readFile`, with `limits` instead of the process-wide ones
/// (for a reader whose own limit is lower).
boost::property_tree::ptree readString(const std::string& text, const std::string& origin,
                                       int flags, const Limits& limits);
boost::property_tree::ptree readFile(const std::filesystem::path& path, int flags,
                                     const Limits& limits);

/// The line on which each element of a parsed text starts, for messages about content. The
/// property tree keeps no positions; the locator pairs the elements of the tree in document order
/// with the start tags of the text, which come in the same order.
class ElementLocator {
 public:
  /// Any thread. `document` is the tree that `readString(text, ...)` returned and must outlive
  /// the locator unchanged. One pass over the tree and one over the text.
  ElementLocator(const std::string& text, const boost::property_tree::ptree& document);

  /// The 1-based line of the start tag of `element`, or 0 for a node that is no element of the
  /// document (an attribute, or a tree from elsewhere).
  std::size_t lineOf(const boost::property_tree::ptree& element) const;

 private:
  std::unordered_map<const boost::property_tree::ptree*, std::size_t> lineOfNode;
};

}  // namespace blockara::xml
