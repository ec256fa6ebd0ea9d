#pragma once

#include <string>

/// The host's UTF-16 string: diagram names, block names and full paths.
using bksvString = std::u16string;

/// UTF-16 to UTF-8. Any thread. An unpaired surrogate becomes U+FFFD; never throws for content.
std::string ConvertUStringToStdString(const bksvString& text);

namespace i18n {
/// UTF-16 to UTF-8, the same conversion as `ConvertUStringToStdString`. Any thread.
std::string to_string(const std::u16string& text);
/// UTF-8 to UTF-16. Any thread. A malformed byte sequence becomes U+FFFD.
std::u16string to_u16string(const std::string& text);
}  // namespace i18n
