#include "Ashview/Shell/RuleEditor.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

/// A form over `settings` that keeps what it was told, as the model would.
struct Form {
    explicit Form(SiteSettings settings, bool isApp = false) : saved(std::move(settings)), isApp(isApp) {}
    RuleEditor editor() {
        return RuleEditor(
            saved, showsCustomDays, isApp, Calendar("gregorian", "UTC", "en_US"),
            [this](const SiteSettings& settings) {
                saved = settings;
                ++changes;
            },
            [this](bool shows) { showsCustomDays = shows; });
    }
    SiteSettings saved;
    bool isApp;
    bool showsCustomDays = false;
    int changes = 0;
};

SiteSettings minutesOnly(std::int64_t minutes) {
    SiteSettings settings = SiteSettings::forNewSites();
    settings.trigger = GrayTrigger::afterLimit(minutes, std::nullopt, CountPeriod::day);
    return settings;
}

TEST(RuleEditor, HoursAreSetToNineToFiveClearedAndExplained) {
    Form form(SiteSettings::forNewSites());
    form.editor().chooseTimeOfDay(RuleEditor::TimeOfDay::allDay);
    EXPECT_EQ(form.changes, 0) << "choosing what is set changes nothing";
    form.editor().chooseTimeOfDay(RuleEditor::TimeOfDay::certainHours);
    EXPECT_EQ(form.saved.hours, (ActiveHours{{9, 0}, {17, 0}}));
    EXPECT_EQ(form.editor().hoursNote(), std::nullopt);
    EXPECT_EQ(form.editor().explanation(),
              "The first 3 opens stay in color. The next one turns gray. Leaving and coming back doesn't reset this. "
              "Only time inside those hours counts.");
    form.editor().setStart(22, 0);
    form.editor().setEnd(6, 0);
    EXPECT_EQ(form.editor().hoursNote(), "Ends the next morning.");
    form.editor().setEnd(22, 0);
    EXPECT_EQ(form.editor().hoursNote(), "Pick different start and end times.");
    form.editor().chooseTimeOfDay(RuleEditor::TimeOfDay::allDay);
    EXPECT_FALSE(form.saved.hours);
}

TEST(RuleEditor, DayPresetsCustomCheckboxesAndTheEmptyNote) {
    Form form(SiteSettings::forNewSites());
    EXPECT_EQ(form.editor().daysChoice(), RuleEditor::DaysChoice::everyDay);
    form.editor().chooseDays(RuleEditor::DaysChoice::custom);
    EXPECT_TRUE(form.showsCustomDays);
    EXPECT_EQ(form.saved.days, Weekday::all()) << "custom keeps the days";
    EXPECT_EQ(form.editor().daysChoice(), RuleEditor::DaysChoice::custom);
    EXPECT_EQ(form.editor().dayBoxes().front().label, "Mon");
    for (Weekday day : Weekday::allCases) form.editor().setDay(day, false);
    EXPECT_EQ(form.editor().daysChoice(), RuleEditor::DaysChoice::custom);
    EXPECT_EQ(form.editor().daysNote(), "No days are checked, so this never turns gray.");
    form.editor().chooseDays(RuleEditor::DaysChoice::weekdays);
    EXPECT_FALSE(form.showsCustomDays);
    EXPECT_EQ(form.saved.days, (WeekdaySet{Weekday::monday, Weekday::tuesday, Weekday::wednesday, Weekday::thursday,
                                           Weekday::friday}));
    form.showsCustomDays = false;  // the page changed
    form.editor().chooseDays(RuleEditor::DaysChoice::custom);
    form.editor().setDay(Weekday::saturday, true);
    form.editor().setDay(Weekday::sunday, true);
    form.editor().setDay(Weekday::monday, false);
    form.editor().setDay(Weekday::tuesday, false);
    form.editor().setDay(Weekday::wednesday, false);
    form.editor().setDay(Weekday::thursday, false);
    form.editor().setDay(Weekday::friday, false);
    form.showsCustomDays = false;
    EXPECT_EQ(form.editor().daysChoice(), RuleEditor::DaysChoice::weekends) << "a preset's set shows as the preset";
}

