// Many simulated days in one run: browsers and an app start and quit, windows
// open, change tabs, move, are covered and change Space, the displays sleep,
// the screen locks, the program restarts, the user edits rules, takes days
// off and gives commands, across the end of daylight saving time. The program
// must end normally with no figure below zero, keep its history within its
// 400 days, and hold no more memory after more days.
//
// Three days run with the tests; scripts/soak runs thirty, or any number
// (DRABWISE_SOAK_DAYS) from any seed (DRABWISE_SOAK_SEED).
#include "AshviewCore/Foundation/AtomicFile.h"
#include "AshviewCore/Foundation/Json.h"
#include "AshviewCore/Usage/LocalDays.h"
#include "AshviewCore/Usage/UsageStore.h"
#include "Scenario/ScenarioPlayer.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

#include <malloc.h>

#include <cstdlib>
#include <map>
#include <random>
#include <set>
#include <sstream>

namespace ashview {
namespace {

long setting(const char* name, long fallback) {
    const char* value = std::getenv(name);
    return value && std::atol(value) > 0 ? std::atol(value) : fallback;
}

/// A scenario of days of use from `seed`, keeping track of what runs and
/// what is open as the language requires.
class SoakScript {
public:
    explicit SoakScript(unsigned seed) : random_(seed) {}

