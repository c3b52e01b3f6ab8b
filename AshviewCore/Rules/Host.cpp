#include "AshviewCore/Rules/Host.h"

#include "AshviewCore/Foundation/Text.h"
#include "AshviewCore/Foundation/Url.h"

#include <array>

namespace ashview::Host {

namespace {

/// The bytes a plain host is made of: lower-case ASCII letters, digits,
/// hyphens and dots.
constexpr std::array<bool, 256> plainBytes = [] {
    std::array<bool, 256> plain{};
    for (char c = 'a'; c <= 'z'; ++c) plain[static_cast<unsigned char>(c)] = true;
    for (char c = '0'; c <= '9'; ++c) plain[static_cast<unsigned char>(c)] = true;
    plain['-'] = true;
    plain['.'] = true;
    return plain;
}();

/// Whether `host` and each of its labels are short enough for DNS.
bool fitsNames(std::string_view host) {
    if (host.size() > maxLength) return false;
    std::size_t label = 0;
    for (char c : host) {
        label = c == '.' ? 0 : label + 1;
        if (label > maxLabelLength) return false;
    }
    return true;
}

std::optional<std::string> withoutTrailingDots(std::string text) {
    while (!text.empty() && text.back() == '.') text.pop_back();
    if (text.empty()) return std::nullopt;
    return text;
}

}  // namespace

bool isPlainHost(std::string_view text) {
    if (text.empty() || text.back() == '.') return false;
    bool plain = true;
    for (char c : text) plain &= plainBytes[static_cast<unsigned char>(c)];
    return plain && fitsNames(text);
}

std::optional<std::string> normalize(std::string_view text) {
    // Trimming and case mapping leave such text as it is, and as the authority
    // of an address it is read back whole as the host.
    if (isPlainHost(text)) return std::string(text);
    std::optional<std::string> candidate = withoutTrailingDots(Text::lowercased(Text::trimmed(text)));
    if (!candidate || candidate->find(' ') != std::string::npos) return std::nullopt;
    if (candidate->find("://") == std::string::npos) candidate->insert(0, "https://");
    // The host of an address may end in a dot of its own ("example.com.").
    std::optional<std::string> host = Url::host(*candidate);
    if (host) host = withoutTrailingDots(std::move(*host));
    if (!host || !fitsNames(*host)) return std::nullopt;
    return host;
}

bool matches(std::string_view host, std::string_view rule) {
    if (host == rule) return true;
    return host.size() > rule.size() && host.ends_with(rule) && host[host.size() - rule.size() - 1] == '.';
}

}  // namespace ashview::Host
