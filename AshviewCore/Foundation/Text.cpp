#include "AshviewCore/Foundation/Text.h"

#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include <climits>

namespace ashview::Text {

std::string trimmed(std::string_view text) {
    if (text.size() > static_cast<std::size_t>(INT32_MAX)) return std::string(text);
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    auto length = static_cast<int32_t>(text.size());
    int32_t begin = 0;
    while (begin < length) {
        int32_t next = begin;
        UChar32 c = 0;
        U8_NEXT(bytes, next, length, c);
        if (c < 0 || !u_isUWhiteSpace(c)) break;
        begin = next;
    }
    int32_t end = length;
    while (end > begin) {
        int32_t previous = end;
        UChar32 c = 0;
        U8_PREV(bytes, begin, previous, c);
        if (c < 0 || !u_isUWhiteSpace(c)) break;
        end = previous;
    }
    return std::string(text.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin)));
}

std::string lowercased(std::string_view text) {
    if (text.size() > static_cast<std::size_t>(INT32_MAX)) return std::string(text);
    icu::UnicodeString unicode = icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
    unicode.toLower(icu::Locale::getRoot());
    std::string out;
    unicode.toUTF8String(out);
    return out;
}

std::string uppercasingFirst(std::string_view text) {
    if (text.empty() || text.size() > static_cast<std::size_t>(INT32_MAX)) return std::string(text);
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    int32_t end = 0;
    UChar32 first = 0;
    U8_NEXT(bytes, end, static_cast<int32_t>(text.size()), first);
    if (first < 0) return std::string(text);
    icu::UnicodeString head(first);
    head.toUpper(icu::Locale::getRoot());
    std::string out;
    head.toUTF8String(out);
    out.append(text.substr(static_cast<std::size_t>(end)));
    return out;
}

}  // namespace ashview::Text
