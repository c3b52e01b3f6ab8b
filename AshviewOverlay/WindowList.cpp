#include "AshviewOverlay/WindowList.h"

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <unordered_set>

namespace ashview {

namespace {

constexpr std::uint32_t onScreenOptions = WindowServer::onScreenOnly | WindowServer::excludeDesktopElements;
constexpr std::uint32_t allWindowsOptions = WindowServer::excludeDesktopElements;

bool fitsPID(std::int64_t value) {
    return value >= std::numeric_limits<std::int32_t>::min() && value <= std::numeric_limits<std::int32_t>::max();
}

/// Window numbers are 32 unsigned bits; an entry with another is nobody's
/// window, and could not be asked about or subscribed to.
bool hasWindowNumber(const WindowInfo& entry) {
    return entry.number && *entry.number >= 0 && *entry.number <= std::numeric_limits<std::uint32_t>::max();
}

}  // namespace

std::vector<std::optional<WindowInfo>> WindowList::list(std::uint32_t options) const {
    RawWindowList raw = server_->copyWindowInfo(options, 0);
    if (!raw) return {};
    for (const auto& element : *raw) {
        if (!element) return {};  // not an array of dictionaries: nothing can be trusted
    }
    return std::move(*raw);
}

std::vector<WindowInfo> WindowList::onScreen() const {
    std::vector<std::optional<WindowInfo>> entries = list(onScreenOptions);
    std::vector<WindowInfo> result;
    result.reserve(entries.size());
    for (auto& entry : entries) result.push_back(std::move(*entry));
    return result;
}

std::optional<ForeignWindow> WindowList::normalWindow(const WindowInfo& entry, bool isOnScreen,
                                                      const Geometry& geometry) {
    if (!entry.layer || *entry.layer != 0) return std::nullopt;
    if (!hasWindowNumber(entry)) return std::nullopt;
    if (!entry.bounds) return std::nullopt;
    return ForeignWindow{*entry.number, geometry.cocoa(*entry.bounds), isOnScreen};
}

std::vector<StackedWindow> WindowList::stack() const {
    std::vector<StackedWindow> result;
    for (const auto& slot : list(onScreenOptions)) {
        const WindowInfo& entry = *slot;
        if (!hasWindowNumber(entry) || !entry.ownerPID || !fitsPID(*entry.ownerPID) || !entry.layer || !entry.bounds)
            continue;
        result.push_back(StackedWindow{*entry.number, static_cast<std::int32_t>(*entry.ownerPID), *entry.layer,
                                       entry.alpha.value_or(1.0), *entry.bounds});
    }
    return result;
}

std::vector<ForeignWindow> WindowList::windows(const std::string& owner) const {
    std::vector<ForeignWindow> result;
    Geometry geometry(*server_);
    for (const auto& slot : list(onScreenOptions)) {
        const WindowInfo& entry = *slot;
        if (entry.ownerName != owner) continue;
        if (auto window = normalWindow(entry, true, geometry)) result.push_back(*window);
    }
    return result;
}

std::vector<ForeignWindow> WindowList::windows(std::int32_t pid) const {
    std::vector<ForeignWindow> result;
    std::unordered_set<std::int64_t> seen;
    Geometry geometry(*server_);
    for (const auto& slot : list(onScreenOptions)) {
        const WindowInfo& entry = *slot;
        if (entry.ownerPID != std::int64_t{pid}) continue;
        if (auto window = normalWindow(entry, true, geometry)) {
            seen.insert(window->number);
            result.push_back(*window);
        }
    }
    for (const auto& slot : list(allWindowsOptions)) {
        const WindowInfo& entry = *slot;
        if (entry.ownerPID != std::int64_t{pid}) continue;
        auto window = normalWindow(entry, false, geometry);
        if (window && !seen.contains(window->number)) result.push_back(*window);
    }
    return result;
}

std::unordered_map<std::int32_t, std::vector<ForeignWindow>> WindowList::windowsByProcess(double screenHeight) const {
    std::unordered_map<std::int32_t, std::vector<ForeignWindow>> result;
    auto normal = [&](const WindowInfo& entry, bool isOnScreen) -> std::optional<ForeignWindow> {
        // An owner that fits no process identifier is nobody's window here,
        // as no `windows(pid)` call can ask for it.
        if (!entry.ownerPID || !fitsPID(*entry.ownerPID)) return std::nullopt;
        if (!entry.layer || *entry.layer != 0 || !hasWindowNumber(entry) || !entry.bounds) return std::nullopt;
        return ForeignWindow{*entry.number, Geometry::flip(*entry.bounds, screenHeight), isOnScreen};
    };
    // (process, number) of every on-screen window, sorted for lookup.
    std::vector<std::pair<std::int32_t, std::int64_t>> seen;
    for (const auto& slot : list(onScreenOptions)) {
        const WindowInfo& entry = *slot;
        if (auto window = normal(entry, true)) {
            auto pid = static_cast<std::int32_t>(*entry.ownerPID);
            seen.emplace_back(pid, window->number);
            result[pid].push_back(*window);
        }
    }
    std::sort(seen.begin(), seen.end());
    for (const auto& slot : list(allWindowsOptions)) {
        const WindowInfo& entry = *slot;
        auto window = normal(entry, false);
        if (!window) continue;
        auto pid = static_cast<std::int32_t>(*entry.ownerPID);
        if (!std::binary_search(seen.begin(), seen.end(), std::pair{pid, window->number})) result[pid].push_back(*window);
    }
    return result;
}

std::vector<int> WindowList::positions(const std::vector<std::int64_t>& numbers) const {
    if (numbers.empty()) return {};
    std::unordered_map<std::int64_t, int> first;
    int index = 0;
    for (const auto& slot : list(onScreenOptions)) {
        const WindowInfo& entry = *slot;
        if (!entry.number) continue;
        first.try_emplace(*entry.number, index);
        ++index;
    }
    std::vector<int> result;
    result.reserve(numbers.size());
    for (std::int64_t number : numbers) {
        auto found = first.find(number);
        result.push_back(found == first.end() ? -1 : found->second);
    }
    return result;
}

}  // namespace ashview
