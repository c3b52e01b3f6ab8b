// Scenario files with the output they must give, in tests/Scenario/golden:
// NAME.scenario is played in a fresh data folder; what a person sees must
// equal NAME.out and the log NAME.err. Run with DRABWISE_UPDATE_GOLDEN=1 to write the expected files
// anew, then read the difference before committing it.
#include "Scenario/BuiltInScenario.h"
#include "Scenario/ScenarioPlayer.h"

#include "TempFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace ashview {
namespace {

std::filesystem::path goldenFolder() {
    const char* source = std::getenv("DRABWISE_SOURCE_DIR");
    return std::filesystem::path(source ? source : ".") / "tests" / "Scenario" / "golden";
}

std::string contents(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

ScenarioScript script(const std::string& text, const std::string& name) {
    auto parsed = ScenarioScript::parse(text, name);
    if (auto* error = std::get_if<ScenarioError>(&parsed)) {
        ADD_FAILURE() << error->message();
        return {};
    }
    return std::get<ScenarioScript>(parsed);
}

struct Played {
    std::string out;
    std::string log;
    int status = 0;
};

Played play(const std::string& text, const std::string& name, const std::filesystem::path& data) {
    std::ostringstream out;
    std::ostringstream log;
    ScenarioPlayer player({data, name, out, log});
    int status = player.play(script(text, name));
    return Played{out.str(), log.str(), status};
}

/// Plays NAME.scenario and compares both streams with the expected files.
void expectGolden(const std::string& name) {
    TempFolder data;
    std::filesystem::path folder = goldenFolder();
    Played played = play(contents(folder / (name + ".scenario")), name + ".scenario", data.path());
    EXPECT_EQ(played.status, ScenarioPlayer::finished);
    if (std::getenv("DRABWISE_UPDATE_GOLDEN")) {
        std::ofstream(folder / (name + ".out"), std::ios::binary) << played.out;
        std::ofstream(folder / (name + ".err"), std::ios::binary) << played.log;
    }
    EXPECT_EQ(played.out, contents(folder / (name + ".out"))) << name << ".out";
    EXPECT_EQ(played.log, contents(folder / (name + ".err"))) << name << ".err";
}

// A browser launched 1.9 s after the saved session's start continues that
// session at a restart; one launched 2.0 s after it begins a new one.
TEST(GoldenScenario, ARestartWithinTwoSecondsOfTheSessionStartKeepsTheSession) {
    expectGolden("restart-within-2s");
    expectGolden("restart-at-2s");
}

TEST(GoldenScenario, TheLastBrowserQuitting) { expectGolden("last-browser-quits"); }

// The setup window at the start, its buttons, the system's prompts, and the
// About page; on later starts the window comes back only for a lost permission.
TEST(GoldenScenario, TheSetupWindowAndTheAboutPage) { expectGolden("setup-and-about"); }

TEST(GoldenScenario, ANewUsersFirstMorning) { expectGolden("new-user"); }

TEST(GoldenScenario, TheBuiltInDayTellsItsStory) {
    TempFolder data;
    Played played = play(std::string(builtInScenario), "built-in scenario", data.path());
    EXPECT_EQ(played.status, ScenarioPlayer::finished);
    for (const char* line : {"graying window 100", "counting paused: displaysAsleep", "counting resumed",
                             "restored counts, including this browsing session", "window 100 back to color"}) {
        EXPECT_NE(played.log.find(line), std::string::npos) << line << "\n" << played.log;
    }
    // The gray follows the window's move and resize.
    EXPECT_NE(played.out.find("gray: news (window 100) at 260,120 900x640"), std::string::npos) << played.out;
    EXPECT_EQ(played.out.find("not covering it"), std::string::npos) << played.out;
    EXPECT_NE(played.out.find("Today so far"), std::string::npos) << played.out;
}

}  // namespace
}  // namespace ashview
