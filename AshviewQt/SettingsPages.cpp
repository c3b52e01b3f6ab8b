#include "AshviewQt/SettingsPages.h"

#include "Ashview/Shell/DaysOffEditor.h"
#include "Ashview/Shell/SettingsContent.h"
#include "Ashview/Shell/SettingsText.h"
#include "Ashview/Shell/SiteEditor.h"
#include "AshviewQt/Form.h"
#include "AshviewQt/RuleForm.h"

#include <QDateEdit>
#include <QLineEdit>

namespace ashview::SettingsPages {

namespace {

using Form::ButtonRole;
using Form::TextStyle;

QWidget* problem(const std::string& text) {
    auto* page = new Form::Page;
    page->add(Form::label(text));
    page->addStretch();
    return page;
}

QLabel* centred(QLabel* label) {
    label->setAlignment(Qt::AlignCenter);
    return label;
}

QWidget* empty(SettingsModel& model) {
    SettingsContent::EmptyList screen = SettingsContent::emptyList(model);
    auto* page = new Form::Page;
    page->layout()->addSpacing(120);
    page->add(centred(Form::label(SettingsContent::EmptyList::title, TextStyle::title)));
    page->add(centred(Form::label(screen.defaults, TextStyle::secondary)));
    page->layout()->addSpacing(10);
    if (screen.addButton) {
        QWidget* add = Form::button(*screen.addButton, ButtonRole::prominent, [&model] { model.addFrontSite(); });
        page->layout()->addWidget(add, 0, Qt::AlignHCenter);
    }
    if (screen.hint) page->add(centred(Form::label(*screen.hint, TextStyle::secondary)));
    page->addStretch();
    return page;
}

QWidget* site(SettingsModel& model, const SiteRule& rule) {
    auto editor = std::make_shared<SiteEditor>(model, rule);
    auto* page = new Form::Page;

    auto* head = new QWidget;
    auto* line = new QHBoxLayout(head);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(Form::label(editor->name(), TextStyle::title), 1);
    line->addWidget(Form::button(SiteEditor::removeTitle, ButtonRole::destructive, [editor] { editor->remove(); }));
    page->add(head);

    Form::Group* state = page->section("");
    state->addRow(Form::label(editor->summary()));
    state->addValueRow(SettingsText::rightNowLabel, editor->rightNow());
    std::vector<Form::Choice> pins;
    std::vector<SitePin> values;
    for (const SiteEditor::PinChoice& choice : SiteEditor::pinChoices()) {
        pins.push_back(Form::Choice{choice.title, choice.pin == rule.pin});
        values.push_back(choice.pin);
    }
    state->addRow(editor->pinLabel(), Form::segmented(editor->pinLabel(), pins, [editor, values](int index) {
                      editor->choosePin(values[index]);
                  }));
    if (editor->usesNewSiteDefaults()) {
        state->addValueRow(SettingsText::ruleLabel, SiteEditor::usesDefaultsText);
    } else {
        state->addRow(Form::button(SiteEditor::useDefaultsAgainTitle, ButtonRole::normal,
                                   [editor] { editor->useNewSiteDefaultsAgain(); }));
    }
    page->layout()->addSpacing(14);
    page->add(Form::label(SiteEditor::overrideTitle, TextStyle::lead));
    RuleForm::add(*page, std::make_shared<RuleEditor>(editor->ruleEditor()));
    page->addStretch();
    return page;
}

QWidget* newSites(SettingsModel& model) {
    auto* page = new Form::Page;
    page->add(Form::label(model.title(), TextStyle::title));
    RuleForm::add(*page, std::make_shared<RuleEditor>(SettingsContent::newSitesEditor(model)));
    page->footer(SettingsContent::newSitesFooter);
    page->addStretch();
    return page;
}

QDate dateOf(const SettingsModel& model, Instant instant) {
    DateComponents parts = model.calendar().components(instant);
    return QDate(static_cast<int>(parts.year), static_cast<int>(parts.month), static_cast<int>(parts.day));
}

QWidget* daysOff(SettingsModel& model, const Typing& typing) {
    auto editor = std::make_shared<DaysOffEditor>(model);
    auto* page = new Form::Page;
    page->add(Form::label(DaysOffEditor::title, TextStyle::title));
    page->footer(DaysOffEditor::footer);

    Form::Group* list = page->section(DaysOffEditor::listTitle);
    std::vector<DaysOffEditor::Row> rows = editor->rows();
    if (rows.empty()) list->addRow(Form::label(DaysOffEditor::emptyText, TextStyle::secondary));
    for (const DaysOffEditor::Row& row : rows) {
        auto* line = new QWidget;
        auto* columns = new QHBoxLayout(line);
        columns->setContentsMargins(0, 0, 0, 0);
        auto* words = new QVBoxLayout;
        words->setSpacing(1);
        words->addWidget(Form::label(row.name));
        words->addWidget(Form::label(row.date, TextStyle::caption));
        columns->addLayout(words, 1);
        Uuid id = row.id;
        columns->addWidget(Form::button(SettingsText::dayOffRemoveTitle, ButtonRole::normal, [editor, id] { editor->remove(id); }));
        list->addRow(line);
    }

    Form::Group* form = page->section(DaysOffEditor::addTitle);
    auto* name = new QLineEdit(Form::qt(model.dayOffName()));
    name->setObjectName(SettingsText::dayOffNameLabel);
    name->setPlaceholderText(DaysOffEditor::namePrompt);
    name->setMinimumWidth(220);
    QObject::connect(name, &QLineEdit::textEdited, name, [&model, typing](const QString& text) {
        typing([&model, text] { model.setDayOffName(text.toStdString()); });
    });
    form->addRow(SettingsText::dayOffNameLabel, name);

    auto* date = new QDateEdit(dateOf(model, model.dayOffDate()));
    date->setObjectName(SettingsText::dayOffDateLabel);
    date->setCalendarPopup(true);
    date->setDisplayFormat("d MMMM yyyy");
    date->setKeyboardTracking(false);
    QObject::connect(date, &QDateEdit::dateChanged, date, [&model](QDate chosen) {
        if (std::optional<Instant> at = model.calendar().date(chosen.year(), chosen.month(), chosen.day(), 12, 0, 0))
            model.setDayOffDate(*at);
    });
    form->addRow(SettingsText::dayOffDateLabel, date);

    bool everyYear = model.dayOffEveryYear();
    form->addRow(SettingsText::dayOffRepeatsLabel,
                 Form::segmented(SettingsText::dayOffRepeatsLabel,
                                 {{DaysOffEditor::oneYearTitle, !everyYear}, {DaysOffEditor::everyYearTitle, everyYear}},
                                 [&model](int index) { model.setDayOffEveryYear(index == 1); }));
    auto* add = Form::button(DaysOffEditor::addButtonTitle, ButtonRole::normal, [&model] { model.addTypedDayOff(); });
    form->addRow(add);
    page->addStretch();
    return page;
}

}  // namespace

QWidget* make(SettingsModel& model, const Typing& typing) {
    using Detail = SettingsContent::Detail;
    switch (SettingsContent::detail(model)) {
        case Detail::problem: return problem(SettingsContent::problemText(model).value_or(""));
        case Detail::emptyList: return empty(model);
        case Detail::site: {
            if (std::optional<SiteRule> rule = SettingsContent::openSite(model)) return site(model, *rule);
            return empty(model);
        }
        case Detail::stats: return stats(model);
        case Detail::newSites: return newSites(model);
        case Detail::daysOff: return daysOff(model, typing);
    }
    return empty(model);
}

}  // namespace ashview::SettingsPages
