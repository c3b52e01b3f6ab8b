#include "Scenario/ScenarioScript.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

using Kind = ScenarioCommand::Kind;

ScenarioScript parsed(std::string_view text) {
    auto result = ScenarioScript::parse(text, "day.scenario");
    if (auto* error = std::get_if<ScenarioError>(&result)) {
        ADD_FAILURE() << error->message();
        return {};
    }
    return std::get<ScenarioScript>(result);
}

std::string refusal(std::string_view text) {
    auto result = ScenarioScript::parse(text, "bad.scenario");
    if (auto* error = std::get_if<ScenarioError>(&result)) return error->message();
    return "accepted";
}

// The golden and built-in scenarios play clock, launch, open, tab, wait,
// move, resize and most rule changes end to end; this reads the rest.
TEST(ScenarioScript, ReadsCommandsWithLinesLabelsAndComments) {
    ScenarioScript script = parsed(
        "# a short day\n"
        "\n"
        "launch chrome launched 08:29:58.1   # before the program\n"
        "start\n"
        "launch app com.example.chat \"Chat Pro\"\n"
        "open chat1 in com.example.chat\n"
        "open news in chrome at https://news.example/#top\n"
        "tab news none\n"
        "cover news with chat1\n"
        "space leave news arrive chat1\n"
        "set defaults gray right-away stay until-quit hours any\n"
        "pin example.com gray\n"
        "color for 1h\n"
        "color for session\n"
        "add day off \"New Year\" 01-01\n"
        "add day off Launch 2026-12-03\n"
        "session away\nsession back\nlog out\n");
    ASSERT_EQ(script.commands.size(), 17U);
    const ScenarioCommand& launch = script.commands[0];
    EXPECT_EQ(launch.program, "com.google.Chrome");
    EXPECT_DOUBLE_EQ(*launch.launched, 8 * 3600 + 29 * 60 + 58.1);
    EXPECT_EQ(launch.text, "launch chrome launched 08:29:58.1");
    EXPECT_EQ(launch.line, 3);
    EXPECT_EQ(script.commands[2].name, "Chat Pro");
    EXPECT_FALSE(script.commands[3].frame);
    EXPECT_EQ(script.commands[4].address, "https://news.example/#top");
    EXPECT_EQ(script.commands[5].address, std::nullopt);
    EXPECT_EQ(script.commands[6].others, (std::vector<std::string>{"chat1"}));
    EXPECT_EQ(script.commands[7].labels, (std::vector<std::string>{"news"}));
    EXPECT_EQ(script.commands[7].others, (std::vector<std::string>{"chat1"}));

    const auto& defaults = script.commands[8];
    EXPECT_EQ(defaults.site, "");
    EXPECT_EQ(defaults.change.trigger, GrayTrigger::rightAway());
    EXPECT_EQ(defaults.change.stayGray, StayGray::untilChromeQuits());
    ASSERT_TRUE(defaults.change.hours.has_value());
    EXPECT_FALSE(defaults.change.hours->has_value());  // "any": the whole day
    EXPECT_FALSE(defaults.change.days.has_value());    // not mentioned: unchanged
    EXPECT_EQ(script.commands[9].pin, SitePin::grayThisSite);
    EXPECT_EQ(script.commands[10].minutes, 60);
    EXPECT_EQ(script.commands[11].minutes, std::nullopt);
    EXPECT_EQ(script.commands[12].name, "New Year");
    EXPECT_EQ(script.commands[12].year, std::nullopt);
    EXPECT_EQ(script.commands[13].year, 2026);
    EXPECT_EQ(script.commands[13].month, 12);
    EXPECT_EQ(script.commands[13].day, 3);
    EXPECT_EQ(script.commands[16].kind, Kind::logOut);
}

