// Accessibility: whether this program is trusted, and observers that report
// an application's window notifications.
//
// Raw: an observer passes on every notification it was asked for, with the
// element it concerns; which of them matter is decided above. Callbacks run
// on the main run loop, and only while the observer's source is added to it.
// Main thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace ashview {

/// The element a notification speaks of.
class AccessibilityElement {
public:
    virtual ~AccessibilityElement() = default;
    /// AXUIElementCopyAttributeValue of `attribute`, when the value is a
    /// string; nothing when it is missing, of another type, or the element
    /// cannot be asked.
    virtual std::optional<std::string> stringAttribute(const std::string& attribute) const = 0;
};

/// An AXObserver for one process. Destroying it removes its source from the
/// run loop; no callback runs after that.
class AccessibilityObserver {
public:
    virtual ~AccessibilityObserver() = default;
    /// AXObserverAddNotification for the process's application element; the
    /// system's error code, 0 on success.
    virtual std::int32_t addNotification(const std::string& notification) = 0;
    /// Adds the observer's source to the main run loop in the default mode;
    /// from then on callbacks are delivered.
    virtual void addToMainRunLoop() = 0;
    /// Removes it again; callbacks stop.
    virtual void removeFromMainRunLoop() = 0;
};

class Accessibility {
public:
    using Callback = std::function<void(const std::string& notification, const AccessibilityElement& element)>;

    Accessibility() = default;
    Accessibility(const Accessibility&) = delete;
    Accessibility& operator=(const Accessibility&) = delete;
    virtual ~Accessibility() = default;

    /// AXIsProcessTrusted: whether the user allowed this program. No prompt.
    virtual bool isProcessTrusted() = 0;
    /// AXIsProcessTrustedWithOptions with the prompt option on: the system
    /// asks the user to allow this program, and the answer comes later.
    virtual void promptForTrust() = 0;
    /// AXObserverCreate for process `pid`: null on an error or no result.
    virtual std::unique_ptr<AccessibilityObserver> createObserver(std::int32_t pid, Callback callback) = 0;
};

}  // namespace ashview
