// The setup window and the About page as a scenario uses them, and the
// desktop's side of setup: which browsers are installed, what the user has
// allowed, and the user's answer to the system's permission prompt.
//
// The window is opened, pressed and closed through its owner and model, as a
// person's clicks would, and printed as a person sees it. Lines that ask for
// something the screen does not offer (a button on a row that has none, a
// closed window) throw `SceneFailure`. Main thread only; borrows everything.
#pragma once

#include "Scenario/ScenarioScript.h"
#include "Scenario/ShellScene.h"

#include <iosfwd>

namespace ashview {

class AppDelegate;
class SetupWindow;
class SimApplications;
class SimClock;

class SetupScene final {
public:
    /// `delegate` is absent while the program does not run.
    SetupScene(AppDelegate* delegate, SimApplications& apps, SimClock& clock, std::ostream& out)
        : delegate_(delegate), apps_(apps), clock_(clock), out_(out) {}

    /// Carries out `install`, `uninstall`, `permission`, `accessibility`,
    /// `setup` (and its `allow`, `accessibility` and `close`), `answerPrompt`
    /// and `about`; nothing for any other command.
    void run(const ScenarioCommand& command);

private:
    /// The window, while it is open; else a `SceneFailure`.
    SetupWindow& openWindow();
    void press(const ScenarioCommand& command);
    void answer(const ScenarioCommand& command);
    void printSetup();
    void printAbout();

    AppDelegate* delegate_;
    SimApplications& apps_;
    SimClock& clock_;
    std::ostream& out_;
};

}  // namespace ashview
