#import <Foundation/Foundation.h>

#include "Platform/BootTime.h"
#include "Platform/Mac/MacAdapters.h"
#include "Platform/Mac/MacConversions.h"

#include <algorithm>
#include <stdexcept>

namespace ashview {
namespace {

// What a scheduled block or timer shares with its handle: whether it may
// still run, and its body, let go once it can no longer run.
struct TaskState {
    bool active = true;
    std::function<void()> body;
};

class DelayedTask final : public ScheduledTask {
public:
    explicit DelayedTask(std::shared_ptr<TaskState> state) : state_(std::move(state)) {}
    void cancel() override {
        state_->active = false;
        state_->body = nullptr;
    }
    bool isActive() const override { return state_->active; }

private:
    std::shared_ptr<TaskState> state_;
};

class RepeatingTask final : public ScheduledTask {
public:
    RepeatingTask(std::shared_ptr<TaskState> state, NSTimer* timer) : state_(std::move(state)), timer_(timer) {}
    void cancel() override {
        state_->active = false;
        [timer_ invalidate];
        state_->body = nullptr;
    }
    bool isActive() const override { return state_->active; }

private:
    std::shared_ptr<TaskState> state_;
    NSTimer* timer_;
};

class MacMainLoop final : public MainLoop {
public:
    Instant now() const override { return Instant{[NSDate date].timeIntervalSinceReferenceDate}; }
    double uptime() const override { return NSProcessInfo.processInfo.systemUptime; }
    std::optional<Instant> bootTime() const override { return BootTime::kernel(); }

    Calendar calendar() const override {
        NSCalendar* current = NSCalendar.currentCalendar;
        std::string zone = mac::string(current.timeZone.name);
        std::string locale = mac::string(NSLocale.currentLocale.localeIdentifier);
        try {
            return Calendar(mac::string(current.calendarIdentifier), zone, locale);
        } catch (const std::invalid_argument&) {
            return Calendar("gregorian", zone, locale);
        }
    }

    std::shared_ptr<ScheduledTask> runAfter(double delay, std::function<void()> task) override {
        auto state = std::make_shared<TaskState>();
        state->body = std::move(task);
        dispatch_after(dispatch_time(DISPATCH_TIME_NOW, static_cast<int64_t>(std::max(delay, 0.0) * NSEC_PER_SEC)),
                       dispatch_get_main_queue(), ^{
                         if (!state->active) return;
                         state->active = false;
                         std::function<void()> body = std::move(state->body);
                         if (body) body();
                       });
        return std::make_shared<DelayedTask>(state);
    }

    std::shared_ptr<ScheduledTask> repeatEvery(double interval, std::function<void()> task) override {
        if (!(interval > 0)) throw std::invalid_argument("a repeating timer needs a positive interval");
        auto state = std::make_shared<TaskState>();
        state->body = std::move(task);
        NSTimer* timer = [NSTimer scheduledTimerWithTimeInterval:interval
                                                         repeats:YES
                                                           block:^(NSTimer* fired) {
                                                             if (!state->active) {
                                                                 [fired invalidate];
                                                                 return;
                                                             }
                                                             std::function<void()> body = state->body;
                                                             if (body) body();
                                                           }];
        return std::make_shared<RepeatingTask>(state, timer);
    }

    void runInBackground(std::function<void()> work, std::function<void()> done) override {
        dispatch_async(dispatch_get_global_queue(QOS_CLASS_USER_INITIATED, 0), ^{
          work();
          dispatch_async(dispatch_get_main_queue(), ^{
            done();
          });
        });
    }
};

}  // namespace

std::unique_ptr<MainLoop> makeMacMainLoop() { return std::make_unique<MacMainLoop>(); }

}  // namespace ashview
