// A running program on a simulated desktop, as the views see it: a fixed
// clock and calendar, Chrome and a listed app, the gray controller over the
// real monitors, a rules folder, and the settings model over all of it.
// Deterministic, so that tests, pictures and benchmarks see the same state.
#pragma once

#include "Ashview/Controller/GrayController.h"
#include "Ashview/Reading/AppMonitor.h"
#include "Ashview/Reading/BrowserMonitor.h"
#include "Ashview/Shell/SettingsModel.h"
#include "AshviewCore/Rules/RuleStore.h"
#include "Platform/Sim/SimAppServices.h"
#include "Platform/Sim/SimApplications.h"
#include "Platform/Sim/SimDesktop.h"

#include "TempFolder.h"

#include <memory>
#include <sstream>
#include <string>

namespace ashview {

class ShellStage {
public:
    static constexpr const char* chrome = "com.google.Chrome";
    static constexpr const char* safari = "com.apple.Safari";

    /// Tuesday 10 March 2026, 10:00 in Berlin.
    static Calendar berlin() { return Calendar("gregorian", "Europe/Berlin", "en_US"); }
    static Instant start() { return *berlin().date(2026, 3, 10, 10, 0, 0); }

    explicit ShellStage(Instant startAt = start()) : desktop(startAt, berlin()) { apps.setScriptTime(0); }
    virtual ~ShellStage() = default;

    /// Builds and starts the controller over the rules folder as it is.
    GrayController& startProgram() {
        controller = std::make_unique<GrayController>(
            RuleStore(folder.path()),
            GrayController::Services{desktop.mainLoop(), desktop.windowServer(), desktop.overlayWindows(),
                                     desktop.workspaceNotifications(), desktop.distributedNotifications(), browsers,
                                     appMonitor, log});
        controller->start();
        return *controller;
    }
    /// The settings model over the running program.
    SettingsModel& settings() {
        if (!model)
            model = std::make_unique<SettingsModel>(SettingsModel::Services{
                *controller, appMonitor, defaults, apps.workspace(), apps.openPanel(), desktop.mainLoop()});
        return *model;
    }

    /// Saves `rules` as the user's and hands them to the running program.
    void setRules(const RuleSet& rules) {
        RuleStore(folder.path()).save(rules);
        controller->rulesChangedInSettings(rules);
        if (model) model->reload();
    }
    RuleSet savedRules() const { return RuleStore(folder.path()).load(); }
    std::filesystem::path rulesFile() const { return folder.path() / "rules.json"; }

    /// A Chrome window in front showing `address`; launches Chrome first.
    std::int64_t browse(const std::string& address, Rect bounds = {80, 80, 1000, 700}) {
        if (!chromePID) chromePID = apps.launchBrowser(chrome);
        return apps.openWindow(chromePID, bounds, address);
    }
    void advance(double seconds) { desktop.clock().advance(seconds); }
    Instant at(int dayOffset, int hour, int minute = 0) const {
        Calendar calendar = berlin();
        return *calendar.date(2026, 3, 10 + dayOffset, hour, minute, 0);
    }

    /// A person's list and two weeks of use, ending on the start day at
    /// about three in the afternoon: three sites and an app with their own
    /// rules, days off, Chrome in front on a listed site, Safari running but
    /// not yet allowed, and Microsoft Edge installed. Needs a stage started 14 days before `start()`.
    void furnish() {
        RuleSet rules = controller->rules();
        SiteRule video = rules.addSite("youtube.com");
        rules.updateSettings(video.id, SiteSettings{std::nullopt, Weekday::all(),
                                                    GrayTrigger::afterLimit(20, std::nullopt, CountPeriod::day),
                                                    StayGray::untilLeave()});
        SiteRule news = rules.addSite("news.ycombinator.com");
        rules.updateSettings(news.id, SiteSettings{ActiveHours{ClockTime{9, 0}, ClockTime{17, 30}},
                                                   WeekdaySet{Weekday::monday, Weekday::tuesday, Weekday::wednesday,
                                                              Weekday::thursday, Weekday::friday},
                                                   GrayTrigger::afterLimit(std::nullopt, 3, CountPeriod::hour),
                                                   StayGray::forMinutes(10)});
        rules.addSite("reddit.com");
        rules.addApp("com.valvesoftware.steam", "Steam");
        rules.addDayOff(DayOff{Uuid::random(), "Christmas", 12, 25, std::nullopt});
        rules.addDayOff(DayOff{Uuid::random(), "Easter trip", 4, 3, 2026});
        setRules(rules);

        const int minutes[][3] = {{38, 10, 24}, {35, 12, 20}, {28, 8, 25}, {40, 15, 10}, {22, 6, 30}, {30, 10, 18}, {50, 4, 35},
                                  {45, 3, 40}, {26, 9, 14}, {20, 11, 16}, {24, 7, 12}, {18, 9, 20}, {30, 2, 28},
                                  {34, 1, 22}, {21, 8, 9}};
        for (int day = -14; day <= 0; ++day) {
            const int* today = minutes[day + 14];
            desktop.clock().advanceTo(at(day, 9, 30));
            std::int64_t window = browse("https://news.ycombinator.com/");
            advance(today[1] * 60.0);
            apps.showAddress(window, "https://www.youtube.com/watch?v=42");
            advance(today[0] * 60.0);
            apps.showAddress(window, "https://www.reddit.com/r/cpp/");
            advance(today[2] * 60.0);
            if (day == 0) break;
            apps.quit(chromePID);
            chromePID = 0;
        }
        for (const char* id : {chrome, safari, "com.microsoft.edgemac", "com.valvesoftware.steam"})
            apps.registerBundle(id, std::string("/Applications/") + id + ".app");
        apps.setPermission(safari, SimPermission::notDecided);
        apps.launchBrowser(safari);
        advance(60);
        // The video site again, past its limit, beside a window of notes.
        std::int32_t notes = apps.launchApp("com.apple.Notes", "Notes");
        apps.openWindow(notes, Rect{900, 420, 480, 380});
        apps.openWindow(chromePID, Rect{420, 300, 860, 540}, "https://www.youtube.com/watch?v=7");
        advance(6);
    }

    TempFolder folder;
    SimDesktop desktop;
    SimApplications apps{desktop};
    BrowserMonitor browsers{ReadingPlatform{apps.workspace(), apps.appleEvents(), apps.accessibility(),
                                            desktop.windowServer(), desktop.mainLoop()}};
    AppMonitor appMonitor{RuleSet::fresh(), apps.workspace(), desktop.windowServer()};
    SimUserDefaults defaults;
    std::ostringstream log;
    std::unique_ptr<GrayController> controller;
    std::unique_ptr<SettingsModel> model;
    std::int32_t chromePID = 0;
};

}  // namespace ashview
