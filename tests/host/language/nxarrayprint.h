#pragma once

// Prints arrays in test failures: class, shape and, for small arrays, the elements.

#include <ostream>

#include "host/language/cosinterface.h"
#include "host/language/nxarray.h"

inline void PrintTo(const nxArray& a, std::ostream* os) {
  *os << a.rows() << "x" << a.cols() << " " << a.className();
  if (a.numel() > 16) return;
  *os << " {";
  for (std::size_t i = 0; i < a.numel(); ++i) {
    if (i) *os << ", ";
    switch (a.classID()) {
      case nxClassID::Double:
        *os << a.getDouble(i);
        break;
      case nxClassID::Logical:
        *os << a.getLogical(i);
        break;
      case nxClassID::UInt32:
        *os << a.getUInt32(i);
        break;
      case nxClassID::Char:
        *os << a.charData()[i];
        break;
      case nxClassID::Cell:
        PrintTo(a.getCell(i), os);
        break;
      case nxClassID::Struct:
        for (const auto& f : a.fieldNames()) {
          *os << f << "=";
          PrintTo(*a.getField(i, f), os);
          *os << ";";
        }
        break;
      case nxClassID::Object:
        *os << (a.getObject(i)->isAlive() ? "live" : "dead");
        break;
    }
  }
  *os << "}";
}
