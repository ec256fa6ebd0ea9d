#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace bkedittimecheck {

/// Answers the mask half of the scope rule without walking every subsystem for every block.
///
/// The rule: a block's full path P lies under a mask entry K when K occurs somewhere in P, P
/// differs from K, and P has "/" at index length(K). Per `lookUnderMasks` mode only some kinds
/// answer true (1: every kind but "no mask"; 2: kinds 3 and 4; 3: kind 4). The index keeps, per
/// mode, a multi-pattern matcher (Aho-Corasick) over just the entries whose kind answers true,
/// so one pass over P finds every entry that occurs in it; the two other conditions are then a
/// length and a character test. Subsystems without a mask, the common case, cost nothing.
///
/// Thread contract: none of its own; `bkEditBD` builds and reads it on the worker only.
class MaskScopeIndex {
 public:
  /// Replaces the index with one over `maskKinds` (subsystem path to mask kind).
  void rebuild(const std::map<std::wstring, std::int32_t>& maskKinds);

  /// True when `path` lies under an entry whose kind `lookUnderMasks` (1 to 3) excludes; false
  /// for mode 0 and unknown modes.
  bool isUnderExcludingMask(const std::wstring& path, std::int32_t lookUnderMasks) const;

 private:
  // One Aho-Corasick automaton over wide strings. Node 0 is the root.
  class Matcher {
   public:
    void add(const std::wstring& pattern);
    void finish();
    bool empty() const { return patternLengths.empty(); }
    // Calls `found(length)` for the length of every pattern occurrence in `text`, until it
    // returns true; returns whether it did.
    template <typename Found>
    bool anyOccurrence(const std::wstring& text, Found found) const;

   private:
    struct Node {
      std::unordered_map<wchar_t, std::int32_t> next;
      std::int32_t fail = 0;
      std::int32_t output = -1;      // the pattern that ends here, or -1
      std::int32_t outputLink = -1;  // the nearest node on the fail chain with an output
    };
    std::int32_t step(std::int32_t node, wchar_t c) const;

    std::vector<Node> nodes{Node{}};
    std::vector<std::size_t> patternLengths;
  };

  std::array<Matcher, 3> matchers;  // modes 1, 2 and 3
};

}  // namespace bkedittimecheck
