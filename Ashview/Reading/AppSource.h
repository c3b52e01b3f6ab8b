// What the gray controller needs of the listed apps: which listed processes
// run, their windows in a stack, and word when one opens or quits. The rules
// it judges by are the controller's, handed over at every change.
// `AppMonitor` is the implementation; tests hand the controller a double.
//
// Main thread only. The controller sets `onChange` in its `start` and clears
// it when it goes.
#pragma once

#include "Ashview/Reading/ProbedWindow.h"
#include "AshviewCore/Rules/RuleSet.h"
#include "AshviewOverlay/StackedWindow.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace ashview {

/// A running process that a rule lists.
struct ListedProcess final {
    std::string bundleID;
    /// The `host` of the rule that covers it.
    std::string key;

    friend bool operator==(const ListedProcess&, const ListedProcess&) = default;
};

class AppSource {
public:
    AppSource() = default;
    AppSource(const AppSource&) = delete;
    AppSource& operator=(const AppSource&) = delete;
    virtual ~AppSource() = default;

    /// A listed app changed; the text is worth a log line.
    std::function<void(const std::string&)> onChange;

    /// Subscribes and takes stock; once, from the controller's `start`.
    virtual void start() = 0;
    /// From now on, judges processes by `rules`.
    virtual void setRules(const RuleSet& rules) = 0;
    /// The listed processes running now, by process identifier.
    virtual std::map<std::int32_t, ListedProcess> running() const = 0;
    /// The listed apps' windows among `in` (front to back), in that order.
    virtual std::vector<ProbedWindow> windows(const std::vector<StackedWindow>& in) const = 0;
};

}  // namespace ashview
