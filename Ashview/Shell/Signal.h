// A change signal from a model to whatever shows it, with no toolkit type.
//
// A model owns a `Signal` and calls `emit()` after each change; a view
// connects a handler and keeps the returned `Connection` for as long as it
// wants to hear. Destroying the connection disconnects; a connection may
// outlive its signal. Handlers run at once, on the emitting (main) thread, in
// the order they connected; one connected or disconnected during an emit takes
// effect at the next emit. Not thread-safe: main thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

namespace ashview {

class Signal final {
public:
    class Connection final {
    public:
        Connection() = default;
        Connection(Connection&&) noexcept = default;
        Connection& operator=(Connection&&) noexcept;
        Connection(const Connection&) = delete;
        Connection& operator=(const Connection&) = delete;
        ~Connection() { disconnect(); }

        void disconnect();

    private:
        friend class Signal;
        struct Slots;
        Connection(std::weak_ptr<Slots> slots, std::uint64_t id) : slots_(std::move(slots)), id_(id) {}

        std::weak_ptr<Slots> slots_;
        std::uint64_t id_ = 0;
    };

    Signal();
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    [[nodiscard]] Connection connect(std::function<void()> handler);
    void emit() const;
    std::size_t connectionCount() const;

private:
    std::shared_ptr<Connection::Slots> slots_;
};

}  // namespace ashview
