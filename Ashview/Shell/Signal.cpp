#include "Ashview/Shell/Signal.h"

#include <vector>

namespace ashview {

struct Signal::Connection::Slots {
    std::uint64_t nextID = 1;
    std::map<std::uint64_t, std::shared_ptr<std::function<void()>>> handlers;
};

Signal::Connection& Signal::Connection::operator=(Connection&& other) noexcept {
    if (this != &other) {
        disconnect();
        slots_ = std::move(other.slots_);
        id_ = other.id_;
        other.slots_.reset();
    }
    return *this;
}

void Signal::Connection::disconnect() {
    if (auto slots = slots_.lock()) slots->handlers.erase(id_);
    slots_.reset();
}

Signal::Signal() : slots_(std::make_shared<Connection::Slots>()) {}

Signal::Connection Signal::connect(std::function<void()> handler) {
    std::uint64_t id = slots_->nextID++;
    slots_->handlers[id] = std::make_shared<std::function<void()>>(std::move(handler));
    return Connection(slots_, id);
}

void Signal::emit() const {
    // A snapshot, so that handlers may connect or disconnect while it runs;
    // a handler disconnected meanwhile is skipped.
    std::vector<std::pair<std::uint64_t, std::shared_ptr<std::function<void()>>>> snapshot(slots_->handlers.begin(),
                                                                                          slots_->handlers.end());
    auto slots = slots_;
    for (const auto& [id, handler] : snapshot)
        if (slots->handlers.contains(id) && *handler) (*handler)();
}

std::size_t Signal::connectionCount() const { return slots_->handlers.size(); }

}  // namespace ashview
