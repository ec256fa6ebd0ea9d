#pragma once

// Prints arrays in test failures: shape, class and, for char arrays, the text.

#include <ostream>

#include "host/language/nxarray.h"

inline void PrintTo(const nxArray& a, std::ostream* os) {
  *os << a.rows() << "x" << a.cols() << " " << a.className();
  if (a.isChar()) *os << " '" << a.charData() << "'";
}
