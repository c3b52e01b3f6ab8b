#include "Scenario/ScenarioScript.h"

#include "AshviewCore/Reading/BrowserCatalog.h"
#include "AshviewCore/Foundation/Calendar.h"
#include "AshviewCore/Foundation/Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <stdexcept>

namespace ashview {

std::string ScenarioError::message() const { return file + ":" + std::to_string(line) + ": expected " + expected; }

namespace {

/// Short words for the catalog's browsers, in the catalog's order.
const std::map<std::string, std::string, std::less<>>& browserKeys() {
    static const std::map<std::string, std::string, std::less<>> keys{
        {"chrome", "com.google.Chrome"},
        {"chrome-beta", "com.google.Chrome.beta"},
        {"chrome-dev", "com.google.Chrome.dev"},
        {"chrome-canary", "com.google.Chrome.canary"},
        {"chromium", "org.chromium.Chromium"},
        {"edge", "com.microsoft.edgemac"},
        {"brave", "com.brave.Browser"},
        {"vivaldi", "com.vivaldi.Vivaldi"},
        {"safari", "com.apple.Safari"},
        {"safari-preview", "com.apple.SafariTechnologyPreview"},
    };
    return keys;
}

// What the language accepts: what a person could mean, and far inside what
// the program represents (the virtual clock counts whole nanoseconds in 64
// bits; the menu's minutes are an int).
constexpr double maxWait = 31 * 86400.0;  ///< one `wait`: a month
constexpr double maxSpan = 3653 * 86400.0;  ///< all waits of a script: ten years
constexpr std::int64_t maxColorMinutes = 24 * 60;  ///< `color for`: a day
constexpr std::int64_t maxLimitMinutes = 600;  ///< `gray after`, `stay`: the settings' range
constexpr std::int64_t maxOpens = 50;  ///< `N opens`: the settings' range

/// A bad line: thrown inside the parser and turned into a `ScenarioError`.
struct Refusal {
    std::string expected;
};

[[noreturn]] void expect(std::string what) { throw Refusal{std::move(what)}; }

/// Splits a line into words: blanks separate, double quotes group (with \"
/// and \\ inside), and a word that begins with "#" starts a comment.
std::vector<std::string> words(std::string_view line) {
    std::vector<std::string> out;
    std::size_t at = 0;
    while (at < line.size()) {
        while (at < line.size() && (line[at] == ' ' || line[at] == '\t' || line[at] == '\r')) ++at;
        if (at >= line.size() || line[at] == '#') break;
        std::string word;
        if (line[at] == '"') {
            ++at;
            bool closed = false;
            while (at < line.size()) {
                char c = line[at++];
                if (c == '"') {
                    closed = true;
                    break;
                }
                if (c == '\\' && at < line.size()) c = line[at++];
                word += c;
            }
            if (!closed) expect("a closing \" in this line");
            if (at < line.size() && line[at] != ' ' && line[at] != '\t' && line[at] != '\r') {
                expect("a blank after the closing \"");
            }
        } else {
            while (at < line.size() && line[at] != ' ' && line[at] != '\t' && line[at] != '\r') word += line[at++];
        }
        out.push_back(std::move(word));
    }
    return out;
}

/// The text of the line without its comment, for messages and the echo.
std::string withoutComment(std::string_view line) {
    bool quoted = false;
    std::size_t end = line.size();
    for (std::size_t i = 0; i < line.size(); ++i) {
        char c = line[i];
        if (quoted && c == '\\') {
            ++i;
        } else if (c == '"') {
            quoted = !quoted;
        } else if (!quoted && c == '#' && (i == 0 || line[i - 1] == ' ' || line[i - 1] == '\t')) {
            end = i;
            break;
        }
    }
    return Text::trimmed(line.substr(0, end));
}

std::optional<double> number(std::string_view text) {
    if (text.empty() || text.front() == '+') return std::nullopt;
    double value = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) return std::nullopt;
    return value;
}

std::optional<std::int64_t> wholeNumber(std::string_view text) {
    std::int64_t value = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

/// "25m", "1h30m", "1.9s", "2h": a sum of numbers each followed by h, m or s.
std::optional<double> duration(std::string_view text) {
    if (text.empty()) return std::nullopt;
    double total = 0;
    std::size_t at = 0;
    while (at < text.size()) {
        std::size_t unit = text.find_first_of("hms", at);
        if (unit == std::string_view::npos || unit == at) return std::nullopt;
        std::optional<double> amount = number(text.substr(at, unit - at));
        if (!amount || *amount < 0) return std::nullopt;
        total += *amount * (text[unit] == 'h' ? 3600.0 : text[unit] == 'm' ? 60.0 : 1.0);
        at = unit + 1;
    }
    return total;
}

/// "HH:MM" or "HH:MM:SS" (seconds may have a fraction), checked for range;
/// the seconds since midnight.
std::optional<double> timeOfDay(std::string_view text, bool allowSeconds) {
    std::vector<std::string_view> parts;
    std::size_t at = 0;
    while (true) {
        std::size_t colon = text.find(':', at);
        parts.push_back(text.substr(at, colon == std::string_view::npos ? std::string_view::npos : colon - at));
        if (colon == std::string_view::npos) break;
        at = colon + 1;
    }
    if (parts.size() < 2 || parts.size() > (allowSeconds ? 3U : 2U)) return std::nullopt;
    std::optional<std::int64_t> hour = parts[0].size() <= 2 ? wholeNumber(parts[0]) : std::nullopt;
    std::optional<std::int64_t> minute = parts[1].size() == 2 ? wholeNumber(parts[1]) : std::nullopt;
    if (!hour || !minute || *hour < 0 || *hour > 23 || *minute < 0 || *minute > 59) return std::nullopt;
    double seconds = 0;
    if (parts.size() == 3) {
        std::optional<double> value = parts[2].size() >= 2 ? number(parts[2]) : std::nullopt;
        if (!value || *value < 0 || *value >= 60) return std::nullopt;
        seconds = *value;
    }
    return static_cast<double>(*hour * 3600 + *minute * 60) + seconds;
}

bool isLabel(std::string_view word) {
    if (word.empty() || !std::isalpha(static_cast<unsigned char>(word.front()))) return false;
    for (char c : word) {
        if (!std::isalnum(static_cast<unsigned char>(c)) && c != '-' && c != '_') return false;
    }
    return true;
}

std::optional<Weekday> dayWord(std::string_view word) {
    static const std::map<std::string, Weekday, std::less<>> days{
        {"mon", Weekday::monday},    {"tue", Weekday::tuesday}, {"wed", Weekday::wednesday},
        {"thu", Weekday::thursday},  {"fri", Weekday::friday},  {"sat", Weekday::saturday},
        {"sun", Weekday::sunday},
    };
    std::string lower = Text::lowercased(word);
    if (auto found = days.find(lower); found != days.end()) return found->second;
    return Weekday::named(lower);
}

/// The parser's knowledge of the desktop as the script has built it so far.
class Parser {
public:

    ScenarioScript run(std::string_view text) {
        ScenarioScript script;
        int line = 0;
        std::size_t at = 0;
        while (at <= text.size()) {
            std::size_t end = text.find('\n', at);
            std::string_view raw = text.substr(at, end == std::string_view::npos ? std::string_view::npos : end - at);
            ++line;
            line_ = line;
            std::vector<std::string> tokens = words(raw);
            if (!tokens.empty()) {
                ScenarioCommand command = parseLine(tokens);
                command.line = line;
                command.text = withoutComment(raw);
                script.commands.push_back(std::move(command));
            }
            if (end == std::string_view::npos) break;
            at = end + 1;
        }
        return script;
    }

    int line() const { return line_; }

private:
    struct Cursor {
        const std::vector<std::string>& tokens;
        std::size_t at = 0;

        bool done() const { return at >= tokens.size(); }
        const std::string* peek() const { return done() ? nullptr : &tokens[at]; }
        bool accept(std::string_view word) {
            if (!done() && tokens[at] == word) {
                ++at;
                return true;
            }
            return false;
        }
        std::string take(const std::string& what) {
            if (done()) expect(what);
            return tokens[at++];
        }
        void word(std::string_view word, const std::string& what) {
            if (!accept(word)) expect(what);
        }
        void end() const {
            if (!done()) expect("the end of the line, not \"" + tokens[at] + "\"");
        }
    };

    ScenarioCommand parseLine(const std::vector<std::string>& tokens) {
        Cursor in{tokens};
        ScenarioCommand command;
        using Kind = ScenarioCommand::Kind;
        std::string verb = in.take("a command");
        bool first = commandsSeen_++ == 0;

        if (verb == "clock") {
            if (!first) expect("\"clock\" only as the first command of the scenario");
            command.kind = Kind::clock;
            parseClock(in, command);
        } else if (verb == "wait") {
            if (in.accept("until")) {
                command.kind = Kind::waitUntil;
                std::optional<double> time = timeOfDay(in.take("a time of day such as 13:00"), true);
                if (!time) expect("a time of day such as 13:00 or 13:00:30");
                command.seconds = *time;
                waited(86400);
            } else {
                command.kind = Kind::wait;
                std::optional<double> seconds = duration(in.take("a duration such as 25m, 1h30m or 1.9s"));
                if (!seconds) expect("a duration such as 25m, 1h30m or 1.9s");
                if (*seconds > maxWait) expect("a wait of at most 744h (a month)");
                command.seconds = *seconds;
                waited(*seconds);
            }
        } else if (verb == "start") {
            command.kind = Kind::start;
            if (running_) expect("\"start\" only while Drabwise is not running");
            running_ = true;
        } else if (verb == "stop" || verb == "restart") {
            command.kind = verb == "stop" ? Kind::stop : Kind::restart;
            needRunning(verb);
            running_ = verb == "restart";
        } else if (verb == "launch") {
            parseLaunch(in, command);
        } else if (verb == "quit") {
            command.kind = Kind::quit;
            command.program = runningProgram(in.take("a running browser or app"));
            programs_.erase(command.program);
            std::erase_if(windows_, [&](const auto& window) { return window.second == command.program; });
        } else if (verb == "open") {
            parseOpen(in, command);
        } else if (verb == "tab") {
            command.kind = Kind::tab;
            command.label = browserWindow(in.take("a browser window's label"));
            std::string address = in.take("an address, or \"none\" for a tab without a page");
            if (address != "none") command.address = address;
        } else if (verb == "focus" || verb == "minimise" || verb == "restore" || verb == "close" || verb == "gray") {
            command.kind = verb == "focus"      ? Kind::focus
                           : verb == "minimise" ? Kind::minimise
                           : verb == "restore"  ? Kind::restore
                           : verb == "close"    ? Kind::close
                                                : Kind::toggleGray;
            if (verb == "gray") needRunning(verb);
            command.label = openWindow(in.take("a window's label"));
            if (verb == "close") windows_.erase(command.label);
        } else if (verb == "move") {
            command.label = openWindow(in.take("a window's label"));
            if (in.accept("by")) {
                command.kind = Kind::moveBy;
            } else if (in.accept("to")) {
                command.kind = Kind::moveTo;
            } else {
                expect("\"by DX DY\" or \"to X Y\"");
            }
            command.numbers = numbers(in, 2, "two numbers of points");
        } else if (verb == "resize") {
            command.kind = Kind::resize;
            command.label = openWindow(in.take("a window's label"));
            command.numbers = numbers(in, 2, "a width and a height in points");
            if (command.numbers[0] <= 0 || command.numbers[1] <= 0) expect("a width and a height above 0");
        } else if (verb == "cover") {
            command.kind = Kind::cover;
            command.label = openWindow(in.take("the label of the window to cover"));
            in.word("with", "\"with\" and the label of the window that covers it");
            command.others.push_back(openWindow(in.take("the label of the window that covers it")));
            if (command.others.front() == command.label) expect("another window than the one covered");
        } else if (verb == "space") {
            command.kind = Kind::space;
            parseSpace(in, command);
        } else if (verb == "displays") {
            std::string what = in.take("\"sleep\" or \"wake\"");
            if (what != "sleep" && what != "wake") expect("\"sleep\" or \"wake\"");
            command.kind = what == "sleep" ? Kind::displaysSleep : Kind::displaysWake;
        } else if (verb == "screen") {
            std::string what = in.take("\"lock\" or \"unlock\"");
            if (what != "lock" && what != "unlock") expect("\"lock\" or \"unlock\"");
            command.kind = what == "lock" ? Kind::screenLock : Kind::screenUnlock;
        } else if (verb == "session") {
            std::string what = in.take("\"away\" or \"back\"");
            if (what != "away" && what != "back") expect("\"away\" or \"back\"");
            command.kind = what == "away" ? Kind::sessionAway : Kind::sessionBack;
        } else if (verb == "log") {
            in.word("out", "\"out\"");
            command.kind = Kind::logOut;
            running_ = false;
            programs_.clear();
            windows_.clear();
        } else if (verb == "pin") {
            needRunning(verb);
            command.kind = Kind::pin;
            command.site = in.take("a listed site or app");
            std::string pin = in.take("\"gray\", \"color\" or \"settings\"");
            if (pin == "gray") {
                command.pin = SitePin::grayThisSite;
            } else if (pin == "color") {
                command.pin = SitePin::showInColor;
            } else if (pin == "settings") {
                command.pin = SitePin::followSettings;
            } else {
                expect("\"gray\", \"color\" or \"settings\"");
            }
        } else if (verb == "color") {
            needRunning(verb);
            command.kind = Kind::showInColor;
            in.word("for", "\"for\" and whole minutes such as 5m, or \"session\"");
            std::string span = in.take("whole minutes such as 5m, or \"session\"");
            if (span != "session") {
                command.minutes = wholeMinutes(span, maxColorMinutes, "whole minutes such as 5m, or \"session\"");
            }
        } else if (verb == "add") {
            needRunning(verb);
            std::string what = in.take("\"site\", \"app\" or \"day\"");
            if (what == "site") {
                command.kind = Kind::addSite;
                command.site = in.take("an address such as example.com");
            } else if (what == "app") {
                command.kind = Kind::addApp;
                command.program = in.take("a bundle identifier");
                command.name = in.take("the app's name");
            } else if (what == "day") {
                in.word("off", "\"off\"");
                parseDayOff(in, command);
            } else if (what == "front") {
                in.word("site", "\"site\"");
                command.kind = Kind::addFrontSite;
            } else if (what == "used") {
                in.word("app", "\"app\"");
                command.kind = Kind::addUsedApp;
            } else {
                expect("\"site\", \"app\", \"day off\", \"front site\" or \"used app\"");
            }
        } else if (verb == "remove" && in.accept("day")) {
            needRunning(verb);
            in.word("off", "\"off\" and the day off's name");
            command.kind = Kind::removeDayOff;
            command.name = in.take("the day off's name");
        } else if (verb == "remove" || verb == "reset") {
            needRunning(verb);
            command.kind = verb == "remove" ? Kind::removeSite : Kind::resetRule;
            command.site = in.take("a listed site or app");
        } else if (verb == "set") {
            needRunning(verb);
            command.kind = Kind::setRule;
            std::string target = in.take("a listed site or app, or \"defaults\"");
            if (target != "defaults") command.site = target;
            parseSettings(in, command.change);
        } else if (verb == "show" || verb == "stats") {
            needRunning(verb);
            command.kind = verb == "show" ? Kind::show : Kind::stats;
        } else if (parseShell(verb, in, command)) {
            needRunning(verb);
        } else if (verb == "install" || verb == "uninstall" || verb == "permission" || verb == "accessibility" ||
                   verb == "setup" || verb == "answer" || verb == "about") {
            parseSetup(verb, in, command);
        } else {
            expect("a command (clock, wait, start, stop, restart, launch, quit, open, tab, focus, move, resize, "
                   "cover, minimise, restore, close, space, displays, screen, session, log out, gray, pin, color, "
                   "add, remove, set, reset, show, stats, menu, choose, settings, type, submit, pick, edit, "
                   "clear, install, uninstall, permission, accessibility, setup, answer, about), not \"" + verb + "\"");
        }
        in.end();
        return command;
    }

    /// The commands of the status menu and the settings window; false for
    /// any other verb.
    bool parseShell(const std::string& verb, Cursor& in, ScenarioCommand& command) {
        using Kind = ScenarioCommand::Kind;
        if (verb == "menu") {
            command.kind = Kind::menu;
        } else if (verb == "choose") {
            command.kind = Kind::choose;
            command.others.push_back(in.take("the title of a menu item, such as \"Show in color for\""));
            while (!in.done()) command.others.push_back(in.take("the title of a submenu's item"));
        } else if (verb == "settings") {
            command.kind = Kind::settings;
            if (!in.done()) command.label = in.take("a page: stats, new-sites, days-off or a listed site");
        } else if (verb == "type") {
            command.kind = Kind::typeSite;
            command.name = in.take("the text typed into the add box, such as example.com");
        } else if (verb == "submit") {
            command.kind = Kind::submitSite;
        } else if (verb == "pick") {
            in.word("app", "\"app\" and the path of the app chosen in the open panel");
            command.kind = Kind::pickApp;
            command.address = in.take("the path of an app, such as /Applications/Chat.app");
        } else if (verb == "edit") {
            command.kind = Kind::editRule;
            std::string target = in.take("a listed site or app, or \"defaults\"");
            if (target != "defaults") command.site = target;
            command.others.push_back(in.take("a control of the rule's form, such as \"Time of day\""));
            while (!in.done()) command.others.push_back(in.take("the control's value"));
        } else if (verb == "clear") {
            in.word("history", "\"history\"");
            command.kind = Kind::clearHistory;
        } else {
            return false;
        }
        return true;
    }

    /// What is installed and allowed, the setup window and the About page.
    void parseSetup(const std::string& verb, Cursor& in, ScenarioCommand& command) {
        using Kind = ScenarioCommand::Kind;
        auto browser = [&in] {
            std::string word = in.take("a browser such as chrome or safari");
            std::optional<std::string> id = scenarioBrowser(word);
            if (!id) expect("a browser such as chrome or safari, not \"" + word + "\"");
            return *id;
        };
        auto oneOf = [&in](std::vector<std::string> words, const std::string& what) {
            std::string word = in.take(what);
            if (std::find(words.begin(), words.end(), word) == words.end()) expect(what);
            return word;
        };
        if (verb == "install" || verb == "uninstall") {
            command.kind = verb == "install" ? Kind::install : Kind::uninstall;
            command.program = browser();
        } else if (verb == "permission") {
            command.kind = Kind::permission;
            command.program = browser();
            command.name = oneOf({"allowed", "denied", "not-asked"}, "\"allowed\", \"denied\" or \"not-asked\"");
        } else if (verb == "accessibility") {
            command.kind = Kind::accessibility;
            command.name = oneOf({"allowed", "not-allowed"}, "\"allowed\" or \"not-allowed\"");
        } else if (verb == "answer") {
            command.kind = Kind::answerPrompt;
            in.word("prompt", "\"prompt\", a browser, and \"allow\" or \"deny\"");
            command.program = browser();
            command.name = oneOf({"allow", "deny"}, "\"allow\" or \"deny\"");
        } else if (verb == "about") {
            needRunning(verb);
            command.kind = Kind::about;
        } else {
            needRunning(verb);
            command.kind = Kind::setup;
            if (in.accept("allow")) {
                command.kind = Kind::setupPress;
                command.program = browser();
            } else if (in.accept("accessibility")) {
                command.kind = Kind::setupPress;
            } else if (in.accept("close")) {
                command.kind = Kind::setupClose;
            } else if (!in.done()) {
                expect("\"allow\" and a browser, \"accessibility\" or \"close\"");
            }
        }
    }

    void parseClock(Cursor& in, ScenarioCommand& command) {
        std::string date = in.take("a date such as 2026-11-23");
        std::vector<long> fields;
        std::size_t at = 0;
        for (int i = 0; i < 3; ++i) {
            std::size_t dash = date.find('-', at);
            std::string_view part =
                std::string_view(date).substr(at, dash == std::string::npos ? std::string::npos : dash - at);
            std::optional<std::int64_t> value = wholeNumber(part);
            if (!value || (i == 2) != (dash == std::string::npos)) expect("a date such as 2026-11-23");
            fields.push_back(static_cast<long>(*value));
            at = dash + 1;
        }
        std::optional<double> time = timeOfDay(in.take("a time of day such as 09:00"), true);
        if (!time) expect("a time of day such as 09:00");
        command.zone = in.done() ? "UTC" : in.take("a time zone");
        command.locale = in.done() ? "en_US" : in.take("a locale");
        try {
            Calendar("gregorian", command.zone, "en_US");
        } catch (const std::invalid_argument&) {
            expect("a time zone such as Europe/Berlin, not \"" + command.zone + "\"");
        }
        try {
            Calendar calendar("gregorian", command.zone, command.locale);
            std::optional<Instant> day = calendar.date(fields[0], fields[1], fields[2]);
            DateComponents parts = day ? calendar.components(*day) : DateComponents{};
            if (!day || parts.year != fields[0] || parts.month != fields[1] || parts.day != fields[2]) {
                expect("a real date such as 2026-11-23");
            }
        } catch (const std::invalid_argument&) {
            expect("a locale such as en_GB");
        }
        command.dateTime = fields;
        command.seconds = *time;
    }

    void parseLaunch(Cursor& in, ScenarioCommand& command) {
        using Kind = ScenarioCommand::Kind;
        if (in.accept("app")) {
            command.kind = Kind::launchApp;
            command.program = in.take("a bundle identifier such as com.example.chat");
            if (scenarioBrowser(command.program)) expect("an app that is no browser");
            command.name = in.done() ? command.program : in.take("the app's name");
            if (programs_.contains(command.program)) expect("an app that is not running");
            programs_[command.program] = false;
            return;
        }
        command.kind = Kind::launchBrowser;
        std::string word = in.take("a browser such as chrome or safari, or \"app\"");
        std::optional<std::string> browser = scenarioBrowser(word);
        if (!browser) expect("a browser such as chrome or safari, or \"app\", not \"" + word + "\"");
        if (programs_.contains(*browser)) expect("a browser that is not running");
        command.program = *browser;
        programs_[*browser] = true;
        if (in.accept("launched")) {
            std::optional<double> time = timeOfDay(in.take("a time of day such as 09:00:01.9"), true);
            if (!time) expect("a time of day such as 09:00:01.9");
            command.launched = time;
        } else if (in.accept("undated")) {
            command.undated = true;
        }
    }

    void parseOpen(Cursor& in, ScenarioCommand& command) {
        command.kind = ScenarioCommand::Kind::open;
        std::string label = in.take("a new window's label");
        if (!isLabel(label)) expect("a label of letters, digits, - and _, beginning with a letter");
        if (windows_.contains(label)) expect("a label that no open window has");
        command.label = label;
        in.word("in", "\"in\" and a running browser or app");
        command.program = runningProgram(in.take("a running browser or app"));
        bool browser = programs_[command.program];
        while (!in.done()) {
            if (in.accept("at")) {
                if (!browser) expect("no address: an app's window shows none");
                if (command.address) expect("one address");
                command.address = in.take("an address");
            } else if (in.accept("frame")) {
                if (command.frame) expect("one frame");
                command.frame = numbers(in, 4, "x, y, width and height in points");
                if ((*command.frame)[2] <= 0 || (*command.frame)[3] <= 0) expect("a width and a height above 0");
            } else {
                expect("\"at ADDRESS\" or \"frame X Y WIDTH HEIGHT\"");
            }
        }
        windows_[label] = command.program;
    }

    void parseSpace(Cursor& in, ScenarioCommand& command) {
        std::vector<std::string>* list = nullptr;
        while (!in.done()) {
            if (in.accept("leave")) {
                list = &command.labels;
            } else if (in.accept("arrive")) {
                list = &command.others;
            } else if (!list) {
                expect("\"leave\" or \"arrive\" and window labels");
            } else {
                list->push_back(openWindow(in.take("a window's label")));
            }
        }
        if (command.labels.empty() && command.others.empty()) expect("\"leave\" or \"arrive\" and window labels");
    }

    void parseDayOff(Cursor& in, ScenarioCommand& command) {
        command.kind = ScenarioCommand::Kind::addDayOff;
        command.name = in.take("the day off's name");
        std::string date = in.take("a date such as 12-25 or 2026-12-25");
        std::vector<std::int64_t> parts;
        std::size_t at = 0;
        while (true) {
            std::size_t dash = date.find('-', at);
            std::optional<std::int64_t> value =
                wholeNumber(std::string_view(date).substr(at, dash == std::string::npos ? std::string::npos : dash - at));
            if (!value) expect("a date such as 12-25 or 2026-12-25");
            parts.push_back(*value);
            if (dash == std::string::npos) break;
            at = dash + 1;
        }
        if (parts.size() == 2) {
            command.month = parts[0];
            command.day = parts[1];
        } else if (parts.size() == 3) {
            command.year = parts[0];
            command.month = parts[1];
            command.day = parts[2];
        } else {
            expect("a date such as 12-25 or 2026-12-25");
        }
    }

    void parseSettings(Cursor& in, ScenarioCommand::SettingsChange& change) {
        if (in.done()) expect("what to set: days, hours, gray or stay");
        while (!in.done()) {
            std::string what = in.take("days, hours, gray or stay");
            if (what == "days") {
                if (change.days) expect("days once");
                change.days = days(in.take("days: every-day, weekdays, weekends, none, or a list such as mon,wed"));
            } else if (what == "hours") {
                if (change.hours) expect("hours once");
                std::string span = in.take("hours such as 09:00-17:00, or \"any\"");
                if (span == "any") {
                    change.hours = std::optional<ActiveHours>();
                } else {
                    std::size_t dash = span.find('-');
                    std::optional<double> from =
                        dash == std::string::npos ? std::nullopt : timeOfDay(span.substr(0, dash), false);
                    std::optional<double> to =
                        dash == std::string::npos ? std::nullopt : timeOfDay(span.substr(dash + 1), false);
                    if (!from || !to) expect("hours such as 09:00-17:00, or \"any\"");
                    auto clock = [](double seconds) {
                        auto minutes = static_cast<std::int64_t>(seconds / 60);
                        return ClockTime{minutes / 60, minutes % 60};
                    };
                    change.hours = ActiveHours{clock(*from), clock(*to)};
                }
            } else if (what == "gray") {
                if (change.trigger) expect("gray once");
                change.trigger = trigger(in);
            } else if (what == "stay") {
                if (change.stayGray) expect("stay once");
                std::string how = in.take("until-leave, until-quit, or minutes such as 10m");
                if (how == "until-leave") {
                    change.stayGray = StayGray::untilLeave();
                } else if (how == "until-quit") {
                    change.stayGray = StayGray::untilChromeQuits();
                } else {
                    change.stayGray = StayGray::forMinutes(positiveMinutes(how, "until-leave, until-quit, or minutes such as 10m"));
                }
            } else {
                expect("days, hours, gray or stay, not \"" + what + "\"");
            }
        }
    }

    GrayTrigger trigger(Cursor& in) {
        const std::string what = "right-away, or after limits such as \"after 20m or 5 opens per day\"";
        if (in.accept("right-away")) return GrayTrigger::rightAway();
        in.word("after", what);
        std::optional<std::int64_t> minutes;
        std::optional<std::int64_t> opens;
        do {
            std::string limit = in.take("a limit such as 20m or 5 opens");
            if (in.accept("opens") || in.accept("open")) {
                std::optional<std::int64_t> count = wholeNumber(limit);
                if (!count || *count < 1 || opens) expect("one count of opens, at least 1");
                if (*count > maxOpens) expect("at most " + std::to_string(maxOpens) + " opens");
                opens = count;
            } else {
                if (minutes) expect("one limit of minutes");
                minutes = positiveMinutes(limit, "a limit such as 20m or 5 opens");
            }
        } while (in.accept("or"));
        in.word("per", "\"or\" and another limit, or \"per\" and hour, day or session");
        std::string period = in.take("hour, day or session");
        CountPeriod per = CountPeriod::hour;
        if (period == "hour") {
            per = CountPeriod::hour;
        } else if (period == "day") {
            per = CountPeriod::day;
        } else if (period == "session") {
            per = CountPeriod::session;
        } else {
            expect("hour, day or session");
        }
        return GrayTrigger::afterLimit(minutes, opens, per);
    }

    std::int64_t positiveMinutes(std::string_view text, const std::string& what) {
        return wholeMinutes(text, maxLimitMinutes, what);
    }

    /// Whole minutes from 1 to `most`; checked before any conversion.
    std::int64_t wholeMinutes(std::string_view text, std::int64_t most, const std::string& what) {
        std::optional<double> seconds = duration(text);
        if (!seconds || *seconds < 60 || std::fmod(*seconds, 60.0) != 0) expect(what);
        if (*seconds > static_cast<double>(most) * 60) expect("at most " + std::to_string(most) + " minutes");
        return static_cast<std::int64_t>(*seconds / 60);
    }

    void waited(double seconds) {
        waited_ += seconds;
        if (waited_ > maxSpan) expect("waits that add up to at most ten years");
    }

    WeekdaySet days(const std::string& text) {
        if (text == "every-day") return Weekday::all();
        if (text == "weekdays") {
            return {Weekday::monday, Weekday::tuesday, Weekday::wednesday, Weekday::thursday, Weekday::friday};
        }
        if (text == "weekends") return {Weekday::saturday, Weekday::sunday};
        if (text == "none") return {};
        WeekdaySet set;
        std::size_t at = 0;
        while (true) {
            std::size_t comma = text.find(',', at);
            std::optional<Weekday> day =
                dayWord(std::string_view(text).substr(at, comma == std::string::npos ? std::string::npos : comma - at));
            if (!day) expect("days: every-day, weekdays, weekends, none, or a list such as mon,wed");
            set.insert(*day);
            if (comma == std::string::npos) break;
            at = comma + 1;
        }
        return set;
    }

    std::vector<double> numbers(Cursor& in, std::size_t count, const std::string& what) {
        std::vector<double> out;
        for (std::size_t i = 0; i < count; ++i) {
            std::optional<double> value = number(in.take(what));
            if (!value) expect(what);
            out.push_back(*value);
        }
        return out;
    }

    void needRunning(std::string_view verb) const {
        if (!running_) expect("\"start\" before \"" + std::string(verb) + "\": Drabwise is not running here");
    }

    std::string runningProgram(const std::string& word) const {
        std::optional<std::string> browser = scenarioBrowser(word);
        std::string id = browser.value_or(word);
        if (!programs_.contains(id)) expect("a running browser or app, not \"" + word + "\"");
        return id;
    }

    std::string openWindow(const std::string& label) const {
        if (!windows_.contains(label)) expect("the label of an open window, not \"" + label + "\"");
        return label;
    }

    std::string browserWindow(const std::string& label) const {
        openWindow(label);
        if (!programs_.at(windows_.at(label))) expect("a browser window; \"" + label + "\" belongs to an app");
        return label;
    }

    int line_ = 0;
    int commandsSeen_ = 0;
    /// The longest the script's waits can take, so far.
    double waited_ = 0;
    bool running_ = false;
    /// Running programs by bundle identifier: true for a browser.
    std::map<std::string, bool> programs_;
    /// Open windows: label to the program they belong to.
    std::map<std::string, std::string> windows_;
};

}  // namespace

std::optional<std::string> scenarioBrowser(std::string_view word) {
    std::string lower = Text::lowercased(word);
    if (auto found = browserKeys().find(lower); found != browserKeys().end()) return found->second;
    for (const Browser& browser : BrowserCatalog::browsers()) {
        std::string compact;
        for (char c : Text::lowercased(browser.name)) {
            if (c != ' ') compact += c;
        }
        if (Text::lowercased(browser.bundleID) == lower || compact == lower) return browser.bundleID;
    }
    return std::nullopt;
}

std::variant<ScenarioScript, ScenarioError> ScenarioScript::parse(std::string_view text, std::string_view file) {
    Parser parser;
    try {
        return parser.run(text);
    } catch (const Refusal& refusal) {
        return ScenarioError{std::string(file), parser.line(), refusal.expected};
    }
}

}  // namespace ashview
