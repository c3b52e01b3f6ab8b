#include "AshviewCore/Foundation/Url.h"

#include <uriparser/Uri.h>

#include <algorithm>
#include <cctype>

namespace ashview::Url {

namespace {

/// A parsed URI that frees itself. `ok` is false when `text` is no URI.
class ParsedUri {
public:
    explicit ParsedUri(std::string_view text) : text_(text) {
        const char* error = nullptr;
        ok_ = uriParseSingleUriExA(&uri_, text_.data(), text_.data() + text_.size(), &error) == URI_SUCCESS;
    }
    ~ParsedUri() {
        if (ok_) uriFreeUriMembersA(&uri_);
    }
    ParsedUri(const ParsedUri&) = delete;
    ParsedUri& operator=(const ParsedUri&) = delete;

    bool isAbsolute() const { return ok_ && uri_.scheme.first != nullptr; }
    std::string scheme() const { return range(uri_.scheme); }
    std::string host() const { return range(uri_.hostText); }

private:
    static std::string range(const UriTextRangeA& part) {
        if (part.first == nullptr || part.afterLast == nullptr) return {};
        return std::string(part.first, part.afterLast);
    }

    std::string text_;
    UriUriA uri_{};
    bool ok_ = false;
};

}  // namespace

std::optional<std::string> host(std::string_view text) {
    ParsedUri uri(text);
    if (!uri.isAbsolute()) return std::nullopt;
    std::string found = uri.host();
    if (found.empty()) return std::nullopt;
    return found;
}

std::optional<std::string> scheme(std::string_view text) {
    ParsedUri uri(text);
    if (!uri.isAbsolute()) return std::nullopt;
    std::string found = uri.scheme();
    std::transform(found.begin(), found.end(), found.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return found;
}

}  // namespace ashview::Url
