// The status menu and the settings window as a scenario uses them: it opens
// the menu and chooses items by their titles, opens the settings on a page,
// types into the add box, adds, and edits rules through the very choices the
// rule form offers, and prints each screen as a person would see it.
//
// Everything goes through the shell's models, so a scenario is refused
// exactly where the window refuses a person (a listed site, an unknown host,
// a rules file that can't be written). Lines that name something the screen
// does not offer throw `SceneFailure`. Main thread only; borrows everything.
#pragma once

#include "Ashview/Shell/MenuItem.h"
#include "Scenario/ScenarioScript.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace ashview {

class AppDelegate;
class SimApplications;

struct SceneFailure {
    std::string what;
};

class ShellScene final {
public:
    ShellScene(AppDelegate& delegate, SimApplications& apps, std::ostream& out)
        : delegate_(delegate), apps_(apps), out_(out) {}

    /// Carries out one of the shell's commands, and the rule commands that
    /// go through the settings (`addSite`, `addApp`, `removeSite`, `setRule`,
    /// `resetRule`, `addDayOff`). False for any other command.
    bool run(const ScenarioCommand& command);

    /// The menu as a person sees it: one item a line, submenus indented,
    /// "✓" before a checked item, "(disabled)" after a disabled one.
    static void print(const std::vector<MenuItem>& menu, std::ostream& out, int depth = 1);

private:
    void choose(const std::vector<std::string>& path);
    void openSettings(const std::string& page);
    void printSettings();
    void printDetail();
    void printMessage();
    void edit(const ScenarioCommand& command);
    template <typename Edit>
    void editInSettings(Edit&& apply);

    AppDelegate& delegate_;
    SimApplications& apps_;
    std::ostream& out_;
};

}  // namespace ashview