TEST(RuleEditor, OneLimitAlwaysStaysOnAndEachLimitChangesAlone) {
    Form form(minutesOnly(20));
    std::vector<RuleEditor::LimitRow> rows = form.editor().limitRows();
    EXPECT_FALSE(rows[0].isEnabled) << "the only limit that is on is locked";
    EXPECT_TRUE(rows[1].isEnabled);
    form.editor().setLimitOn(RuleEditor::Limit::minutes, false);
    EXPECT_EQ(form.changes, 0);
    form.editor().setLimitOn(RuleEditor::Limit::opens, true);
    rows = form.editor().limitRows();
    EXPECT_TRUE(rows[0].isEnabled && rows[1].isEnabled);
    EXPECT_EQ(rows[1].valueText, "3 opens");
    form.editor().setLimitValue(RuleEditor::Limit::opens, 1);
    EXPECT_EQ(form.saved.trigger, GrayTrigger::afterLimit(20, 1, CountPeriod::day));
    EXPECT_EQ(form.editor().limitRows()[1].valueText, "1 open");
    form.editor().setLimitValue(RuleEditor::Limit::minutes, 5000);
    EXPECT_EQ(form.saved.trigger.limit()->minutes, 600) << "a stepper stays within its range";

    form.editor().chooseTurnGray(RuleEditor::TurnGray::rightAway);
    EXPECT_TRUE(form.saved.trigger.isRightAway());
    form.editor().chooseTurnGray(RuleEditor::TurnGray::afterLimit);
    EXPECT_EQ(form.saved.trigger, GrayTrigger::afterLimit(std::nullopt, 3, CountPeriod::hour));
}

TEST(RuleEditor, TheExplanationOfEachLimitShape) {
    struct Case {
        std::optional<std::int64_t> minutes, opens;
        std::string text;
    };
    for (const Case& c : std::vector<Case>{
             {20, 5, "Turns gray after 20 minutes on it or 5 opens, whichever comes first."},
             {1, std::nullopt, "Stays in color for 1 minute on it, then turns gray."},
             {std::nullopt, 1, "The first 1 open stay in color. The next one turns gray."},
             {std::nullopt, std::nullopt, ""},
         }) {
        EXPECT_EQ(RuleEditor::limitExplanation(c.minutes, c.opens), c.text);
    }
}

TEST(RuleEditor, AnAppIsNeverOfferedTheBrowsingSession) {
    for (bool isApp : {false, true}) {
        Form form(minutesOnly(20), isApp);
        RuleEditor editor = form.editor();
        EXPECT_EQ(editor.countedChoices().size(), isApp ? 2u : 3u);
        EXPECT_EQ(editor.stayChoices().size(), isApp ? 2u : 3u);
        EXPECT_EQ(editor.stayChoices().front().title, isApp ? "Until I leave the app" : "Until I leave the site");
        editor.chooseCounted(CountPeriod::session);
        editor.chooseStay(RuleEditor::StayKind::untilChromeQuits);
        EXPECT_EQ(form.changes, isApp ? 0 : 2);
    }
}

TEST(RuleEditor, StayingGrayForMinutesStartsAtTenAndStepsWithinRange) {
    Form form(SiteSettings::forNewSites());
    form.editor().chooseStay(RuleEditor::StayKind::untilLeave);
    EXPECT_EQ(form.changes, 0);
    form.editor().chooseStay(RuleEditor::StayKind::forMinutes);
    EXPECT_EQ(form.editor().stayMinutes(), 10);
    form.editor().setStayMinutes(0);
    EXPECT_EQ(form.editor().stayMinutes(), 1);
    EXPECT_EQ(RuleEditor::minutesText(1), "1 minute");
}

}  // namespace
}  // namespace ashview
