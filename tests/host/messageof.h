#pragma once

#include <exception>
#include <string>

/// What `fn` throws as an `E`: its message, or "no error" when `fn` returns. Exceptions of other
/// types pass through.
template <class E = std::exception, class F>
std::string messageOf(F&& fn) {
  try {
    fn();
  } catch (const E& e) {
    return e.what();
  }
  return "no error";
}
