#pragma once

#include <exception>
#include <string>
#include <string_view>
#include <vector>

namespace bkmsg {

/// An error that the host language shows by message identifier: a component such as
/// "bkedittimecheck:edittimecheck", a mnemonic such as "UnsupportedValueOperator", and string
/// arguments. `what()` is the full identifier, ": " and the catalogue's text with the arguments
/// substituted (or the arguments alone when the catalogue has no text). Any thread.
class MessageIDException : public std::exception {
 public:
  MessageIDException(std::string component, std::string mnemonic,
                     std::vector<std::string> arguments = {});

  const std::string& component() const { return comp; }
  const std::string& mnemonic() const { return mnem; }
  /// component + ":" + mnemonic.
  std::string identifier() const { return comp + ":" + mnem; }
  const std::vector<std::string>& arguments() const { return args; }
  /// The catalogue's text with the arguments substituted.
  const std::string& text() const { return message; }
  const char* what() const noexcept override { return full.c_str(); }

 private:
  std::string comp;
  std::string mnem;
  std::vector<std::string> args;
  std::string message;
  std::string full;
};

namespace detail {
inline std::string argumentText(std::string s) { return s; }
inline std::string argumentText(const char* s) { return s; }
inline std::string argumentText(std::string_view s) { return std::string(s); }
std::string argumentText(std::u16string_view s);
inline std::string argumentText(const std::u16string& s) { return argumentText(std::u16string_view(s)); }
}  // namespace detail

}  // namespace bkmsg

/// Declares `class NAME` as the message-ID exception with mnemonic "NAME" of COMPONENT; it takes
/// any number of string arguments (narrow or wide):
///   BKMSG_DECLARE_ERROR(UnsupportedValueOperator, "bkedittimecheck:edittimecheck");
///   throw UnsupportedValueOperator(op);
#define BKMSG_DECLARE_ERROR(NAME, COMPONENT)                                            \
  class NAME : public ::bkmsg::MessageIDException {                                     \
   public:                                                                              \
    template <class... A>                                                               \
    explicit NAME(A&&... args)                                                          \
        : ::bkmsg::MessageIDException(                                                  \
              COMPONENT, #NAME,                                                         \
              std::vector<std::string>{::bkmsg::detail::argumentText(args)...}) {}      \
  }