TEST(ScenarioScript, ABadLineNamesItsFileLineAndWhatWasExpected) {
    struct Case {
        std::string text;
        std::string message;
    };
    std::string tenYears;
    for (int day = 0; day < 3653; ++day) tenYears += "wait until 09:00\n";
    const std::vector<Case> cases{
        {"wait 25", "bad.scenario:1: expected a duration such as 25m, 1h30m or 1.9s"},
        {"wait until 24:00", "bad.scenario:1: expected a time of day such as 13:00 or 13:00:30"},
        {"start\nwait 1m\nclock 2026-11-23 09:00", "bad.scenario:3: expected \"clock\" only as the first command of the scenario"},
        {"clock 2026-02-30 09:00", "bad.scenario:1: expected a real date such as 2026-11-23"},
        {"clock 2026-11-23 09:00 Mars/Olympus", "bad.scenario:1: expected a time zone such as Europe/Berlin, not \"Mars/Olympus\""},
        {"clock 2026-11-23 09:00 UTC " + std::string(200, 'n'), "bad.scenario:1: expected a locale such as en_GB"},
        {"launch netscape", "bad.scenario:1: expected a browser such as chrome or safari, or \"app\", not \"netscape\""},
        {"launch safari\nlaunch Safari", "bad.scenario:2: expected a browser that is not running"},
        {"open news in chrome", "bad.scenario:1: expected a running browser or app, not \"chrome\""},
        {"launch chrome\nopen 1st in chrome", "bad.scenario:2: expected a label of letters, digits, - and _, beginning with a letter"},
        {"launch chrome\nopen a in chrome\nopen a in chrome", "bad.scenario:3: expected a label that no open window has"},
        {"launch chrome\nopen a in chrome\nquit chrome\nfocus a", "bad.scenario:4: expected the label of an open window, not \"a\""},
        {"launch app com.example.chat\nopen c in com.example.chat at example.com", "bad.scenario:2: expected no address: an app's window shows none"},
        {"launch app com.example.chat\nopen c in com.example.chat\ntab c example.com", "bad.scenario:3: expected a browser window; \"c\" belongs to an app"},
        {"launch chrome\nopen a in chrome frame 0 0 0 10", "bad.scenario:2: expected a width and a height above 0"},
        {"launch chrome\nopen a in chrome\nmove a by 10", "bad.scenario:3: expected two numbers of points"},
        {"launch chrome\nopen a in chrome\ncover a with a", "bad.scenario:3: expected another window than the one covered"},
        {"gray a", "bad.scenario:1: expected \"start\" before \"gray\": Drabwise is not running here"},
        {"start\nlog out\nstats", "bad.scenario:3: expected \"start\" before \"stats\": Drabwise is not running here"},
        {"start\nstart", "bad.scenario:2: expected \"start\" only while Drabwise is not running"},
        {"start\ncolor for 90s", "bad.scenario:2: expected whole minutes such as 5m, or \"session\""},
        {"start\nset example.com gray after 0 opens per hour", "bad.scenario:2: expected one count of opens, at least 1"},
        {"start\nset example.com gray after 20m", "bad.scenario:2: expected \"or\" and another limit, or \"per\" and hour, day or session"},
        {"start\nset example.com hours 9-17", "bad.scenario:2: expected hours such as 09:00-17:00, or \"any\""},
        {"start\nset example.com days mon,funday", "bad.scenario:2: expected days: every-day, weekdays, weekends, none, or a list such as mon,wed"},
        {"start\nset example.com stay 0m", "bad.scenario:2: expected until-leave, until-quit, or minutes such as 10m"},
        {"start\nadd day off \"Holiday 12-25", "bad.scenario:2: expected a closing \" in this line"},
        {"screen lock now", "bad.scenario:1: expected the end of the line, not \"now\""},
        // Durations and counts: what a person could mean, and nothing that overflows.
        {"wait 744h\nwait 745h", "bad.scenario:2: expected a wait of at most 744h (a month)"},
        {"wait 2562048h", "bad.scenario:1: expected a wait of at most 744h (a month)"},
        {"wait 1e308h", "bad.scenario:1: expected a wait of at most 744h (a month)"},
        {tenYears + "wait 1s", "bad.scenario:3654: expected waits that add up to at most ten years"},
        {"start\ncolor for 24h\ncolor for 1441m", "bad.scenario:3: expected at most 1440 minutes"},
        {"start\ncolor for 2147483648m", "bad.scenario:2: expected at most 1440 minutes"},
        {"start\ncolor for 9223372036854775807m", "bad.scenario:2: expected at most 1440 minutes"},
        {"start\nset a.com gray after 9223372036854775807m per day", "bad.scenario:2: expected at most 600 minutes"},
        {"start\nset a.com gray after 600m or 50 opens per day stay 10h\nset a.com stay 601m",
         "bad.scenario:3: expected at most 600 minutes"},
        {"start\nset a.com gray after 51 opens per day", "bad.scenario:2: expected at most 50 opens"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(refusal(c.text), c.message) << c.text;
    }
}

TEST(ScenarioScript, TracksWhatRunsAcrossRestartsAndLogOut) {
    // After a log out nothing runs: the user starts over.
    EXPECT_EQ(refusal("launch chrome\nopen a in chrome\nstart\nlog out\nlaunch chrome\nopen a in chrome\nstart\nshow"),
              "accepted");
    EXPECT_EQ(refusal("start\nrestart\nshow\nstop\nstart\nstats"), "accepted");
    // Windows survive a restart of the program: they belong to the browser.
    EXPECT_EQ(refusal("launch chrome\nopen a in chrome\nstart\nrestart\ngray a"), "accepted");
    // A quit browser's name is free again, and so are the labels of its windows.
    EXPECT_EQ(refusal("launch safari\nopen a in safari\nquit safari\nlaunch safari\nopen a in safari"), "accepted");
}

TEST(ScenarioScript, NamesBrowsersByKeyIdentifierOrName) {
    EXPECT_EQ(scenarioBrowser("chrome"), "com.google.Chrome");
    EXPECT_EQ(scenarioBrowser("Safari"), "com.apple.Safari");
    EXPECT_EQ(scenarioBrowser("GoogleChromeCanary"), "com.google.Chrome.canary");
    EXPECT_EQ(scenarioBrowser("safari-preview"), "com.apple.SafariTechnologyPreview");
    EXPECT_EQ(scenarioBrowser("firefox"), std::nullopt);
}

}  // namespace
}  // namespace ashview
