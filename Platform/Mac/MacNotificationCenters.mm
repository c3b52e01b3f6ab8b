#import <AppKit/AppKit.h>

#include "Platform/Mac/MacAdapters.h"
#include "Platform/Mac/MacConversions.h"
#include "Platform/Mac/MacObservation.h"

// The target of one distributed observer: AppKit holds back distributed
// notifications while the application is not active, which an accessory
// application almost never is, so the observer asks for immediate delivery,
// which only the selector form of registration offers.
@interface DrabwiseDistributedObserver : NSObject {
    void (^_body)(void);
}
- (instancetype)initWithBody:(void (^)(void))body;
- (void)notified:(NSNotification*)notification;
@end

@implementation DrabwiseDistributedObserver
- (instancetype)initWithBody:(void (^)(void))body {
    if ((self = [super init])) _body = [body copy];
    return self;
}
- (void)notified:(NSNotification*)notification {
    (void)notification;
    if (NSThread.isMainThread)
        _body();
    else
        dispatch_async(dispatch_get_main_queue(), _body);
}
@end

namespace ashview {
namespace {

// The workspace's names as AppKit declares them; a name not listed here is
// observed as it is spelled.
NSNotificationName appKitName(std::string_view name) {
    namespace N = SystemNotification;
    if (name == N::screensDidSleep) return NSWorkspaceScreensDidSleepNotification;
    if (name == N::screensDidWake) return NSWorkspaceScreensDidWakeNotification;
    if (name == N::sessionDidResignActive) return NSWorkspaceSessionDidResignActiveNotification;
    if (name == N::sessionDidBecomeActive) return NSWorkspaceSessionDidBecomeActiveNotification;
    if (name == N::activeSpaceDidChange) return NSWorkspaceActiveSpaceDidChangeNotification;
    if (name == N::willPowerOff) return NSWorkspaceWillPowerOffNotification;
    return mac::nsString(name);
}

class WorkspaceCenter final : public SystemNotificationCenter {
public:
    std::unique_ptr<NotificationObservation> observe(std::string_view name, std::function<void()> handler) override {
        return std::make_unique<mac::Observation>(NSWorkspace.sharedWorkspace.notificationCenter, appKitName(name),
                                                  [handler = std::move(handler)](NSNotification*) { handler(); });
    }
};

class DistributedObservation final : public NotificationObservation {
public:
    DistributedObservation(std::string_view name, std::function<void()> handler) : alive_(std::make_shared<bool>(true)) {
        std::shared_ptr<bool> alive = alive_;
        auto body = std::make_shared<std::function<void()>>(std::move(handler));
        target_ = [[DrabwiseDistributedObserver alloc] initWithBody:^{
          if (*alive) (*body)();
        }];
        [NSDistributedNotificationCenter.defaultCenter addObserver:target_
                                                          selector:@selector(notified:)
                                                              name:mac::nsString(name)
                                                            object:nil
                                                suspensionBehavior:NSNotificationSuspensionBehaviorDeliverImmediately];
    }
    ~DistributedObservation() override {
        *alive_ = false;
        [NSDistributedNotificationCenter.defaultCenter removeObserver:target_];
    }
    DistributedObservation(const DistributedObservation&) = delete;
    DistributedObservation& operator=(const DistributedObservation&) = delete;

private:
    DrabwiseDistributedObserver* target_;
    std::shared_ptr<bool> alive_;
};

class DistributedCenter final : public SystemNotificationCenter {
public:
    std::unique_ptr<NotificationObservation> observe(std::string_view name, std::function<void()> handler) override {
        return std::make_unique<DistributedObservation>(name, std::move(handler));
    }
};

}  // namespace

std::unique_ptr<SystemNotificationCenter> makeMacWorkspaceNotifications() { return std::make_unique<WorkspaceCenter>(); }

std::unique_ptr<SystemNotificationCenter> makeMacDistributedNotifications() {
    return std::make_unique<DistributedCenter>();
}

}  // namespace ashview
