#pragma once

#include <string>

namespace bkedittimecheck {

class bkEditBlock;

/// Where two block records stand relative to each other, by their snapshot paths. The parent
/// path of a record is its wide full path less as many trailing characters as its narrow name
/// has, so that it keeps its final "/". Any thread.

/// The parent path of `block` as described above.
std::wstring parentPathOf(const bkEditBlock& block);

/// True when both blocks stand directly in one system: their parent paths are equal.
bool inSameSystem(const bkEditBlock& a, const bkEditBlock& b);

/// True when the parent path of `a`, narrow, occurs anywhere in that of `b`, narrow; an empty
/// parent path of `a` is found everywhere. A plain substring test: "a/" is found in "m/a/".
bool containsSystemOf(const bkEditBlock& a, const bkEditBlock& b);

}  // namespace bkedittimecheck
