#include "Scenario/ScenarioPlayer.h"

#include "Ashview/App/AppDelegate.h"
#include "Ashview/Controller/GrayController.h"
#include "Ashview/App/InstanceLock.h"
#include "Ashview/Controller/Log.h"
#include "AshviewCore/Reading/BrowserCatalog.h"
#include "AshviewCore/Rules/Host.h"
#include "AshviewCore/Rules/RuleError.h"
#include "Platform/AppServices.h"
#include "Platform/Sim/SimAppServices.h"
#include "Platform/Sim/SimApplications.h"
#include "Platform/Sim/SimDesktop.h"
#include "Platform/Sim/SimNotificationCenter.h"
#include "Scenario/HeadlessViews.h"
#include "Scenario/SetupScene.h"
#include "Scenario/ShellScene.h"

#include <cmath>
#include <cstdlib>
#include <map>
#include <ostream>
#include <sstream>

namespace ashview {

namespace {

/// The application object of a run on the simulated desktop: the alert goes
/// to the log stream as two plain lines, and `terminate` ends the run.
class PlayerApplication final : public Application {
public:
    explicit PlayerApplication(std::ostream& log) : log_(log) {}
    void activate() override { becomeActive.post("NSApplicationDidBecomeActiveNotification"); }
    std::unique_ptr<NotificationObservation> observeDidBecomeActive(std::function<void()> handler) override {
        return becomeActive.observe("NSApplicationDidBecomeActiveNotification", std::move(handler));
    }
    void runModalAlert(const std::string& message, const std::string& informativeText) override {
        Log::plain(log_, message);
        Log::plain(log_, informativeText);
    }
    void terminate() override { terminated = true; }
    /// The Linux program runs unbundled.
    std::optional<std::string> infoDictionaryText(const std::string&) override { return std::nullopt; }

    bool terminated = false;
    SimNotificationCenter becomeActive;

private:
    std::ostream& log_;
};

/// A line that cannot be carried out on the desktop as it stands.
struct LineFailure {
    std::string what;
};

}  // namespace

struct ScenarioPlayer::State {
    explicit State(Options options) : options(std::move(options)), application(this->options.log) {
        updater.failure = "there is no updater in the Linux build";
        loginItems.bundleIdentifier = std::nullopt;
    }

    Options options;
    std::unique_ptr<SimDesktop> desktop;
    std::unique_ptr<SimApplications> apps;
    // The program on the simulated desktop is the Linux program on every
    // machine: no updater, and no bundle, so no login item.
    SimUpdater updater;
    SimLoginItemService loginItems;
    SimUserDefaults defaults;
    PlayerApplication application;
    HeadlessViews views;
    std::unique_ptr<AppDelegate> delegate;

    std::map<std::string, std::int32_t> pids;
    std::map<std::string, std::int64_t> windows;
    int windowsOpened = 0;
    std::vector<std::string> shown;

    // The desktop.

    void makeDesktop(const ScenarioCommand& command) {
        if (command.kind == ScenarioCommand::Kind::clock) {
            Calendar calendar("gregorian", command.zone, command.locale);
            auto whole = static_cast<long>(command.seconds);
            Instant start = *calendar.date(command.dateTime[0], command.dateTime[1], command.dateTime[2], whole / 3600,
                                           whole / 60 % 60, whole % 60) +
                            (command.seconds - static_cast<double>(whole));
            desktop = std::make_unique<SimDesktop>(start, calendar);
        } else {
            desktop = std::make_unique<SimDesktop>();
        }
        apps = std::make_unique<SimApplications>(*desktop);
    }

    Instant now() const { return desktop->clock().now(); }
    Calendar calendar() const { return desktop->clock().calendar(); }

    /// The instant of `seconds` after local midnight on the day of `day`.
    Instant timeOfDay(Instant day, double seconds) const {
        DateComponents parts = calendar().components(day);
        auto whole = static_cast<long>(seconds);
        std::optional<Instant> at =
            calendar().date(parts.year, parts.month, parts.day, whole / 3600, whole / 60 % 60, whole % 60);
        return at.value_or(day) + (seconds - static_cast<double>(whole));
    }

    std::int64_t window(const std::string& label) const { return windows.at(label); }

    // The program.

    GrayController* controller() const { return delegate ? delegate->controller() : nullptr; }

