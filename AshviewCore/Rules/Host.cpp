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

}  // namespace

bool isPlainHost(std::string_view text) {
    if (text.empty() || text.back() == '.') return false;
    bool plain = true;
    for (char c : text) plain &= plainBytes[static_cast<unsigned char>(c)];
    return plain;
}

std::optional<std::string> normalize(std::string_view text) {
    // Trimming and case mapping leave such text as it is, and as the authority
    // of an address it is read back whole as the host.
    if (isPlainHost(text)) return std::string(text);
    std::string candidate = Text::lowercased(Text::trimmed(text));
    while (!candidate.empty() && candidate.back() == '.') candidate.pop_back();
    if (candidate.empty()) return std::nullopt;
    if (candidate.find(' ') != std::string::npos) return std::nullopt;
    if (candidate.find("://") == std::string::npos) candidate.insert(0, "https://");
    return Url::host(candidate);
}

bool matches(std::string_view host, std::string_view rule) {
    if (host == rule) return true;
    return host.size() > rule.size() && host.ends_with(rule) && host[host.size() - rule.size() - 1] == '.';
}

}  // namespace ashview::Host
