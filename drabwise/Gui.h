// `drabwise --gui`: the scenario played in real time (times a speed factor)
// in a window that shows the simulated desktop, with a menu-bar strip that
// holds the program's real status item and its menu, and the program's real
// windows. A person can use the desktop and the menu while it plays. Linux
// only; the only part of the program that needs a display.
#pragma once

#include "Scenario/ScenarioScript.h"

#include <filesystem>
#include <string>

namespace ashview {

struct GuiOptions final {
    std::filesystem::path dataDirectory;
    std::string file;
    /// Virtual seconds per real second.
    double speed = 1;
};

/// Plays `script` in the window until the person quits; the exit status.
int runGui(int& argc, char** argv, const ScenarioScript& script, const GuiOptions& options);

}  // namespace ashview
