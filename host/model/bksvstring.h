#pragma once

#include <string>
#include <string_view>

/// The host's UTF-16 string: diagram names, block names and full paths.
using bksvString = std::u16string;

/// UTF-16 to UTF-8. Any thread. An unpaired surrogate becomes U+FFFD; never throws for content.
std::string ConvertUStringToStdString(std::u16string_view text);

namespace i18n {
/// UTF-16 to UTF-8, the same conversion as `ConvertUStringToStdString`. Any thread.
std::string to_string(std::u16string_view text);
/// UTF-8 to UTF-16. Any thread. Each byte that does not start a well-formed sequence (shortest
/// form, at most U+10FFFF, no surrogate) becomes one U+FFFD, and decoding goes on at the next
/// byte, so a broken sequence never swallows the valid characters after it.
std::u16string to_u16string(std::string_view text);
}  // namespace i18n
