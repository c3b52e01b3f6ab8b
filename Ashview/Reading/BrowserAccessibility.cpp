#include "Ashview/Reading/BrowserAccessibility.h"

namespace ashview {

BrowserAccessibility::BrowserAccessibility(Browser browser, Accessibility& accessibility,
                                           std::function<void(const std::string&, const std::string&)> onChange)
    : browser_(std::move(browser)), accessibility_(&accessibility), onChange_(std::move(onChange)) {}

BrowserAccessibility::~BrowserAccessibility() { stop(); }

void BrowserAccessibility::stop() {
    if (!observer_) return;
    observer_->removeFromMainRunLoop();
    observer_.reset();
}

void BrowserAccessibility::start(std::int32_t pid) {
    stop();
    pid_ = pid;
    if (!accessibility_->isProcessTrusted()) return;
    // The observer is owned here, so its callback never outlives this object.
    auto made = accessibility_->createObserver(
        pid, [this](const std::string& notification, const AccessibilityElement& element) {
            notified(notification, element);
        });
    if (!made) return;
    for (const char* name : notifications) (void)made->addNotification(name);
    made->addToMainRunLoop();
    observer_ = std::move(made);
}

void BrowserAccessibility::notified(const std::string& notification, const AccessibilityElement& element) {
    if (notification == "AXTitleChanged" && element.stringAttribute("AXRole") != "AXWindow") return;
    if (onChange_) onChange_(browser_.bundleID, notification);
}

}  // namespace ashview