    std::string make(long days, const Calendar& calendar, Instant firstDay) {
        say("clock 2026-10-24 06:30 Europe/Berlin en_GB\nstart\nadd site news.example\nadd site video.example");
        say("add app com.example.chat Chat\nset video.example gray right-away stay 10m");
        for (long day = 1; day <= days; ++day) {
            say("wait until 07:00\ndisplays wake");
            if (!started_) say("start");
            started_ = true;
            DateComponents next = calendar.components(calendar.addingDays(firstDay, day));
            if (chance(15)) say("add day off Off " + std::to_string(next.month) + "-" + std::to_string(next.day));
            for (int episode = between(4, 9); episode > 0; --episode) {
                act();
                say("wait " + std::to_string(between(1, 30)) + "m");
            }
            for (const std::string& program : std::vector<std::string>(running_.begin(), running_.end()))
                if (chance(85)) quit(program);
            bool leaves = chance(10);
            bool stops = !leaves && chance(25);
            if (leaves) {
                say("log out");
                running_.clear();
                windows_.clear();
            }
            if (stops) say("stop");
            started_ = !leaves && !stops;
            say("wait until 23:00\ndisplays sleep");
        }
        return text_.str();
    }

private:
    void say(const std::string& lines) { text_ << lines << "\n"; }
    int between(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
    bool chance(int percent) { return between(1, 100) <= percent; }
    std::string any(const std::vector<std::string>& from) {
        return from[static_cast<std::size_t>(between(0, static_cast<int>(from.size()) - 1))];
    }
    void quit(std::string program) {
        say("quit " + program);
        running_.erase(program);
        std::erase_if(windows_, [&](const auto& window) { return window.second == program; });
    }
    void open(const std::string& program, const std::string& address) {
        if (!running_.contains(program)) say(program == chat ? "launch app " + chat : "launch " + program);
        running_.insert(program);
        std::string label = "w" + std::to_string(++opened_);
        say("open " + label + " in " + program + (address == "none" ? "" : " at " + address));
        windows_[label] = program;
    }

    void act() {
        const std::vector<std::string> addresses{"news.example/a", "https://video.example/v", "mail.example",
                                                 "docs.example/p", "none"};
        std::vector<std::string> open;
        for (const auto& [label, program] : windows_) open.push_back(label);
        std::string some = open.empty() ? "" : any(open);
        int what = between(0, 12);
        if (open.empty() && what >= 2 && what <= 7) what = 0;
        switch (what) {
            case 0: return this->open(any({"chrome", "safari", "edge"}), any(addresses));
            case 1: return this->open(chat, "none");
            case 2:
                if (windows_[some] != chat) say("tab " + some + " " + any(addresses));
                return;
            case 3: {
                std::string x = std::to_string(between(0, 900));
                return say("move " + some + " to " + x + " 40\nresize " + some + " 800 600");
            }
            case 4: return say(open.size() < 2 ? "focus " + some : "cover " + open.front() + " with " + open.back());
            case 5: return say("space leave " + some + "\nwait 3m\nspace arrive " + some);
            case 6: return say("minimise " + some + "\nwait 2m\nrestore " + some + "\ngray " + some);
            case 7:
                windows_.erase(some);
                return say("close " + some);
            case 8:
                if (!running_.empty()) quit(*running_.begin());
                return;
            case 9:
                return say(any({"screen lock\nwait 4m\nscreen unlock", "session away\nwait 9m\nsession back",
                                "displays sleep\nwait 20m\ndisplays wake", "restart"}));
            case 10:
                return say("set " + any({"news.example", "video.example"}) + " " +
                           any({"days weekdays", "days every-day", "hours 09:00-17:00", "hours any",
                                "gray after 10m per hour", "gray after 3 opens per session", "stay until-quit"}));
            case 11:
                docs_ = !docs_;
                return say(docs_ ? "add site docs.example" : "remove docs.example");
            default:
                return say(any({"pin news.example gray", "pin news.example settings", "color for 5m",
                                "color for session", "show", "stats"}));
        }
    }

    static inline const std::string chat = "com.example.chat";
    std::mt19937 random_;
    std::ostringstream text_;
    bool started_ = true;
    bool docs_ = false;
    int opened_ = 0;
    std::set<std::string> running_;
    std::map<std::string, std::string> windows_;
};

/// Every number in `value`, with where it stands.
void numbers(const Json::Value& value, const std::string& at, std::vector<std::pair<std::string, double>>& found) {
    if (value.is_number()) found.emplace_back(at, value.get<double>());
    if (value.is_object())
        for (const auto& [key, item] : value.items()) numbers(item, at + "." + key, found);
    if (value.is_array())
        for (const auto& item : value) numbers(item, at + "[]", found);
}

TEST(Soak, DaysOfUseAcrossAClockChangeEndNormallyWithinBounds) {
    const long days = setting("DRABWISE_SOAK_DAYS", 3);
    Calendar calendar("gregorian", "Europe/Berlin", "en_GB");
    Instant firstDay = *calendar.date(2026, 10, 24);
    auto seed = static_cast<unsigned>(setting("DRABWISE_SOAK_SEED", 1));
    auto parsed = ScenarioScript::parse(SoakScript(seed).make(days, calendar, firstDay), "soak");
    ASSERT_TRUE(std::holds_alternative<ScenarioScript>(parsed)) << std::get<ScenarioError>(parsed).message();

    // A history that is full already: every new day must push an old one out.
    TempFolder data;
    UsageHistory full;
    for (long back = 1; back < UsageHistory::keptDays; ++back) {
        full.update("news.example", LocalDays(calendar).key(calendar.addingDays(firstDay, -back)),
                    [](UsageHistory::Totals& totals) { totals.seconds = 600; });
    }
    UsageStore{data.path()}.save(full);

    // What a person sees, a day at a time: no failure, no figure below zero.
    // Heap in use (the g++ build's allocator) each morning and at the end.
    std::ostringstream out;
    std::vector<std::size_t> heap;
    auto look = [&] {
        std::string seen = out.str();
        EXPECT_EQ(seen.find("could not"), std::string::npos) << seen;
        for (std::size_t at = seen.find("> stats\n"); at != std::string::npos; at = seen.find("> stats\n", at + 1)) {
            std::string statistic = seen.substr(at, seen.find(" > ", at + 8) - at);
            EXPECT_EQ(statistic.find('-'), std::string::npos) << statistic;
        }
        out.str("");
        heap.push_back(::mallinfo2().uordblks);
    };
    {
        ScenarioPlayer player({data.path(), "soak", out, out});
        for (const ScenarioCommand& command : std::get<ScenarioScript>(parsed).commands) {
            if (command.kind == ScenarioCommand::Kind::waitUntil && command.seconds == 7 * 3600.0) look();
            ASSERT_EQ(player.step(command), ScenarioPlayer::finished) << command.line << ": " << command.text;
        }
        player.finish();
        look();
    }

    std::vector<std::pair<std::string, double>> figures;
    for (const char* file : {"history.json", "running.json"}) {
        numbers(Json::parse(*AtomicFile::read(data.path() / file)), file, figures);
    }
    for (const auto& [at, figure] : figures) EXPECT_GE(figure, 0) << at;
    UsageHistory history = UsageStore{data.path()}.load().history;
    EXPECT_LE(history.days.size(), static_cast<std::size_t>(UsageHistory::keptDays));
    EXPECT_GT(history.days.rbegin()->first, LocalDays(calendar).key(firstDay)) << "days of this run were counted";
    // From the second morning on, nothing is kept per day played.
    ASSERT_GE(heap.size(), 3u);
    EXPECT_LE(heap.back(), heap[1] + 256 * 1024) << "bytes in use";
}

}  // namespace
}  // namespace ashview