    int start() {
        ::setenv("DRABWISE_DATA_DIR", options.dataDirectory.c_str(), 1);
        AppDelegate::Services services{
            updater,
            loginItems,
            defaults,
            application,
            options.views ? *options.views : views,
            options.log,
            AppDelegate::Desktop{desktop->clock(), desktop->windowServer(), desktop->overlayWindows(),
                                 desktop->workspaceNotifications(), desktop->distributedNotifications(),
                                 apps->workspace(), apps->appleEvents(), apps->accessibility(), apps->openPanel()},
        };
        delegate = std::make_unique<AppDelegate>(services);
        delegate->applicationDidFinishLaunching();
        if (application.terminated) {
            delegate.reset();
            return anotherCopy;
        }
        if (WindowView* setup = delegate->setupWindow().view(); setup && setup->isVisible())
            options.out << "  the setup window opens\n";
        return finished;
    }

    void stop() {
        if (!delegate) return;
        delegate->applicationWillTerminate();
        delegate.reset();
        InstanceLock::letGo(options.dataDirectory);
    }

    /// The rule a line names: the rule whose host is exactly the text, or
    /// the normalized host of it.
    SiteRule rule(const ScenarioCommand& command) const {
        const RuleSet& rules = controller()->rules();
        std::optional<std::string> normalized = Host::normalize(command.site);
        for (const SiteRule& rule : rules.sites) {
            if (rule.host == command.site || (normalized && rule.host == *normalized)) return rule;
        }
        throw LineFailure{"no listed site or app \"" + command.site + "\""};
    }

    // What a person sees.

    std::vector<std::string> view() const {
        std::vector<std::string> lines;
        std::map<std::int64_t, std::string> labels;
        for (const auto& [label, number] : windows) labels[number] = label;
        double primaryHeight = desktop->displays().empty() ? 0 : desktop->displays().front().height;
        for (const SimOverlay& overlay : desktop->overlays()) {
            if (!overlay.isOrderedIn || !overlay.directlyAbove) continue;
            std::int64_t target = *overlay.directlyAbove;
            auto label = labels.find(target);
            std::string line = "  gray: " + (label == labels.end() ? "a window" : label->second) + " (window " +
                               std::to_string(target) + ")";
            // Where the gray stands on screen, in the scenario's coordinates.
            Rect gray = overlay.frame;
            double top = primaryHeight - gray.y - gray.height;
            std::ostringstream at;
            at << " at " << gray.x << "," << top << " " << gray.width << "x" << gray.height;
            line += at.str();
            if (std::optional<SimWindow> under = desktop->window(target)) {
                Rect bounds = under->bounds;
                Rect cocoa{bounds.x, primaryHeight - bounds.y - bounds.height, bounds.width, bounds.height};
                if (!(overlay.frame == cocoa)) line += ", not covering it";
            }
            lines.push_back(line);
        }
        if (GrayController* gray = controller()) {
            for (const SiteRule& rule : gray->rules().sites) {
                SiteStatus status = gray->tracker().status(rule, gray->rules(), now(), calendar());
                lines.push_back("  " + rule.displayName() + ": " + status.text());
            }
        }
        return lines;
    }

    void show(bool always) {
        std::vector<std::string> lines = view();
        if (!always && lines == shown) return;
        shown = lines;
        if (lines.empty() && always) options.out << "  nothing is gray\n";
        for (const std::string& line : lines) options.out << line << "\n";
    }

    void stats() {
        UsageSummary summary = controller()->usageSummary();
        for (const std::string& line : summary.lines) options.out << "  " << line << "\n";
        for (const UsageSummary::SiteRow& row : summary.sites) {
            options.out << "  " << controller()->rules().displayName(row.host) << ": "
                        << UsageSummary::duration(row.seconds) << ", " << row.visits
                        << (row.visits == 1 ? " visit" : " visits");
            if (std::optional<std::string> change = row.change()) options.out << ", " << *change;
            options.out << "\n";
        }
    }

