// A scenario: the text script that drives the program on the simulated
// desktop, one command per line (the language is described in
// docs/scenarios.md).
//
// `parse` is a pure function from the whole text to commands. It checks
// everything a script can get wrong without running it: the words, the
// numbers, the addresses, that a window is open and a program runs when a
// line names them, that the program runs when a line asks it for something.
// A script with a bad line is refused whole, so nothing of it runs and no
// data file is written.
#pragma once

#include "AshviewCore/Rules/SitePin.h"
#include "AshviewCore/Rules/SiteSettings.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace ashview {

struct ScenarioCommand final {
    enum class Kind {
        // The virtual clock.
        clock,      ///< text: date, time, zone and locale as written; instant fields below
        wait,       ///< seconds
        waitUntil,  ///< clockTime, seconds (of the minute)
        // The program itself.
        start,
        stop,
        restart,
        // Browsers and apps.
        launchBrowser,  ///< program (bundle id); launched (local time of day) or undated
        launchApp,      ///< program (bundle id), name
        quit,           ///< program
        // Windows, named by their label.
        open,      ///< label, program, address (optional), frame (optional)
        tab,       ///< label, address (absent: a tab without a page)
        focus,     ///< label
        moveBy,    ///< label, numbers {dx, dy}
        moveTo,    ///< label, numbers {x, y}
        resize,    ///< label, numbers {width, height}
        cover,     ///< label (covered), other (the window put in front of it)
        minimise,  ///< label
        restore,   ///< label
        close,     ///< label
        space,     ///< labels leaving, others arriving
        // The system.
        displaysSleep,
        displaysWake,
        screenLock,
        screenUnlock,
        sessionAway,
        sessionBack,
        logOut,
        // The user's commands.
        toggleGray,       ///< label
        pin,              ///< site, pin
        showInColor,      ///< minutes (absent: the rest of the browsing session)
        addSite,          ///< site
        addApp,           ///< program (bundle id), name
        removeSite,       ///< site
        // Rule changes through the settings.
        setRule,          ///< site (absent: the defaults for new sites), settings
        resetRule,        ///< site
        addDayOff,        ///< name, month, day, year (optional)
        // Looking.
        show,
        stats,
        // The status menu and the settings window, as a person uses them.
        menu,             ///< prints the menu
        choose,           ///< others: the title path of a menu item
        settings,         ///< label: the page to open ("" for the page as it is)
        typeSite,         ///< name: the text typed into the add box
        submitSite,       ///< the add box's submit
        addFrontSite,     ///< the add area's "Add {host}"
        addUsedApp,       ///< the add area's "Add {name}"
        pickApp,          ///< address: the bundle chosen in the open panel
        editRule,         ///< site (empty: the defaults for new sites), others: the control and its value
        removeDayOff,     ///< name
        clearHistory,
        // Setup and About: what is installed and allowed, and the two windows.
        install,        ///< program
        uninstall,      ///< program
        permission,     ///< program; name: "allowed", "denied" or "not-asked"
        accessibility,  ///< name: "allowed" or "not-allowed"
        setup,          ///< shows the setup window
        setupPress,     ///< program: that browser's row; empty: the Accessibility row
        setupClose,
        answerPrompt,   ///< program; name: "allow" or "deny"
        about,
    };

    Kind kind = Kind::show;
    /// 1-based line of the script.
    int line = 0;
    /// The line as written, without comment and surrounding blanks.
    std::string text;

    std::string label;
    std::vector<std::string> labels;
    std::vector<std::string> others;
    /// A browser's or an app's bundle identifier.
    std::string program;
    /// A host, or an app's key ("app:" and the bundle identifier), as the
    /// user would type it into the settings.
    std::string site;
    std::string name;
    std::optional<std::string> address;
    std::vector<double> numbers;
    /// Quartz x, y, width, height.
    std::optional<std::vector<double>> frame;
    double seconds = 0;
    std::optional<std::int64_t> minutes;
    std::optional<ClockTime> clockTime;
    /// The wall-clock time of day a browser was launched, seconds since
    /// local midnight; absent: now.
    std::optional<double> launched;
    bool undated = false;
    SitePin pin = SitePin::followSettings;
    /// For `setRule`: what the line changes, applied over the current settings.
    struct SettingsChange final {
        std::optional<WeekdaySet> days;
        std::optional<std::optional<ActiveHours>> hours;
        std::optional<GrayTrigger> trigger;
        std::optional<StayGray> stayGray;
        friend bool operator==(const SettingsChange&, const SettingsChange&) = default;
    };
    SettingsChange change;
    /// For `clock`: the local date and time and the calendar's names.
    std::vector<long> dateTime;
    std::string zone;
    std::string locale;
    /// For `addDayOff`.
    std::int64_t month = 0;
    std::int64_t day = 0;
    std::optional<std::int64_t> year;
};

/// Why a script was refused: the first bad line.
struct ScenarioError final {
    std::string file;
    int line = 0;
    /// What the line should have held, as "expected ...".
    std::string expected;

    /// "FILE:LINE: expected ...".
    std::string message() const;
    friend bool operator==(const ScenarioError&, const ScenarioError&) = default;
};

struct ScenarioScript final {
    std::vector<ScenarioCommand> commands;

    /// The commands of `text`, or the first bad line of it. `file` only
    /// names the script in the error.
    static std::variant<ScenarioScript, ScenarioError> parse(std::string_view text, std::string_view file);
};

/// The browser meant by a scenario's word for it: a short key ("chrome",
/// "safari", "edge", ...), a bundle identifier of the catalog, or the
/// catalog's name without blanks, all in any case. Nothing for other words.
std::optional<std::string> scenarioBrowser(std::string_view word);

}  // namespace ashview
