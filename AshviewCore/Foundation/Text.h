// Small Unicode-aware text helpers over UTF-8, backed by ICU.
#pragma once

#include <string>
#include <string_view>

namespace ashview::Text {

/// `text` without the Unicode white space and line ends at either end.
/// Invalid UTF-8 is kept as it stands.
std::string trimmed(std::string_view text);

/// `text` in lower case by the Unicode rules of no particular language.
/// Invalid UTF-8 sequences come out as U+FFFD.
std::string lowercased(std::string_view text);

/// `text` with its first character in upper case by the Unicode rules of no
/// particular language (which may lengthen it: "ß" becomes "SS"), and the rest
/// exactly as it was. Text that does not begin with valid UTF-8 is returned
/// unchanged.
std::string uppercasingFirst(std::string_view text);

}  // namespace ashview::Text
