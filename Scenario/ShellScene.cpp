#include "Scenario/ShellScene.h"

#include "Ashview/App/AppDelegate.h"
#include "Ashview/Controller/GrayController.h"
#include "Ashview/Shell/DaysOffEditor.h"
#include "Ashview/Shell/SettingsContent.h"
#include "Ashview/Shell/SiteEditor.h"
#include "Ashview/Shell/StatsPage.h"
#include "AshviewCore/Rules/Host.h"
#include "AshviewCore/Rules/RuleError.h"
#include "Platform/Sim/SimApplications.h"

#include <algorithm>
#include <charconv>
#include <ostream>

namespace ashview {

namespace {

std::string indent(int depth) { return std::string(static_cast<std::size_t>(depth) * 2, ' '); }

/// "(•) All day  ( ) Only between certain hours".
template <typename Value>
std::string choices(const std::vector<RuleEditor::Choice<Value>>& all, std::optional<Value> chosen) {
    std::string line;
    for (const auto& choice : all) {
        if (!line.empty()) line += "  ";
        line += (chosen == choice.value ? "(•) " : "( ) ") + choice.title;
    }
    return line;
}

template <typename Value>
Value chosen(const std::vector<RuleEditor::Choice<Value>>& all, const std::string& control, const std::string& title) {
    for (const auto& choice : all)
        if (choice.title == title) return choice.value;
    std::string offered;
    for (const auto& choice : all) offered += (offered.empty() ? "\"" : ", \"") + choice.title + "\"";
    throw SceneFailure{"\"" + control + "\" offers " + offered + ", not \"" + title + "\""};
}

std::int64_t number(const std::string& control, const std::string& text) {
    std::int64_t value = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        throw SceneFailure{"\"" + control + "\" takes a whole number, not \"" + text + "\""};
    return value;
}

ClockTime clockTime(const std::string& control, const std::string& text) {
    std::size_t colon = text.find(':');
    if (colon == std::string::npos) throw SceneFailure{"\"" + control + "\" takes a time such as 09:00"};
    return ClockTime{number(control, text.substr(0, colon)), number(control, text.substr(colon + 1))};
}

void printForm(const RuleEditor& editor, const Calendar& calendar, std::ostream& out) {
    const SiteSettings& settings = editor.settings();
    out << "    When does this apply?\n";
    out << "      Time of day: " << choices(RuleEditor::timeOfDayChoices(), std::optional(editor.timeOfDay())) << "\n";
    if (settings.hours) {
        out << "      From " << settings.hours->start.formatted(calendar) << "  To "
            << settings.hours->end.formatted(calendar) << "\n";
    }
    if (auto note = editor.hoursNote()) out << "      " << *note << "\n";
    out << "      Days: " << choices(RuleEditor::daysChoices(), std::optional(editor.daysChoice())) << "\n";
    if (editor.daysChoice() == RuleEditor::DaysChoice::custom) {
        std::string boxes;
        for (const auto& box : editor.dayBoxes()) boxes += (box.isChecked ? " [x] " : " [ ] ") + box.label;
        out << "     " << boxes << "\n";
    }
    if (auto note = editor.daysNote()) out << "      " << *note << "\n";
    out << "    When does it turn gray?\n";
    out << "      Turn gray: " << choices(RuleEditor::turnGrayChoices(), std::optional(editor.turnGray())) << "\n";
    if (editor.turnGray() == RuleEditor::TurnGray::afterLimit) {
        for (const auto& row : editor.limitRows()) {
            out << "      " << (row.isOn ? "[x] " : "[ ] ") << row.title;
            if (row.isOn) out << ": " << row.valueText;
            if (!row.isEnabled) out << " (locked)";
            out << "\n";
        }
        out << "      Counted: " << choices(editor.countedChoices(), editor.counted()) << "\n";
        out << "      " << editor.explanation() << "\n";
    }
    out << "    How long does it stay gray?\n";
    out << "      Stay gray: " << choices(editor.stayChoices(), std::optional(editor.stayKind())) << "\n";
    if (auto minutes = editor.stayMinutes()) out << "      " << RuleEditor::minutesText(*minutes) << "\n";
}

/// Carries out one control of the rule form.
void operate(RuleEditor& editor, const std::string& control, const std::vector<std::string>& values) {
    auto value = [&]() -> const std::string& {
        if (values.empty()) throw SceneFailure{"\"" + control + "\" needs a value"};
        return values.front();
    };
    if (control == "Time of day") return editor.chooseTimeOfDay(chosen(RuleEditor::timeOfDayChoices(), control, value()));
    if (control == "From" || control == "To") {
        if (!editor.settings().hours) throw SceneFailure{"\"" + control + "\" shows only with certain hours"};
        ClockTime time = clockTime(control, value());
        return control == "From" ? editor.setStart(time.hour, time.minute) : editor.setEnd(time.hour, time.minute);
    }
    if (control == "Days") return editor.chooseDays(chosen(RuleEditor::daysChoices(), control, value()));
    for (const auto& box : editor.dayBoxes()) {
        if (box.label != control) continue;
        if (editor.daysChoice() != RuleEditor::DaysChoice::custom)
            throw SceneFailure{"the day checkboxes show only with \"Custom\" days"};
        if (value() != "on" && value() != "off") throw SceneFailure{"\"" + control + "\" takes on or off"};
        return editor.setDay(box.day, value() == "on");
    }
    if (control == "Turn gray") return editor.chooseTurnGray(chosen(RuleEditor::turnGrayChoices(), control, value()));
    for (const auto& row : editor.limitRows()) {
        if (row.title != control) continue;
        if (editor.turnGray() != RuleEditor::TurnGray::afterLimit)
            throw SceneFailure{"\"" + control + "\" shows only with \"After a limit\""};
        if (value() == "on" || value() == "off") {
            if (!row.isEnabled) throw SceneFailure{"\"" + control + "\" can't be turned off: it is the only limit"};
            return editor.setLimitOn(row.limit, value() == "on");
        }
        if (!row.isOn) throw SceneFailure{"\"" + control + "\" is off; turn it on first"};
        std::int64_t wanted = number(control, value());
        if (wanted < row.minimum || wanted > row.maximum)
            throw SceneFailure{"\"" + control + "\" goes from " + std::to_string(row.minimum) + " to " +
                               std::to_string(row.maximum)};
        return editor.setLimitValue(row.limit, wanted);
    }
    if (control == "Counted") {
        if (!editor.counted()) throw SceneFailure{"\"Counted\" shows only with \"After a limit\""};
        return editor.chooseCounted(chosen(editor.countedChoices(), control, value()));
    }
    if (control == "Stay gray") return editor.chooseStay(chosen(editor.stayChoices(), control, value()));
    if (control == "Minutes") {
        if (!editor.stayMinutes()) throw SceneFailure{"\"Minutes\" shows only with a number of minutes gray"};
        std::int64_t wanted = number(control, value());
        if (wanted < 1 || wanted > RuleEditor::maximumMinutes) throw SceneFailure{"\"Minutes\" goes from 1 to 600"};
        return editor.setStayMinutes(wanted);
    }
    throw SceneFailure{"the rule's form has no control \"" + control + "\""};
}

/// The listed rule a scenario names by its host as typed, or its key.
std::optional<SiteRule> listedRule(const RuleSet& rules, const std::string& text) {
    std::optional<std::string> normalized = Host::normalize(text);
    for (const SiteRule& rule : rules.sites)
        if (rule.host == text || (normalized && rule.host == *normalized)) return rule;
    return std::nullopt;
}

}  // namespace

void ShellScene::print(const std::vector<MenuItem>& menu, std::ostream& out, int depth) {
    for (const MenuItem& item : menu) {
        if (item.isSeparator) {
            out << indent(depth) << "----\n";
            continue;
        }
        out << indent(depth) << (item.checked ? "✓ " : "") << item.title;
        if (!item.keyEquivalent.empty()) out << "  ⌘" << item.keyEquivalent;
        if (!item.enabled) out << "  (disabled)";
        if (!item.submenu.empty()) out << "  ▸";
        out << "\n";
        print(item.submenu, out, depth + 1);
    }
}

bool ShellScene::run(const ScenarioCommand& command) {
    using Kind = ScenarioCommand::Kind;
    SettingsModel& model = delegate_.settingsWindow()->model();
    switch (command.kind) {
        case Kind::menu:
            out_ << "  [menu]\n";
            print(delegate_.statusMenu()->menuNeedsUpdate(), out_, 2);
            return true;
        case Kind::choose:
            choose(command.others);
            return true;
        case Kind::settings:
            openSettings(command.label);
            printSettings();
            return true;
        case Kind::typeSite:
            model.setNewHost(command.name);
            return true;
        case Kind::submitSite:
        case Kind::addSite:
            if (command.kind == Kind::addSite) model.setNewHost(command.site);
            model.addTypedSite();
            printMessage();
            return true;
        case Kind::addFrontSite:
            if (!model.frontSiteToAdd()) throw SceneFailure{"the settings offer no site from the browser"};
            model.addFrontSite();
            return true;
        case Kind::addUsedApp: {
            std::optional<SettingsModel::AppToAdd> app = model.appToAdd();
            if (!app) throw SceneFailure{"the settings offer no app used last"};
            model.addApp(app->bundleID, app->name);
            printMessage();
            return true;
        }
        case Kind::addApp:
            model.addApp(command.program, command.name);
            printMessage();
            return true;
        case Kind::pickApp:
            apps_.setOpenPanelResult(OpenPanelResult{1, command.address});
            model.chooseApp();
            printMessage();
            return true;
        case Kind::editRule:
            edit(command);
            return true;
        case Kind::setRule:
        case Kind::resetRule:
        case Kind::removeSite:
        case Kind::addDayOff:
        case Kind::removeDayOff:
        case Kind::clearHistory:
            edit(command);
            return true;
        default:
            return false;
    }
}

void ShellScene::choose(const std::vector<std::string>& path) {
    std::vector<MenuItem> menu = delegate_.statusMenu()->menuNeedsUpdate();
    const std::vector<MenuItem>* level = &menu;
    const MenuItem* found = nullptr;
    for (const std::string& title : path) {
        found = nullptr;
        for (const MenuItem& item : *level)
            if (!item.isSeparator && item.title == title) found = &item;
        if (!found) throw SceneFailure{"the menu has no item \"" + title + "\""};
        if (!found->enabled) throw SceneFailure{"\"" + title + "\" is disabled"};
        level = &found->submenu;
    }
    if (!found->submenu.empty()) throw SceneFailure{"\"" + found->title + "\" opens a submenu; choose one of its items"};
    if (found->handler) {
        found->handler();
    } else if (found->systemAction == SystemAction::checkForUpdates) {
        delegate_.checkForUpdates();
    } else if (found->systemAction == SystemAction::quit) {
        throw SceneFailure{"quit the program with \"stop\""};
    }
}

void ShellScene::openSettings(const std::string& page) {
    SettingsWindow& window = *delegate_.settingsWindow();
    if (page.empty()) return window.show(std::nullopt);
    if (page == "stats") return window.showStats();
    if (page == "new-sites" || page == "days-off") {
        window.model().setPage(page == "new-sites" ? SettingsModel::Page::newSites() : SettingsModel::Page::daysOff());
        return window.show(std::nullopt);
    }
    if (std::optional<SiteRule> rule = listedRule(window.model().rules(), page)) return window.show(rule);
    throw SceneFailure{"no page \"" + page + "\": stats, new-sites, days-off or a listed site"};
}

void ShellScene::printMessage() {
    const auto& message = delegate_.settingsWindow()->model().addMessage();
    if (message) out_ << "  message: " << *message << "\n";
}

void ShellScene::printSettings() {
    SettingsModel& model = delegate_.settingsWindow()->model();
    out_ << "  [settings: " << model.title() << "]\n";
    for (const auto& row : SettingsContent::sidebar(model)) {
        bool selected = row.page && row.page == model.page();
        out_ << "  " << (selected ? "> " : "  ") << (row.kind == SettingsContent::SidebarRow::Kind::section ? "" : "  ")
             << row.title;
        if (!row.subtitle.empty()) out_ << " — " << row.subtitle;
        out_ << "\n";
    }
    SettingsContent::AddArea add = SettingsContent::addArea(model);
    if (add.frontSite) out_ << "    [" << add.frontSite->title << "]\n";
    if (add.app) out_ << "    [" << add.app->title << "]\n";
    out_ << "    [" << SettingsContent::AddArea::chooseAppTitle << "]\n";
    out_ << "    box: " << (model.newHost().empty() ? std::string(SettingsContent::AddArea::placeholder) : model.newHost())
         << "\n";
    printMessage();
    printDetail();
}

void ShellScene::printDetail() {
    SettingsModel& model = delegate_.settingsWindow()->model();
    Calendar calendar = model.calendar();
    switch (SettingsContent::detail(model)) {
        case SettingsContent::Detail::problem:
            out_ << "    " << *SettingsContent::problemText(model) << "\n";
            return;
        case SettingsContent::Detail::emptyList: {
            SettingsContent::EmptyList screen = SettingsContent::emptyList(model);
            out_ << "    " << SettingsContent::EmptyList::title << "\n    " << screen.defaults << "\n";
            if (screen.hint) out_ << "    " << *screen.hint << "\n";
            if (screen.addButton) out_ << "    [" << *screen.addButton << "]\n";
            return;
        }
        case SettingsContent::Detail::site: {
            SiteEditor editor(model, *SettingsContent::openSite(model));
            out_ << "    " << editor.name() << "  [" << SiteEditor::removeTitle << "]\n";
            out_ << "    " << editor.summary() << "\n";
            out_ << "    Right now: " << editor.rightNow() << "\n";
            std::string pins;
            for (const auto& choice : SiteEditor::pinChoices())
                pins += (editor.site().pin == choice.pin ? " (•) " : " ( ) ") + choice.title;
            out_ << "    " << editor.pinLabel() << ":" << pins << "\n";
            if (editor.usesNewSiteDefaults())
                out_ << "    Rule: " << SiteEditor::usesDefaultsText << "\n";
            else
                out_ << "    [" << SiteEditor::useDefaultsAgainTitle << "]\n";
            out_ << "    " << SiteEditor::overrideTitle << "\n";
            printForm(editor.ruleEditor(), calendar, out_);
            return;
        }
        case SettingsContent::Detail::stats: {
            StatsPage page = StatsPage::make(model);
            if (page.problemText) out_ << "    " << *page.problemText << "\n";
            out_ << "    " << page.lead << "\n";
            for (const auto& line : page.otherLines) out_ << "    " << line << "\n";
            for (const auto& row : page.rows) {
                out_ << "    " << row.name << " | " << row.duration << " | " << row.visits;
                if (row.change) out_ << " | " << *row.change;
                out_ << "\n";
            }
            out_ << "    " << StatsPage::footer << "  [" << StatsPage::clearTitle << "]"
                 << (page.canClear ? "" : " (disabled)") << "\n";
            return;
        }
        case SettingsContent::Detail::newSites:
            printForm(SettingsContent::newSitesEditor(model), calendar, out_);
            out_ << "    " << SettingsContent::newSitesFooter << "\n";
            return;
        case SettingsContent::Detail::daysOff: {
            DaysOffEditor editor(model);
            std::vector<DaysOffEditor::Row> rows = editor.rows();
            if (rows.empty()) out_ << "    " << DaysOffEditor::emptyText << "\n";
            for (const auto& row : rows) out_ << "    " << row.name << " — " << row.date << "  [Remove]\n";
            out_ << "    " << DaysOffEditor::footer << "\n";
            return;
        }
    }
}

void ShellScene::edit(const ScenarioCommand& command) {
    using Kind = ScenarioCommand::Kind;
    SettingsModel& model = delegate_.settingsWindow()->model();
    model.reload();
    RuleSet before = model.rules();
    std::optional<SiteRule> site;
    if (!command.site.empty()) {
        site = listedRule(before, command.site);
        if (!site) throw SceneFailure{"no listed site or app \"" + command.site + "\""};
    }
    if (command.kind == Kind::clearHistory) {
        if (!StatsPage::make(model).canClear) throw SceneFailure{"\"Clear history…\" is disabled"};
        model.setShowsClearConfirmation(true);
        model.clearHistory();
        return;
    }
    if (SettingsContent::problemText(model) && command.kind != Kind::addDayOff && command.kind != Kind::removeDayOff) {
        out_ << "  refused: " << *SettingsContent::problemText(model) << "\n";
        return;
    }
    switch (command.kind) {
        case Kind::removeSite: SiteEditor(model, *site).remove(); break;
        case Kind::resetRule: SiteEditor(model, *site).useNewSiteDefaultsAgain(); break;
        case Kind::addDayOff: {
            Calendar calendar = model.calendar();
            long year = command.year ? static_cast<long>(*command.year) : calendar.components(model.now()).year;
            std::optional<Instant> date = calendar.date(year, command.month, command.day, 12);
            if (!date) throw SceneFailure{"no such date"};
            model.setDayOffName(command.name);
            model.setDayOffDate(*date);
            model.setDayOffEveryYear(!command.year);
            model.addTypedDayOff();
            break;
        }
        case Kind::removeDayOff: {
            DaysOffEditor editor(model);
            std::vector<DaysOffEditor::Row> rows = editor.rows();
            auto row = std::find_if(rows.begin(), rows.end(), [&](const auto& row) { return row.name == command.name; });
            if (row == rows.end()) throw SceneFailure{"no day off named \"" + command.name + "\""};
            editor.remove(row->id);
            break;
        }
        case Kind::setRule: {
            SiteSettings settings = site ? before.effectiveSettings(*site) : before.newSiteDefaults;
            const auto& change = command.change;
            if (change.days) settings.days = *change.days;
            if (change.hours) settings.hours = *change.hours;
            if (change.trigger) settings.trigger = *change.trigger;
            if (change.stayGray) settings.stayGray = *change.stayGray;
            try {
                settings.validate();
            } catch (const RuleError& error) {
                out_ << "  refused: " << error.what() << "\n";
                return;
            }
            RuleSet edited = before;
            if (site)
                edited.updateSettings(site->id, settings);
            else
                edited.newSiteDefaults = settings;
            // Settings that were already so save fine and change nothing.
            if (!model.save(edited)) out_ << "  the rules could not be saved\n";
            return;
        }
        default: {  // editRule
            model.setPage(site ? SettingsModel::Page::forSite(site->id) : SettingsModel::Page::newSites());
            const std::string& control = command.others.front();
            std::vector<std::string> values(command.others.begin() + 1, command.others.end());
            if (site) {
                SiteEditor editor(model, *site);
                if (control == SiteEditor::removeTitle) {
                    editor.remove();
                    break;
                }
                if (control == SiteEditor::useDefaultsAgainTitle) {
                    if (editor.usesNewSiteDefaults()) throw SceneFailure{"the rule already uses the defaults"};
                    editor.useNewSiteDefaultsAgain();
                    break;
                }
                if (control == editor.pinLabel()) {
                    if (values.empty()) throw SceneFailure{"\"" + control + "\" needs a value"};
                    for (const auto& choice : SiteEditor::pinChoices())
                        if (choice.title == values.front()) {
                            editor.choosePin(choice.pin);
                            return;
                        }
                    throw SceneFailure{"\"" + control + "\" offers \"Follow the rule\", \"Keep gray\", \"Keep in color\""};
                }
                RuleEditor form = editor.ruleEditor();
                operate(form, control, values);
            } else {
                RuleEditor form = SettingsContent::newSitesEditor(model);
                operate(form, control, values);
            }
            break;
        }
    }
    if (model.rules() == before && command.kind != Kind::editRule) out_ << "  the rules could not be saved\n";
}

}  // namespace ashview
