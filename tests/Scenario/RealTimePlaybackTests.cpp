// A scenario played in slices of real time: lines run when their turn
// comes, a wait spreads over as many slices as it takes, and the clock goes
// on after the last line; a failed line stops everything.
#include "Ashview/App/AppDelegate.h"
#include "Ashview/Controller/GrayController.h"
#include "Platform/Sim/SimDesktop.h"
#include "Scenario/RealTimePlayback.h"

#include "TempFolder.h"

#include <gtest/gtest.h>

#include <sstream>

namespace ashview {
namespace {

ScenarioScript parsed(const std::string& text) {
    auto script = ScenarioScript::parse(text, "test.scenario");
    if (auto* error = std::get_if<ScenarioError>(&script)) ADD_FAILURE() << error->message();
    return std::get<ScenarioScript>(script);
}

TEST(RealTimePlayback, PlaysLinesInTurnAndSpreadsWaitsOverTheSlices) {
    TempFolder data;
    std::ostringstream out;
    std::ostringstream log;
    ScenarioPlayer player({data.path(), "test.scenario", out, log});
    ScenarioScript script = parsed(
        "clock 2026-03-10 09:00 Europe/Berlin\n"
        "start\n"
        "wait 10m\n"
        "add site example.com\n"
        "wait 1m\n"
        "set nowhere.example gray right-away\n"
        "wait 1m\n");
    RealTimePlayback playback(script, player, out);
    auto elapsed = [&] {
        SimDesktop* desktop = player.desktop();
        return desktop->clock().now() - *desktop->clock().calendar().date(2026, 3, 10, 9, 0, 0);
    };
    auto listed = [&] { return player.delegate()->controller()->rules().sites.size(); };

    playback.advance(0);
    ASSERT_NE(player.delegate(), nullptr) << "the lines before the first wait ran at once";
    EXPECT_EQ(elapsed(), 0);

    playback.advance(300);
    EXPECT_EQ(elapsed(), 300);
    EXPECT_EQ(listed(), 0u) << "still inside the wait";

    // The rest of the first wait, the line after it, and part of the next.
    playback.advance(330);
    EXPECT_EQ(elapsed(), 630);
    EXPECT_EQ(listed(), 1u);
    EXPECT_EQ(playback.status(), ScenarioPlayer::finished);

    // The failing line stops the play where it stands.
    playback.advance(100);
    EXPECT_EQ(playback.status(), ScenarioPlayer::failedLine);
    EXPECT_EQ(elapsed(), 660);
    playback.advance(100);
    EXPECT_EQ(elapsed(), 660);
    EXPECT_FALSE(playback.isAtEnd());
}

TEST(RealTimePlayback, TheClockGoesOnAfterTheLastLine) {
    TempFolder data;
    std::ostringstream out;
    std::ostringstream log;
    ScenarioPlayer player({data.path(), "test.scenario", out, log});
    ScenarioScript script = parsed("start\nwait 5s\n");
    RealTimePlayback playback(script, player, out);
    playback.advance(0);
    const Instant began = player.desktop()->clock().now();
    playback.advance(65);
    EXPECT_TRUE(playback.isAtEnd());
    EXPECT_EQ(player.desktop()->clock().now() - began, 65);
    EXPECT_NE(out.str().find(" > wait 5s"), std::string::npos);
}

}  // namespace
}  // namespace ashview
