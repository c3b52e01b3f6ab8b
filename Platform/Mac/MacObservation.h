// One block observer of a Foundation notification center, as a
// `NotificationObservation`: its handler runs on the main queue, and
// destroying it (on the main thread) removes the observer. A shared flag
// keeps a delivery already queued on the main queue from running the
// handler after that. Objective-C++ only, under ARC.
#pragma once

#import <Foundation/Foundation.h>

#include "Platform/SystemNotifications.h"

#include <functional>
#include <memory>

namespace ashview::mac {

class Observation final : public NotificationObservation {
public:
    /// Observes `name` on `center`, from any sender; `handler` gets the
    /// notification while the observation lives.
    Observation(NSNotificationCenter* center, NSNotificationName name, std::function<void(NSNotification*)> handler)
        : center_(center), alive_(std::make_shared<bool>(true)) {
        std::shared_ptr<bool> alive = alive_;
        auto body = std::make_shared<std::function<void(NSNotification*)>>(std::move(handler));
        token_ = [center addObserverForName:name
                                     object:nil
                                      queue:NSOperationQueue.mainQueue
                                 usingBlock:^(NSNotification* notification) {
                                   if (*alive) (*body)(notification);
                                 }];
    }
    ~Observation() override {
        *alive_ = false;
        [center_ removeObserver:token_];
    }
    Observation(const Observation&) = delete;
    Observation& operator=(const Observation&) = delete;

private:
    NSNotificationCenter* center_;
    id<NSObject> token_;
    std::shared_ptr<bool> alive_;
};

}  // namespace ashview::mac
