#include "AshviewCore/Rules/SiteLookup.h"

#include "AshviewCore/Rules/AppKey.h"
#include "AshviewCore/Rules/Host.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace ashview {

namespace {

/// A fast hash of short texts, eight bytes at a time, with a final mix so
/// that both the low bits (the place) and the high bits (the tag) spread.
std::uint64_t hashOf(std::string_view text) {
    constexpr std::uint64_t multiplier = 0x9E3779B97F4A7C15ULL;
    std::uint64_t hash = text.size() * multiplier;
    const char* bytes = text.data();
    std::size_t left = text.size();
    while (left >= 8) {
        std::uint64_t chunk = 0;
        std::memcpy(&chunk, bytes, 8);
        hash = (hash ^ chunk) * multiplier;
        hash ^= hash >> 32;
        bytes += 8;
        left -= 8;
    }
    if (left > 0) {
        // The last eight bytes, overlapping those already taken, or the few
        // bytes of a short text gathered in a register.
        std::uint64_t chunk = 0;
        if (text.size() >= 8) {
            std::memcpy(&chunk, text.data() + text.size() - 8, 8);
        } else {
            for (std::size_t index = 0; index < left; ++index) {
                chunk |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[index])) << (8 * index);
            }
        }
        hash = (hash ^ chunk) * multiplier;
        hash ^= hash >> 32;
    }
    hash ^= hash >> 29;
    hash *= 0xBF58476D1CE4E5B9ULL;
    hash ^= hash >> 32;
    return hash;
}

/// The tag of a hash: its top 16 bits, never 0, which marks a free place.
std::uint16_t tagOf(std::uint64_t hash) {
    auto tag = static_cast<std::uint16_t>(hash >> 48);
    return tag == 0 ? 1 : tag;
}

}  // namespace

SiteLookup::SiteLookup(const std::vector<SiteRule>& sites) : sites_(&sites) {
    std::size_t capacity = std::max<std::size_t>(8, 3 * sites.size());
    std::size_t textLength = 0;
    for (const SiteRule& rule : sites) textLength += rule.host.size();
    // Positions and lengths are held in 32 bits; no real list comes near.
    if (capacity >= UINT32_MAX || textLength >= UINT32_MAX) throw std::length_error("too many rules for a lookup table");
    tags_.resize(capacity);
    entryAt_.resize(capacity);
    entries_.reserve(sites.size());
    texts_.reserve(textLength);
    firstOfRule_.reserve(sites.size());
    for (std::size_t index = 0; index < sites.size(); ++index) {
        std::string_view host = sites[index].host;
        std::uint64_t hash = hashOf(host);
        std::uint16_t tag = tagOf(hash);
        for (std::size_t position = placeOf(hash);; position = nextPlace(position)) {
            if (tags_[position] == 0) {
                entries_.push_back(Entry{static_cast<std::uint32_t>(texts_.size()),
                                         static_cast<std::uint32_t>(host.size()), static_cast<std::uint32_t>(index)});
                texts_.append(host);
                tags_[position] = tag;
                entryAt_[position] = static_cast<std::uint32_t>(entries_.size() - 1);
                firstOfRule_.push_back(index);
                break;
            }
            if (tags_[position] != tag) continue;
            const Entry& entry = entries_[entryAt_[position]];
            if (textOf(entry) == host) {
                firstOfRule_.push_back(entry.ruleIndex);
                break;
            }
        }
    }
}

std::size_t SiteLookup::placeOf(std::uint64_t hash) const {
    // The low half of the hash scaled to the table; the top bits are the tag.
    return static_cast<std::size_t>(((hash & 0xFFFFFFFFULL) * tags_.size()) >> 32);
}

std::size_t SiteLookup::nextPlace(std::size_t position) const {
    return position + 1 == tags_.size() ? 0 : position + 1;
}

std::string_view SiteLookup::textOf(const Entry& entry) const {
    return std::string_view(texts_).substr(entry.offset, entry.length);
}

std::optional<std::size_t> SiteLookup::firstIndexOfHost(std::string_view host) const {
    std::uint64_t hash = hashOf(host);
    std::uint16_t tag = tagOf(hash);
    for (std::size_t position = placeOf(hash);; position = nextPlace(position)) {
        if (tags_[position] == 0) return std::nullopt;
        if (tags_[position] != tag) continue;
        const Entry& entry = entries_[entryAt_[position]];
        if (textOf(entry) == host) return entry.ruleIndex;
    }
}

std::optional<std::size_t> SiteLookup::indexOf(std::string_view matchingHost) const {
    if (AppKey::isApp(matchingHost)) return firstIndexOfHost(matchingHost);
    // Hosts already in canonical form, the usual case, are walked where they
    // lie; others are normalized first.
    std::optional<std::string> normalized;
    std::string_view candidate = matchingHost;
    if (!Host::isPlainHost(matchingHost)) {
        normalized = Host::normalize(matchingHost);
        if (!normalized) return std::nullopt;
        candidate = *normalized;
    }
    // The host itself, then each domain above it, label by label.
    while (true) {
        if (auto index = firstIndexOfHost(candidate)) return index;
        auto dot = candidate.find('.');
        if (dot == std::string_view::npos) return std::nullopt;
        candidate.remove_prefix(dot + 1);
    }
}

const SiteRule* SiteLookup::find(std::string_view matchingHost) const {
    std::optional<std::size_t> index = indexOf(matchingHost);
    return index ? &(*sites_)[*index] : nullptr;
}

std::optional<SiteRule> SiteLookup::site(std::string_view matchingHost) const {
    if (const SiteRule* rule = find(matchingHost)) return *rule;
    return std::nullopt;
}

}  // namespace ashview
