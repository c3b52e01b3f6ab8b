// The `drabwise` program as a process: its command line, a second copy on
// the same data folder, and saves cut short by kills.
#include "AshviewCore/Rules/RuleStore.h"
#include "AshviewCore/Tracking/TrackerSnapshotStore.h"
#include "AshviewCore/Usage/UsageStore.h"
#include "Scenario/ScenarioPlayer.h"

#include "TempFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <random>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#ifdef DRABWISE_PROGRAM

namespace ashview {
namespace {

struct Result {
    int status = -1;
    std::string out;
    std::string err;
};

std::string contents(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

/// Runs the program with `arguments` and waits for it.
Result run(const std::vector<std::string>& arguments, const TempFolder& scratch) {
    std::string command = DRABWISE_PROGRAM;
    for (const std::string& argument : arguments) command += " '" + argument + "'";
    std::filesystem::path out = scratch.path() / "stdout";
    std::filesystem::path err = scratch.path() / "stderr";
    command += " >'" + out.string() + "' 2>'" + err.string() + "'";
    int raw = std::system(command.c_str());
    return Result{WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, contents(out), contents(err)};
}

TEST(Program, CommandLineHelpAndBadInput) {
    TempFolder scratch;
    Result help = run({"--help"}, scratch);
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("usage: drabwise [--data-dir DIR] [SCENARIO-FILE]"), std::string::npos);

    EXPECT_EQ(run({"--frobnicate"}, scratch).status, 2);
    EXPECT_EQ(run({"--data-dir"}, scratch).status, 2);
    EXPECT_EQ(run({"--speed", "3"}, scratch).status, 2) << "the speed is for the graphical run";
    EXPECT_EQ(run({"--gui", "--speed", "0"}, scratch).status, 2);
    Result missing = run({(scratch.path() / "nothing.scenario").string()}, scratch);
    EXPECT_EQ(missing.status, 2);
    EXPECT_NE(missing.err.find("cannot read"), std::string::npos);
    Result folder = run({scratch.path().string()}, scratch);
    EXPECT_EQ(folder.status, 2);
    EXPECT_EQ(folder.err, "drabwise: cannot read " + scratch.path().string() + ": it is a folder\n");

    // A bad line: its file and line, and nothing written in the data folder.
    std::filesystem::path script = scratch.path() / "bad.scenario";
    std::ofstream(script) << "start\nadd site news.example\nwait 25\n";
    std::filesystem::path data = scratch.path() / "data";
    Result bad = run({"--data-dir", data.string(), script.string()}, scratch);
    EXPECT_EQ(bad.status, 2);
    EXPECT_EQ(bad.err, script.string() + ":3: expected a duration such as 25m, 1h30m or 1.9s\n");
    EXPECT_EQ(bad.out, "");
    EXPECT_FALSE(std::filesystem::exists(data));
}

TEST(Program, ASecondCopyOnTheSameFolderAlertsAndTheFirstGoesOn) {
    const std::string text =
        "clock 2026-11-23 09:00 Europe/Berlin en_GB\nlaunch chrome\nstart\nadd site news.example\n"
        "set news.example gray right-away\nopen news in chrome at news.example\nwait 1m\nshow\nwait 1h\nshow\n";
    auto parsed = ScenarioScript::parse(text, "first");
    ScenarioScript script = std::get<ScenarioScript>(parsed);

    // The same story, undisturbed, in a folder of its own.
    TempFolder alone;
    std::ostringstream aloneOut;
    std::ostringstream aloneLog;
    ScenarioPlayer({alone.path(), "first", aloneOut, aloneLog}).play(script);

    TempFolder data;
    TempFolder scratch;
    std::ostringstream out;
    std::ostringstream log;
    {
        ScenarioPlayer first({data.path(), "first", out, log});
        std::size_t half = script.commands.size() / 2;
        for (std::size_t i = 0; i < half; ++i) ASSERT_EQ(first.step(script.commands[i]), ScenarioPlayer::finished);

        std::filesystem::path second = scratch.path() / "second.scenario";
        std::ofstream(second) << "launch chrome\nstart\nadd site other.example\n";
        Result copy = run({"--data-dir", data.path().string(), second.string()}, scratch);
        EXPECT_EQ(copy.status, 3);
        EXPECT_EQ(copy.err, "Drabwise is already running\nLook for it in the menu bar.\n");

        for (std::size_t i = half; i < script.commands.size(); ++i) {
            ASSERT_EQ(first.step(script.commands[i]), ScenarioPlayer::finished);
        }
    }
    EXPECT_EQ(out.str(), aloneOut.str());
    EXPECT_EQ(log.str(), aloneLog.str());
    EXPECT_EQ(contents(data.path() / "rules.json").find("other.example"), std::string::npos);
}

/// Kills of the crash test: a few dozen, or DRABWISE_CRASH_KILLS (see
/// scripts/crash).
int kills() {
    const char* value = std::getenv("DRABWISE_CRASH_KILLS");
    return value && std::atoi(value) > 0 ? std::atoi(value) : 36;
}

TEST(Program, KillsDuringSavesLeaveWholeDocumentsAndTheNextStartCleansUp) {
    TempFolder data;
    TempFolder scratch;
    // Saves as often as the program does anything: rule changes write the
    // rules, pauses and restarts write the counters and the history.
    std::ostringstream text;
    text << "launch chrome\nstart\nopen news in chrome at news.example\n";
    for (int i = 0; i < 400; ++i) {
        text << "add site site" << i << ".example\nwait 2m\ndisplays sleep\nwait 1m\ndisplays wake\n";
        if (i % 10 == 0) text << "restart\n";
    }
    std::filesystem::path script = scratch.path() / "busy.scenario";
    std::ofstream(script) << text.str();

    std::mt19937 random(7);
    std::uniform_int_distribution<int> delay(20, 400);
    for (int round = 0; round < kills(); ++round) {
        pid_t child = ::fork();
        if (child == 0) {
            std::freopen("/dev/null", "w", stdout);
            std::freopen("/dev/null", "w", stderr);
            ::execl(DRABWISE_PROGRAM, DRABWISE_PROGRAM, "--data-dir", data.path().c_str(), script.c_str(),
                    static_cast<char*>(nullptr));
            ::_exit(127);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(delay(random)));
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
    }
    // Every document is whole: each store reads its file as it is.
    ASSERT_TRUE(std::filesystem::exists(data.path() / "rules.json"));
    EXPECT_NO_THROW(RuleStore(data.path()).load());
    EXPECT_FALSE(UsageStore{data.path()}.load().setBrokenFileAside);
    if (std::filesystem::exists(data.path() / "running.json")) {
        EXPECT_TRUE(TrackerSnapshotStore{data.path()}.load());
    }

    std::filesystem::path quick = scratch.path() / "quick.scenario";
    std::ofstream(quick) << "start\nstop\n";
    Result next = run({"--data-dir", data.path().string(), quick.string()}, scratch);
    EXPECT_EQ(next.status, 0);
    EXPECT_EQ(next.err.find("could not"), std::string::npos) << next.err;
    EXPECT_EQ(next.err.find("history file"), std::string::npos) << next.err;
    for (const auto& entry : std::filesystem::directory_iterator(data.path())) {
        std::string name = entry.path().filename().string();
        EXPECT_TRUE(!name.starts_with(".") || name == ".drabwise.lock") << name;
    }
}

}  // namespace
}  // namespace ashview

#endif  // DRABWISE_PROGRAM
