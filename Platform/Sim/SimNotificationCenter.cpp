#include "Platform/Sim/SimNotificationCenter.h"

#include <utility>

namespace ashview {

struct SimNotificationCenter::Registry final {
    struct Entry final {
        std::string name;
        std::shared_ptr<std::function<void()>> handler;
    };
    std::map<std::uint64_t, Entry> entries;  // ordered by registration
    std::uint64_t next = 0;
};

class SimNotificationCenter::Observation final : public NotificationObservation {
public:
    Observation(std::weak_ptr<Registry> registry, std::uint64_t id) : registry_(std::move(registry)), id_(id) {}
    ~Observation() override {
        if (auto registry = registry_.lock()) registry->entries.erase(id_);
    }

private:
    std::weak_ptr<Registry> registry_;
    std::uint64_t id_;
};

SimNotificationCenter::SimNotificationCenter() : registry_(std::make_shared<Registry>()) {}

SimNotificationCenter::~SimNotificationCenter() = default;

std::unique_ptr<NotificationObservation> SimNotificationCenter::observe(std::string_view name,
                                                                        std::function<void()> handler) {
    std::uint64_t id = registry_->next++;
    registry_->entries.emplace(
        id, Registry::Entry{std::string(name), std::make_shared<std::function<void()>>(std::move(handler))});
    return std::make_unique<Observation>(registry_, id);
}

std::size_t SimNotificationCenter::post(std::string_view name) {
    posted_.emplace_back(name);
    // Taken before the first handler runs: a handler may add or drop others.
    std::vector<std::pair<std::uint64_t, std::shared_ptr<std::function<void()>>>> due;
    for (const auto& [id, entry] : registry_->entries) {
        if (entry.name == name) due.emplace_back(id, entry.handler);
    }
    std::size_t ran = 0;
    for (const auto& [id, handler] : due) {
        if (!registry_->entries.contains(id)) continue;  // removed by an earlier handler of this post
        (*handler)();
        ++ran;
    }
    return ran;
}

std::size_t SimNotificationCenter::observerCount(std::string_view name) const {
    std::size_t count = 0;
    for (const auto& [id, entry] : registry_->entries) count += entry.name == name ? 1 : 0;
    return count;
}

}  // namespace ashview
