#include "AshviewCore/Host.h"

#include "AshviewCore/Text.h"
#include "AshviewCore/Url.h"

namespace ashview::Host {

std::optional<std::string> normalize(std::string_view text) {
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
