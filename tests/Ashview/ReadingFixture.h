// A simulated desktop with applications, and the adapters the reading
// objects are built on.
#pragma once

#include "Ashview/Reading/BrowserMonitor.h"
#include "AshviewCore/Reading/BrowserCatalog.h"
#include "Platform/Sim/SimApplications.h"
#include "Platform/Sim/SimDesktop.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ashview {

class ReadingFixture : public ::testing::Test {
protected:
    static constexpr const char* chrome = "com.google.Chrome";
    static constexpr const char* safari = "com.apple.Safari";
    static constexpr const char* edge = "com.microsoft.edgemac";

    ReadingPlatform platform() {
        return ReadingPlatform{apps.workspace(), apps.appleEvents(), apps.accessibility(), desktop.windowServer(),
                               desktop.mainLoop()};
    }
    static Browser browser(const std::string& id) { return *BrowserCatalog::browser(id); }
    /// The window-server number of the browser window with this scripting id.
    std::int64_t numberOf(std::int32_t pid, std::int64_t scriptingID) {
        for (const SimAppWindow& window : apps.windowsOf(pid))
            if (window.scriptingID == scriptingID) return window.number;
        return -1;
    }

    SimDesktop desktop;
    SimApplications apps{desktop};
};

}  // namespace ashview
