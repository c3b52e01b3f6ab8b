#include "AshviewQt/RuleForm.h"

#include "Ashview/Shell/SettingsText.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QTimeEdit>

namespace ashview::RuleForm {

namespace {

using Form::Choice;
using Form::qt;

template <typename Value>
std::vector<Choice> choices(const std::vector<RuleEditor::Choice<Value>>& offered, const Value& current) {
    std::vector<Choice> shown;
    for (const auto& choice : offered) shown.push_back(Choice{choice.title, choice.value == current});
    return shown;
}

template <typename Value>
std::vector<Choice> choices(const std::vector<RuleEditor::Choice<Value>>& offered, const std::optional<Value>& current) {
    std::vector<Choice> shown;
    for (const auto& choice : offered) shown.push_back(Choice{choice.title, current && choice.value == *current});
    return shown;
}

/// "10 minutes" as the stepper's suffix after its number.
std::string suffixOf(const std::string& valueText) {
    std::size_t space = valueText.find(' ');
    return space == std::string::npos ? std::string() : valueText.substr(space);
}

QTimeEdit* timePicker(const char* name, const ClockTime& time, std::function<void(int, int)> set) {
    auto* picker = new QTimeEdit(QTime(static_cast<int>(time.hour), static_cast<int>(time.minute)));
    picker->setObjectName(name);
    picker->setDisplayFormat("HH:mm");
    picker->setKeyboardTracking(false);
    QObject::connect(picker, &QTimeEdit::timeChanged, picker, [set](QTime chosen) {
        set(chosen.isValid() ? chosen.hour() : 0, chosen.isValid() ? chosen.minute() : 0);
    });
    return picker;
}

void whenSection(Form::Page& page, const std::shared_ptr<RuleEditor>& editor) {
    Form::Group* group = page.section(SettingsText::whenSection);
    auto timeOfDay = RuleEditor::timeOfDayChoices();
    group->addRow(SettingsText::timeOfDayLabel,
                  Form::radios(SettingsText::timeOfDayLabel, choices(timeOfDay, editor->timeOfDay()),
                               [editor, timeOfDay](int index) { editor->chooseTimeOfDay(timeOfDay[index].value); }));
    if (const auto& hours = editor->settings().hours) {
        group->addRow(SettingsText::fromLabel, timePicker(SettingsText::fromLabel, hours->start, [editor](int h, int m) {
                          editor->setStart(h, m);
                      }));
        group->addRow(SettingsText::toLabel, timePicker(SettingsText::toLabel, hours->end, [editor](int h, int m) {
                          editor->setEnd(h, m);
                      }));
        if (std::optional<std::string> note = editor->hoursNote())
            group->addRow(Form::label(*note, Form::TextStyle::secondary));
    }
    auto days = RuleEditor::daysChoices();
    group->addRow(SettingsText::daysLabel,
                  Form::segmented(SettingsText::daysLabel, choices(days, editor->daysChoice()),
                                  [editor, days](int index) { editor->chooseDays(days[index].value); }));
    if (editor->daysChoice() == RuleEditor::DaysChoice::custom) {
        auto* boxes = new QWidget;
        auto* line = new QHBoxLayout(boxes);
        line->setContentsMargins(0, 0, 0, 0);
        for (const RuleEditor::DayBox& day : editor->dayBoxes()) {
            auto* box = new QCheckBox(qt(day.label), boxes);
            box->setChecked(day.isChecked);
            Weekday weekday = day.day;
            QObject::connect(box, &QCheckBox::clicked, box,
                             [editor, weekday](bool checked) { editor->setDay(weekday, checked); });
            line->addWidget(box);
        }
        line->addStretch(1);
        group->addRow(boxes);
    }
    if (std::optional<std::string> note = editor->daysNote())
        group->addRow(Form::label(*note, Form::TextStyle::secondary));
}

void turnSection(Form::Page& page, const std::shared_ptr<RuleEditor>& editor) {
    Form::Group* group = page.section(SettingsText::turnSection);
    auto turn = RuleEditor::turnGrayChoices();
    group->addRow(SettingsText::turnGrayLabel,
                  Form::radios(SettingsText::turnGrayLabel, choices(turn, editor->turnGray()),
                               [editor, turn](int index) { editor->chooseTurnGray(turn[index].value); }));
    if (editor->turnGray() != RuleEditor::TurnGray::afterLimit) return;
    for (const RuleEditor::LimitRow& row : editor->limitRows()) {
        auto* line = new QWidget;
        auto* columns = new QHBoxLayout(line);
        columns->setContentsMargins(0, 0, 0, 0);
        auto* box = new QCheckBox(qt(row.title), line);
        box->setObjectName(qt(row.title));
        box->setChecked(row.isOn);
        box->setEnabled(row.isEnabled);
        RuleEditor::Limit limit = row.limit;
        QObject::connect(box, &QCheckBox::clicked, box, [editor, limit](bool on) { editor->setLimitOn(limit, on); });
        columns->addWidget(box);
        columns->addStretch(1);
        if (row.isOn) {
            columns->addWidget(Form::stepper(row.title + " stepper", row.value, row.minimum, row.maximum,
                                             suffixOf(row.valueText),
                                             [editor, limit](std::int64_t value) { editor->setLimitValue(limit, value); }));
        }
        group->addRow(line);
    }
    auto counted = editor->countedChoices();
    group->addRow(SettingsText::countedLabel,
                  Form::menu(SettingsText::countedLabel, choices(counted, editor->counted()),
                             [editor, counted](int index) { editor->chooseCounted(counted[index].value); }));
    group->addRow(Form::label(editor->explanation(), Form::TextStyle::secondary));
}

void staySection(Form::Page& page, const std::shared_ptr<RuleEditor>& editor) {
    Form::Group* group = page.section(SettingsText::staySection);
    auto stay = editor->stayChoices();
    auto* picker = Form::radios(SettingsText::stayGrayLabel, choices(stay, editor->stayKind()),
                                [editor, stay](int index) { editor->chooseStay(stay[index].value); });
    group->addRow(Form::label(SettingsText::stayGrayLabel));
    group->addRow(picker);
    if (std::optional<std::int64_t> minutes = editor->stayMinutes()) {
        group->addRow(Form::stepper(std::string(SettingsText::stayGrayLabel) + " stepper", *minutes, 1,
                                    RuleEditor::maximumMinutes, suffixOf(RuleEditor::minutesText(*minutes)),
                                    [editor](std::int64_t value) { editor->setStayMinutes(value); }));
    }
}

}  // namespace

void add(Form::Page& page, std::shared_ptr<RuleEditor> editor) {
    whenSection(page, editor);
    turnSection(page, editor);
    staySection(page, editor);
}

}  // namespace ashview::RuleForm
