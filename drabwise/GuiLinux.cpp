#include "drabwise/Gui.h"

#include "Ashview/App/AppDelegate.h"
#include "Ashview/Controller/GrayController.h"
#include "AshviewQt/SimulatedScreen.h"
#include "AshviewQt/QtWindowViews.h"
#include "AshviewQt/StatusItem.h"
#include "AshviewQt/Theme.h"
#include "Platform/Sim/SimApplications.h"
#include "Scenario/RealTimePlayback.h"
#include "Scenario/ScenarioPlayer.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <iostream>

namespace ashview {

namespace {

/// Real milliseconds between two steps of the virtual clock.
constexpr int tickMilliseconds = 50;

/// The scenario against the real clock: every tick lets the real time since
/// the last one pass, times the speed.
class Playback final : public QObject {
public:
    Playback(const ScenarioScript& script, const GuiOptions& options)
        : speed_(options.speed),
          views_([this](const std::string& url) {
              if (SimApplications* apps = player_.applications()) apps->workspace().openURL(url);
          }),
          player_({options.dataDirectory, options.file, std::cout, std::cerr, &views_}),
          playback_(script, player_, std::cout) {}

    ScenarioPlayer& player() { return player_; }
    int status() const { return playback_.status(); }

    /// Plays up to the first wait (which makes the desktop), then goes on
    /// from the event loop; `onTick` runs after each step.
    void start(std::function<void()> onTick) {
        onTick_ = std::move(onTick);
        step(0);
        connect(&timer_, &QTimer::timeout, this,
                [this] { step(speed_ * static_cast<double>(clock_.restart()) / 1000.0); });
        clock_.start();
        timer_.start(tickMilliseconds);
    }

private:
    void step(double seconds) {
        playback_.advance(seconds);
        if (onTick_) onTick_();
    }

    double speed_;
    QtWindowViews views_;
    ScenarioPlayer player_;
    RealTimePlayback playback_;
    QTimer timer_;
    QElapsedTimer clock_;
    std::function<void()> onTick_;
};

}  // namespace

int runGui(int& argc, char** argv, const ScenarioScript& script, const GuiOptions& options) {
    QApplication application(argc, argv);
    application.setApplicationName("Drabwise");
    Theme::apply(application);

    Playback playback(script, options);
    ScenarioPlayer& player = playback.player();
    StatusItem item(
        [&player]() -> std::vector<MenuItem> {
            AppDelegate* delegate = player.delegate();
            if (!delegate || !delegate->statusMenu()) return {};
            return delegate->statusMenu()->menuNeedsUpdate();
        },
        SystemActions{[&player] {
                          if (AppDelegate* delegate = player.delegate()) delegate->checkForUpdates();
                      },
                      {}});

    SimulatedScreen window(item);
    window.resize(1200, 776);

    // Quitting from the menu or closing the desktop ends the run the normal
    // way: the program stops and saves before the process ends.
    QObject::connect(&application, &QCoreApplication::aboutToQuit, [&player] { player.finish(); });

    playback.start([&] { window.showDesktop(player.desktop(), player.applications()); });
    window.show();
    item.showInTray();
    const int ended = application.exec();
    return playback.status() != ScenarioPlayer::finished ? playback.status() : ended;
}

}  // namespace ashview
