// The narrow path helpers of the state accessor check and the iterator question it asks of
// bkEditBD's event listener records.
#include <vector>

#include "src/bkeditbd.h"

namespace bkedittimecheck {

bool hasEscapedSeparator(const std::string& path) {
  const std::size_t last = path.rfind('/');
  return last != std::string::npos && last + 1 == path.size();
}

bool isRootPath(const std::string& path) {
  const std::size_t first = path.find('/');
  if (first == std::string::npos) return true;
  // The one "/" position of an escaped separator: "//" or "/" closing the path.
  return hasEscapedSeparator(path) && first + 2 >= path.size();
}

std::string parentPath(const std::string& path) {
  if (isRootPath(path)) return "";
  std::string rest = path;
  if (hasEscapedSeparator(rest)) {
    // A name ending in "/" is written with "//" at the path's end: that "/" is the name's.
    rest.pop_back();
    if (!rest.empty() && rest.back() == '/') rest.pop_back();
  }
  const std::size_t last = rest.rfind('/');
  return last == std::string::npos ? "" : rest.substr(0, last);
}

bool bkEditBD::isIteratorSystem(const std::string& path) {
  std::vector<SubsysProperties> taken;
  SubsysProperties record;
  bool found = false;
  while (subsysProperties.try_pop(record)) {
    taken.push_back(record);
    if (record.isEventListener && parentPath(toNarrow(record.path)) == path) {
      found = true;
      break;
    }
  }
  for (auto& r : taken) subsysProperties.push(std::move(r));
  return found;
}

}  // namespace bkedittimecheck
