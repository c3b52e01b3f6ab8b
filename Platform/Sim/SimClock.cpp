#include "Platform/Sim/SimClock.h"

#include <cmath>
#include <stdexcept>
#include <utility>

namespace ashview {

namespace {

std::int64_t toNanos(double seconds) {
    if (!(seconds > 0)) return 0;
    return static_cast<std::int64_t>(std::llround(seconds * 1e9));
}

}  // namespace

class SimClock::Task final : public ScheduledTask {
public:
    Task(std::function<void()> body, std::int64_t interval) : body(std::move(body)), interval(interval) {}

    void cancel() override {
        active = false;
        body = nullptr;  // what the block holds is let go at once
    }
    bool isActive() const override { return active; }

    std::function<void()> body;
    std::int64_t interval;  // 0 for a delayed block
    bool active = true;
};

SimClock::SimClock() : SimClock(defaultStart, Calendar("gregorian", "UTC", "en_US_POSIX")) {}

SimClock::SimClock(Instant start, Calendar calendar, double uptime)
    : start_(start), calendar_(std::move(calendar)), startUptimeNanos_(toNanos(uptime)) {}

SimClock::~SimClock() = default;

Instant SimClock::now() const {
    return Instant{start_.seconds + wallShift_ + static_cast<double>(elapsedNanos_) / 1e9};
}

double SimClock::uptime() const {
    return static_cast<double>(startUptimeNanos_ + elapsedNanos_) / 1e9;
}

std::optional<Instant> SimClock::bootTime() const {
    if (!bootTimeKnown_) return std::nullopt;
    return now() - uptime();
}

Calendar SimClock::calendar() const { return calendar_; }

void SimClock::enqueue(std::int64_t due, const std::shared_ptr<Task>& task) {
    queue_.emplace(Key{due, sequence_++}, task);
}

std::shared_ptr<ScheduledTask> SimClock::runAfter(double delay, std::function<void()> task) {
    auto entry = std::make_shared<Task>(std::move(task), 0);
    enqueue(elapsedNanos_ + toNanos(delay), entry);
    ++queued_;
    return entry;
}

std::shared_ptr<ScheduledTask> SimClock::repeatEvery(double interval, std::function<void()> task) {
    std::int64_t step = toNanos(interval);
    if (step <= 0) throw std::invalid_argument("a repeating timer needs a positive interval");
    auto entry = std::make_shared<Task>(std::move(task), step);
    enqueue(elapsedNanos_ + step, entry);
    ++queued_;
    return entry;
}

void SimClock::runUntil(std::int64_t end) {
    if (running_) throw std::logic_error("SimClock advanced from inside one of its own tasks");
    running_ = true;
    struct Reset {
        bool& flag;
        ~Reset() { flag = false; }
    } reset{running_};
    while (!queue_.empty() && queue_.begin()->first.first <= end) {
        auto node = queue_.extract(queue_.begin());
        std::shared_ptr<Task> task = std::move(node.mapped());
        if (!task->active) continue;
        elapsedNanos_ = std::max(elapsedNanos_, node.key().first);
        if (task->interval > 0) enqueue(node.key().first + task->interval, task);
        else task->active = false;
        ++fired_;
        // The body is held here while it runs: it may cancel its own task or
        // drop the last handle to it.
        std::function<void()> body = std::move(task->body);
        if (body) body();
        if (task->active) task->body = std::move(body);
    }
    elapsedNanos_ = std::max(elapsedNanos_, end);
}

void SimClock::advance(double seconds) { runUntil(elapsedNanos_ + toNanos(seconds)); }

void SimClock::advanceTo(Instant moment) { advance(moment - now()); }

bool SimClock::runNext() {
    for (auto it = queue_.begin(); it != queue_.end(); ++it) {
        if (!it->second->active) continue;
        runUntil(it->first.first);
        return true;
    }
    return false;
}

void SimClock::runInBackground(std::function<void()> work, std::function<void()> done) {
    background_.emplace_back(std::move(work), std::move(done));
}

std::size_t SimClock::finishBackgroundWork() {
    auto waiting = std::move(background_);
    background_.clear();
    for (auto& [work, done] : waiting) {
        if (work) work();
        if (done) done();
    }
    return waiting.size();
}

void SimClock::block(double seconds) { elapsedNanos_ += toNanos(seconds); }

void SimClock::shiftWallClock(double seconds) { wallShift_ += seconds; }

void SimClock::setCalendar(Calendar calendar) { calendar_ = std::move(calendar); }

void SimClock::setBootTimeKnown(bool known) { bootTimeKnown_ = known; }

std::size_t SimClock::pendingCount() const {
    std::size_t count = 0;
    for (const auto& [key, task] : queue_)
        if (task->active) ++count;
    return count;
}

std::optional<double> SimClock::nextDueUptime() const {
    for (const auto& [key, task] : queue_)
        if (task->active) return static_cast<double>(startUptimeNanos_ + key.first) / 1e9;
    return std::nullopt;
}

}  // namespace ashview
