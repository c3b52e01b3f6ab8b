// Listens to one browser's window notifications through Accessibility and
// passes on those that may mean a new address is showing: a focused or main
// window that changed, a new window, and a title change of a window (title
// changes of inner elements are left out, as they stream by the dozen).
//
// Accessibility is optional: without it `start` leaves no observer, and
// nothing is lost but speed. Owned by `BrowserMonitor`; main thread only.
// Destroying it removes the observer from the run loop.
#pragma once

#include "AshviewCore/Reading/BrowserCatalog.h"
#include "Platform/Accessibility.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace ashview {

class BrowserAccessibility final {
public:
    /// The notifications asked for, in the order they are added.
    static constexpr std::array<const char*, 4> notifications{"AXFocusedWindowChanged", "AXMainWindowChanged",
                                                              "AXWindowCreated", "AXTitleChanged"};

    /// `onChange` gets the browser's bundle identifier and the notification's
    /// name. `accessibility` must outlive this object.
    BrowserAccessibility(Browser browser, Accessibility& accessibility,
                         std::function<void(const std::string&, const std::string&)> onChange);
    BrowserAccessibility(const BrowserAccessibility&) = delete;
    BrowserAccessibility& operator=(const BrowserAccessibility&) = delete;
    ~BrowserAccessibility();

    /// Sets the observer up anew for process `pid`: any earlier one is taken
    /// off the run loop first. Afterwards `hasObserver()` tells whether it
    /// worked; it does not while this program is not trusted. `pid()` is
    /// `pid` either way.
    void start(std::int32_t pid);
    /// Takes the observer off the run loop and drops it.
    void stop();
    bool hasObserver() const { return observer_ != nullptr; }
    /// The process of the last `start`; nothing before the first.
    std::optional<std::int32_t> pid() const { return pid_; }
    const Browser& browser() const { return browser_; }

private:
    void notified(const std::string& notification, const AccessibilityElement& element);

    Browser browser_;
    Accessibility* accessibility_;
    std::function<void(const std::string&, const std::string&)> onChange_;
    std::unique_ptr<AccessibilityObserver> observer_;
    std::optional<std::int32_t> pid_;
};

}  // namespace ashview
