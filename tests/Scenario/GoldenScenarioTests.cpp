// Scenario files with the output they must give, in tests/Scenario/golden:
// NAME.scenario is played in a fresh data folder (seeded from NAME.data when
// that folder exists); what a person sees must equal NAME.out and the log
// NAME.err. Run with DRABWISE_UPDATE_GOLDEN=1 to write the expected files
// anew, then read the difference before committing it.
#include "Scenario/BuiltInScenario.h"
#include "Scenario/ScenarioPlayer.h"

#include "TempFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <sys/stat.h>

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
void expectGolden(const std::string& name, const TempFolder& data) {
    std::filesystem::path folder = goldenFolder();
    std::filesystem::path seed = folder / (name + ".data");
    if (std::filesystem::exists(seed)) std::filesystem::copy(seed, data.path(), std::filesystem::copy_options::recursive);
    Played played = play(contents(folder / (name + ".scenario")), name + ".scenario", data.path());
    EXPECT_EQ(played.status, ScenarioPlayer::finished);
    if (std::getenv("DRABWISE_UPDATE_GOLDEN")) {
        std::ofstream(folder / (name + ".out"), std::ios::binary) << played.out;
        std::ofstream(folder / (name + ".err"), std::ios::binary) << played.log;
    }
    EXPECT_EQ(played.out, contents(folder / (name + ".out"))) << name << ".out";
    EXPECT_EQ(played.log, contents(folder / (name + ".err"))) << name << ".err";
}

TEST(GoldenScenario, DisplaysSleepThenTheScreenLocks) {
    TempFolder data;
    expectGolden("sleep-then-lock", data);
}

TEST(GoldenScenario, ARestartWithinTwoSecondsOfTheSessionStartKeepsTheSession) {
    TempFolder within;
    expectGolden("restart-within-2s", within);
    TempFolder at;
    expectGolden("restart-at-2s", at);
}

TEST(GoldenScenario, TheLastBrowserQuitting) {
    TempFolder data;
    expectGolden("last-browser-quits", data);
}

TEST(GoldenScenario, ANewerRulesFileIsNeverWritten) {
    TempFolder data;
    std::string before = contents(goldenFolder() / "newer-rules.data" / "rules.json");
    expectGolden("newer-rules", data);
    EXPECT_EQ(contents(data.path() / "rules.json"), before);
    EXPECT_FALSE(std::filesystem::exists(data.path() / "rules.json.bak"));
    // The counters and the history are kept as usual.
    EXPECT_TRUE(std::filesystem::exists(data.path() / "running.json"));
}

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

/// The identity of the file now at `path`: each save replaces the file, so a
/// save gives a new inode or a new modification time.
std::pair<ino_t, long long> identity(const std::filesystem::path& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) return {0, 0};
    return {info.st_ino, static_cast<long long>(info.st_mtim.tv_sec) * 1'000'000'000 + info.st_mtim.tv_nsec};
}

TEST(ScenarioRuns, TheFirstPauseReasonSavesAndTheOthersDoNot) {
    TempFolder data;
    ScenarioScript day = script(contents(goldenFolder() / "sleep-then-lock.scenario"), "sleep-then-lock");
    std::ostringstream out;
    std::ostringstream log;
    ScenarioPlayer player({data.path(), "sleep-then-lock", out, log});
    std::filesystem::path counts = data.path() / "running.json";
    using Kind = ScenarioCommand::Kind;
    for (const ScenarioCommand& command : day.commands) {
        auto before = identity(counts);
        ASSERT_EQ(player.step(command), ScenarioPlayer::finished);
        auto after = identity(counts);
        if (command.kind == Kind::displaysSleep) {
            EXPECT_NE(after, before) << "the pause saves at once";
            EXPECT_NE(after.first, 0U);
        } else if (command.kind == Kind::screenLock || command.kind == Kind::displaysWake ||
                   command.kind == Kind::screenUnlock) {
            EXPECT_EQ(after, before) << command.text;
        }
    }
}

TEST(ScenarioRuns, StopSavesBeforeItLiftsTheOverlays) {
    TempFolder data;
    std::ostringstream out;
    std::ostringstream log;
    ScenarioScript gray = script("launch chrome\nstart\nadd site news.example\nset news.example gray right-away\n"
                                 "open news in chrome at news.example\nwait 1m\n",
                                 "gray");
    {
        ScenarioPlayer player({data.path(), "gray", out, log});
        for (const ScenarioCommand& command : gray.commands) ASSERT_EQ(player.step(command), ScenarioPlayer::finished);
        ASSERT_NE(out.str().find("gray: news"), std::string::npos) << out.str();
        // The counters' file can't be replaced now, so the save at the stop
        // tells in the log when it ran.
        std::filesystem::remove(data.path() / "running.json");
        std::filesystem::create_directories(data.path() / "running.json" / "in the way");
        player.finish();
    }
    std::string text = log.str();
    std::size_t failedSave = text.find("could not save counts");
    std::size_t lifted = text.find("window 100 back to color: quitting");
    ASSERT_NE(failedSave, std::string::npos) << text;
    ASSERT_NE(lifted, std::string::npos) << text;
    EXPECT_LT(failedSave, lifted);
    // The history was saved all the same.
    EXPECT_TRUE(std::filesystem::exists(data.path() / "history.json"));
}

TEST(ScenarioRuns, ADayWithNothingToReadWakesNoTimer) {
    TempFolder data;
    std::ostringstream out;
    std::ostringstream log;
    ScenarioPlayer player({data.path(), "quiet", out, log});
    ScenarioScript quiet = script("start\nadd site news.example\nadd app com.example.chat Chat\nlaunch app com.example.other Other\nwait 24h\n", "quiet");
    for (std::size_t i = 0; i + 1 < quiet.commands.size(); ++i) player.step(quiet.commands[i]);
    std::size_t before = player.firings();
    player.step(quiet.commands.back());
    EXPECT_EQ(player.firings(), before);
}

}  // namespace
}  // namespace ashview
