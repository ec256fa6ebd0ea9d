#pragma once

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "host/model/bkrootbd.h"
#include "host/model/bksvstring.h"
#include "host/model/diagramediting.h"
#include "src/violationdatabase.h"

namespace bkedittimecheck::testing {

/// A block of a test diagram, written on one line as "PATH TYPE [KEY=VALUE ...]" with PATH below
/// the diagram's root. Every value is text; a word without "=" continues the value before it, so
/// values may hold blanks ("IconDisplay=Signal name").
struct BlockLine {
  std::u16string system;  // the full path of the system that holds the block
  std::u16string name;
  std::string type;
  blockara::PropertyMap props;

  /// Reads `line` for a block below the root `root`. Never fails; a line without a type gives "".
  BlockLine(const std::u16string& root, const std::string& line) {
    std::istringstream in(line);
    std::string path, word, key;
    in >> path >> type;
    const std::u16string full = root + u"/" + i18n::to_u16string(path);
    system = full.substr(0, full.rfind(u'/'));
    name = full.substr(system.size() + 1);
    while (in >> word) {
      const std::size_t eq = word.find('=');
      if (eq == std::string::npos) {
        std::get<std::string>(props[key]) += " " + word;
      } else {
        key = word.substr(0, eq);
        props[key] = word.substr(eq + 1);
      }
    }
  }
  std::u16string path() const { return system + u"/" + name; }
};

/// Adds each block of `blocks` to `d` in order, with its properties; throws what the host throws.
inline void addBlocks(BKRootBD* d, const std::vector<std::string>& blocks) {
  for (const std::string& line : blocks) {
    const BlockLine b(d->getName(), line);
    d->editing().addBlock(b.system, b.type, b.name, b.props);
  }
}

/// The records `db` holds for the blocks of `d` as "PATH|TYPE|SEVERITY[|commented]", PATH below
/// the root, sorted.
inline std::vector<std::string> recordLines(BKRootBD* d, const ViolationDatabase& db) {
  std::vector<std::string> out;
  const std::size_t below = ConvertUStringToStdString(d->getName()).size() + 1;
  for (BKBlock* b : d->blocksInPathOrder()) {
    for (const EditTimeViolation& v : db.violationsOf(b->getHandle())) {
      out.push_back(ConvertUStringToStdString(b->getFullPath(false)).substr(below) + "|" +
                    v.violationType + "|" + std::to_string(v.severity) +
                    (v.isCommented ? "|commented" : ""));
    }
  }
  std::sort(out.begin(), out.end());
  return out;
}

}  // namespace bkedittimecheck::testing
