#include "host/model/bksvstring.h"

// The host's one UTF-8/UTF-16 codec. Written out rather than taken from a library: the standard
// converters are deprecated, and the library ones we have either skip bad input or swallow the
// bytes after a broken sequence, where the host wants one U+FFFD per bad byte.

namespace {

void appendUtf8(std::string& out, char32_t cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (cp >> 18));
    out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

void appendUtf16(std::u16string& out, char32_t cp) {
  if (cp < 0x10000) {
    out += static_cast<char16_t>(cp);
  } else {
    cp -= 0x10000;
    out += static_cast<char16_t>(0xD800 + (cp >> 10));
    out += static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
  }
}

constexpr char32_t kReplacement = 0xFFFD;

}  // namespace

std::string ConvertUStringToStdString(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t unit = text[i];
    if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
        text[i + 1] <= 0xDFFF) {
      appendUtf8(out, 0x10000 + ((unit - 0xD800) << 10) + (text[i + 1] - 0xDC00));
      ++i;
    } else if (unit >= 0xD800 && unit <= 0xDFFF) {
      appendUtf8(out, kReplacement);
    } else {
      appendUtf8(out, unit);
    }
  }
  return out;
}

namespace i18n {

std::string to_string(std::u16string_view text) { return ConvertUStringToStdString(text); }

std::u16string to_u16string(std::string_view text) {
  std::u16string out;
  out.reserve(text.size());
  std::size_t i = 0;
  while (i < text.size()) {
    auto byte = static_cast<unsigned char>(text[i]);
    int extra = byte < 0x80           ? 0
                : (byte >> 5) == 0x6  ? 1
                : (byte >> 4) == 0xE  ? 2
                : (byte >> 3) == 0x1E ? 3
                                      : -1;
    if (extra < 0 || i + extra >= text.size()) {
      appendUtf16(out, kReplacement);
      ++i;
      continue;
    }
    char32_t cp = extra == 0 ? byte : (byte & (0x3F >> extra));
    bool ok = true;
    for (int k = 1; ok && k <= extra; ++k) {
      auto next = static_cast<unsigned char>(text[i + k]);
      ok = (next & 0xC0) == 0x80;
      cp = (cp << 6) | (next & 0x3F);
    }
    static constexpr char32_t kMinimum[] = {0, 0x80, 0x800, 0x10000};
    if (!ok || cp < kMinimum[extra] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
      appendUtf16(out, kReplacement);
      ++i;
      continue;
    }
    appendUtf16(out, cp);
    i += extra + 1;
  }
  return out;
}

}  // namespace i18n
