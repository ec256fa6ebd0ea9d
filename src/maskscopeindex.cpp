#include "src/maskscopeindex.h"

#include <deque>

#include "src/editcodes.h"

namespace bkedittimecheck {

namespace {

// Whether an entry of mask kind `kind` excludes the blocks under it in `mode` (1 to 3).
bool excludes(std::int32_t mode, std::int32_t kind) {
  switch (mode) {
    case LookUnderMasks::kNone:
      return kind != MaskKind::kNone;
    case LookUnderMasks::kGraphical:
      return kind == MaskKind::kWithoutParameters || kind == MaskKind::kWithInitialization;
    case LookUnderMasks::kFunctional:
      return kind == MaskKind::kWithInitialization;
    default:
      return false;
  }
}

}  // namespace

void MaskScopeIndex::rebuild(const std::map<std::wstring, std::int32_t>& maskKinds) {
  for (std::size_t m = 0; m < matchers.size(); ++m) {
    matchers[m] = Matcher();
    const auto mode = static_cast<std::int32_t>(m + 1);
    for (const auto& [path, kind] : maskKinds) {
      if (excludes(mode, kind)) matchers[m].add(path);
    }
    matchers[m].finish();
  }
}

bool MaskScopeIndex::isUnderExcludingMask(const std::wstring& path,
                                          std::int32_t lookUnderMasks) const {
  if (lookUnderMasks < 1 || lookUnderMasks > static_cast<std::int32_t>(matchers.size())) {
    return false;
  }
  const Matcher& matcher = matchers[static_cast<std::size_t>(lookUnderMasks - 1)];
  if (matcher.empty()) return false;
  // Where an entry occurs does not matter: only its length decides where P needs its "/". An
  // entry as long as P that occurs in it equals it, and so never counts.
  return matcher.anyOccurrence(
      path, [&path](std::size_t length) { return path.size() > length && path[length] == L'/'; });
}

void MaskScopeIndex::Matcher::add(const std::wstring& pattern) {
  std::int32_t node = 0;
  for (wchar_t c : pattern) {
    auto it = nodes[static_cast<std::size_t>(node)].next.find(c);
    if (it == nodes[static_cast<std::size_t>(node)].next.end()) {
      nodes.push_back(Node{});
      const auto created = static_cast<std::int32_t>(nodes.size() - 1);
      nodes[static_cast<std::size_t>(node)].next.emplace(c, created);
      node = created;
    } else {
      node = it->second;
    }
  }
  Node& end = nodes[static_cast<std::size_t>(node)];
  if (end.output < 0) {
    end.output = static_cast<std::int32_t>(patternLengths.size());
    patternLengths.push_back(pattern.size());
  }
}

void MaskScopeIndex::Matcher::finish() {
  // Breadth first, so that a node's fail target is complete before its children need it.
  std::deque<std::int32_t> queue;
  for (const auto& [c, child] : nodes[0].next) queue.push_back(child);
  while (!queue.empty()) {
    const std::int32_t node = queue.front();
    queue.pop_front();
    for (const auto& [c, child] : nodes[static_cast<std::size_t>(node)].next) {
      const std::int32_t fail = step(nodes[static_cast<std::size_t>(node)].fail, c);
      Node& target = nodes[static_cast<std::size_t>(child)];
      target.fail = fail;
      const Node& failNode = nodes[static_cast<std::size_t>(fail)];
      target.outputLink = failNode.output >= 0 ? fail : failNode.outputLink;
      queue.push_back(child);
    }
  }
}

std::int32_t MaskScopeIndex::Matcher::step(std::int32_t node, wchar_t c) const {
  while (true) {
    const Node& current = nodes[static_cast<std::size_t>(node)];
    const auto it = current.next.find(c);
    if (it != current.next.end()) return it->second;
    if (node == 0) return 0;
    node = current.fail;
  }
}

template <typename Found>
bool MaskScopeIndex::Matcher::anyOccurrence(const std::wstring& text, Found found) const {
  std::int32_t node = 0;
  for (wchar_t c : text) {
    node = step(node, c);
    std::int32_t hit = nodes[static_cast<std::size_t>(node)].output >= 0
                           ? node
                           : nodes[static_cast<std::size_t>(node)].outputLink;
    while (hit >= 0) {
      const Node& h = nodes[static_cast<std::size_t>(hit)];
      if (found(patternLengths[static_cast<std::size_t>(h.output)])) return true;
      hit = h.outputLink;
    }
  }
  return false;
}

}  // namespace bkedittimecheck