    int run(const ScenarioCommand& command);
};

int ScenarioPlayer::State::run(const ScenarioCommand& command) {
    using Kind = ScenarioCommand::Kind;
    if (!desktop) makeDesktop(command);
    options.out << Log::clockText(now(), calendar()) << " > " << command.text << "\n" << std::flush;

    switch (command.kind) {
        case Kind::clock:
            break;
        case Kind::wait:
            desktop->clock().advance(command.seconds);
            break;
        case Kind::waitUntil: {
            Instant target = timeOfDay(now(), command.seconds);
            if (target <= now()) target = timeOfDay(calendar().addingDays(now(), 1), command.seconds);
            desktop->clock().advanceTo(target);
            break;
        }
        case Kind::start:
            if (int status = start(); status != finished) return status;
            break;
        case Kind::stop:
            stop();
            break;
        case Kind::restart:
            stop();
            if (int status = start(); status != finished) return status;
            break;
        case Kind::launchBrowser: {
            std::optional<Instant> launched;
            if (command.launched) launched = timeOfDay(now(), *command.launched);
            if (command.undated) {
                std::optional<Browser> browser = BrowserCatalog::browser(command.program);
                pids[command.program] = apps->launch(SimAppSetup{command.program, browser->name, 0,
                                                                "/Applications/" + browser->name + ".app",
                                                                std::nullopt, true});
            } else {
                pids[command.program] = apps->launchBrowser(command.program, launched);
            }
            // A browser that runs is installed.
            apps->registerBundle(command.program,
                                 "/Applications/" + BrowserCatalog::browser(command.program)->name + ".app");
            break;
        }
        case Kind::launchApp:
            pids[command.program] = apps->launchApp(command.program, command.name);
            break;
        case Kind::quit: {
            std::int32_t pid = pids.at(command.program);
            std::erase_if(windows, [&](const auto& entry) { return apps->appWindow(entry.second).ownerPID == pid; });
            apps->quit(pid);
            pids.erase(command.program);
            break;
        }
        case Kind::open: {
            Rect frame;
            if (command.frame) {
                const std::vector<double>& f = *command.frame;
                frame = Rect{f[0], f[1], f[2], f[3]};
            } else {
                double offset = 30.0 * (windowsOpened % 8);
                frame = Rect{60 + offset, 60 + offset, 1000, 700};
            }
            ++windowsOpened;
            windows[command.label] = apps->openWindow(pids.at(command.program), frame, command.address);
            break;
        }
        case Kind::tab:
            apps->showAddress(window(command.label), command.address);
            break;
        case Kind::focus:
            apps->focus(window(command.label));
            break;
        case Kind::moveBy:
            desktop->moveBy(window(command.label), command.numbers[0], command.numbers[1]);
            break;
        case Kind::moveTo:
        case Kind::resize: {
            std::int64_t number = window(command.label);
            Rect bounds = desktop->window(number)->bounds;
            if (command.kind == Kind::moveTo) {
                bounds.x = command.numbers[0];
                bounds.y = command.numbers[1];
            } else {
                bounds.width = command.numbers[0];
                bounds.height = command.numbers[1];
            }
            desktop->setBounds(number, bounds);
            break;
        }
        case Kind::cover:
            desktop->orderRelative(window(command.others.front()), true, window(command.label));
            break;
        case Kind::minimise:
            apps->minimise(window(command.label));
            break;
        case Kind::restore:
            apps->restore(window(command.label));
            break;
        case Kind::close:
            apps->closeWindow(window(command.label));
            windows.erase(command.label);
            break;
        case Kind::space:
            for (const std::string& label : command.labels) apps->moveToAnotherSpace(window(label), true);
            for (const std::string& label : command.others) apps->moveToAnotherSpace(window(label), false);
            desktop->workspaceNotifications().post(SystemNotification::activeSpaceDidChange);
            break;
        case Kind::displaysSleep:
            desktop->workspaceNotifications().post(SystemNotification::screensDidSleep);
            break;
        case Kind::displaysWake:
            desktop->workspaceNotifications().post(SystemNotification::screensDidWake);
            break;
        case Kind::screenLock:
            desktop->distributedNotifications().post(SystemNotification::screenIsLocked);
            break;
        case Kind::screenUnlock:
            desktop->distributedNotifications().post(SystemNotification::screenIsUnlocked);
            break;
        case Kind::sessionAway:
            desktop->workspaceNotifications().post(SystemNotification::sessionDidResignActive);
            break;
        case Kind::sessionBack:
            desktop->workspaceNotifications().post(SystemNotification::sessionDidBecomeActive);
            break;
        case Kind::logOut:
            desktop->workspaceNotifications().post(SystemNotification::willPowerOff);
            stop();
            for (const auto& [program, pid] : pids) apps->quit(pid);
            pids.clear();
            windows.clear();
            break;
        case Kind::toggleGray: {
            std::int64_t number = window(command.label);
            SimAppWindow entry = apps->appWindow(number);
            std::optional<RunningApplication> owner = apps->application(entry.ownerPID);
            std::string bundle = owner && owner->bundleIdentifier ? *owner->bundleIdentifier : std::string();
            std::int64_t id = entry.scriptingID != 0 ? entry.scriptingID : number;
            controller()->toggleGray(ProbedWindow{WindowKey{bundle, id}, std::nullopt, std::nullopt});
            break;
        }
        case Kind::pin:
            controller()->setPin(command.pin, rule(command));
            break;
        case Kind::showInColor:
            controller()->showInColor(command.minutes ? std::optional<int>(static_cast<int>(*command.minutes))
                                                      : std::nullopt);
            break;
        case Kind::addSite:
        case Kind::addApp:
        case Kind::removeSite:
        case Kind::setRule:
        case Kind::resetRule:
        case Kind::addDayOff:
        case Kind::menu:
        case Kind::choose:
        case Kind::settings:
        case Kind::typeSite:
        case Kind::submitSite:
        case Kind::addFrontSite:
        case Kind::addUsedApp:
        case Kind::pickApp:
        case Kind::editRule:
        case Kind::removeDayOff:
        case Kind::clearHistory:
            try {
                ShellScene(*delegate, *apps, options.out).run(command);
            } catch (const SceneFailure& failure) {
                throw LineFailure{failure.what};
            }
            break;
        case Kind::show:
            show(true);
            return finished;
        case Kind::stats:
            stats();
            return finished;
        case Kind::install:
        case Kind::uninstall:
        case Kind::permission:
        case Kind::accessibility:
        case Kind::setup:
        case Kind::setupPress:
        case Kind::setupClose:
        case Kind::answerPrompt:
        case Kind::about:
            try {
                SetupScene(delegate.get(), *apps, desktop->clock(), options.out).run(command);
            } catch (const SceneFailure& failure) {
                throw LineFailure{failure.what};
            }
            break;
    }
    show(false);
    return finished;
}

ScenarioPlayer::ScenarioPlayer(Options options) : state_(std::make_unique<State>(std::move(options))) {}

ScenarioPlayer::~ScenarioPlayer() { finish(); }

int ScenarioPlayer::step(const ScenarioCommand& command) {
    try {
        return state_->run(command);
    } catch (const LineFailure& failure) {
        Log::plain(state_->options.log, state_->options.file + ":" + std::to_string(command.line) + ": " + failure.what);
        return failedLine;
    }
}

int ScenarioPlayer::play(const ScenarioScript& script) {
    for (const ScenarioCommand& command : script.commands) {
        if (int status = step(command); status != finished) {
            finish();
            return status;
        }
    }
    finish();
    return finished;
}

void ScenarioPlayer::finish() {
    if (state_->delegate) {
        state_->options.out << Log::clockText(state_->now(), state_->calendar()) << " > (end of the scenario: quit)\n";
        state_->stop();
        state_->show(false);
    }
}

SimDesktop* ScenarioPlayer::desktop() { return state_->desktop.get(); }

std::size_t ScenarioPlayer::firings() const {
    return state_->desktop ? state_->desktop->clock().firedCount() : 0;
}

SimApplications* ScenarioPlayer::applications() { return state_->apps.get(); }

AppDelegate* ScenarioPlayer::delegate() { return state_->delegate.get(); }

std::optional<double> ScenarioPlayer::waitSeconds(const ScenarioCommand& command) const {
    using Kind = ScenarioCommand::Kind;
    if (command.kind == Kind::wait) return command.seconds;
    if (command.kind != Kind::waitUntil || !state_->desktop) return std::nullopt;
    Instant target = state_->timeOfDay(state_->now(), command.seconds);
    if (target <= state_->now())
        target = state_->timeOfDay(state_->calendar().addingDays(state_->now(), 1), command.seconds);
    return target - state_->now();
}

void ScenarioPlayer::pass(double seconds) {
    if (!state_->desktop) return;
    state_->desktop->clock().advance(seconds);
    state_->show(false);
}

}  // namespace ashview
