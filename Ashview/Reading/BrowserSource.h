// What the gray controller needs of the browsers: one reading of every
// running browser on demand, where that leaves the program (none running,
// all refusing control, or readable), the windows read, and word when
// something may have changed. `BrowserMonitor` is the implementation; tests
// hand the controller a double.
//
// Main thread only. The controller sets the three callbacks in its `start`
// and clears them when it goes; an implementation calls each one only while
// it is set.
#pragma once

#include "Ashview/Reading/ProbedWindow.h"
#include "AshviewCore/Reading/BrowserCatalog.h"
#include "AshviewCore/Foundation/Instant.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace ashview {

/// Where the browsers stand as of the last reading.
struct BrowserStatus final {
    enum class Kind {
        /// Every running browser refused control; `browser` is the first of them.
        notAllowed,
        /// No browser the program can read runs.
        noBrowser,
        /// At least one running browser can be read.
        running,
    };

    Kind kind = Kind::noBrowser;
    /// Present exactly with `notAllowed`.
    std::optional<Browser> browser;

    friend bool operator==(const BrowserStatus&, const BrowserStatus&) = default;
};

class BrowserSource {
public:
    BrowserSource() = default;
    BrowserSource(const BrowserSource&) = delete;
    BrowserSource& operator=(const BrowserSource&) = delete;
    virtual ~BrowserSource() = default;

    /// Something may have changed; the text is worth a log line.
    std::function<void(const std::string&)> onChange;
    /// One browser really quit while others may remain.
    std::function<void(const Browser&)> onBrowserQuit;
    /// The last browser quit: the browsing session is over. Comes after that
    /// browser's `onBrowserQuit`, with `sessionStart` already absent.
    std::function<void()> onSessionEnd;

    /// Subscribes and takes stock; once, from the controller's `start`.
    virtual void start() = 0;
    /// Takes one reading of every running browser before it returns. May
    /// block while browsers answer.
    virtual void read() = 0;
    virtual BrowserStatus status() const = 0;
    /// Every window of the latest readings, in priority order.
    virtual std::vector<ProbedWindow> windows() const = 0;
    /// The running browsers that refused control as of the last reading.
    virtual std::vector<Browser> notAllowed() const = 0;
    /// When the browsing session began; absent while no browser runs.
    virtual std::optional<Instant> sessionStart() const = 0;
    /// For each running browser of the catalog, in catalog order, the launch
    /// date of the process that counts for it; browsers whose process has no
    /// launch date are left out.
    virtual std::vector<Instant> launchDates() const = 0;
};

}  // namespace ashview
