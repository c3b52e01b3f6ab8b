#include "AshviewQt/SetupWidget.h"

#include "AshviewQt/Form.h"

#include <QHBoxLayout>
#include <QPushButton>

namespace ashview {

namespace {

/// A row of minimum height 24: the name, a gap, the state in secondary
/// style, and the button when there is one.
QWidget* row(const SetupModel::Row& shown) {
    auto* line = new QWidget;
    line->setMinimumHeight(24);
    auto* columns = new QHBoxLayout(line);
    columns->setContentsMargins(0, 0, 0, 0);
    if (!shown.name.empty()) columns->addWidget(Form::label(shown.name));
    columns->addStretch(1);
    columns->addWidget(Form::label(shown.status, Form::TextStyle::secondary));
    if (shown.button) {
        std::function<void()> action = shown.action;
        columns->addWidget(Form::button(*shown.button, Form::ButtonRole::normal, [action] {
            if (action) action();
        }));
    }
    return line;
}

/// Empties a column of rows made by an earlier redraw.
void clear(QVBoxLayout& column) {
    while (QLayoutItem* item = column.takeAt(0)) {
        if (QWidget* widget = item->widget()) widget->deleteLater();
        delete item;
    }
}

}  // namespace

SetupWidget::SetupWidget(SetupModel& model, QWidget* parent)
    : QWidget(parent), model_(model), browsers_(new QVBoxLayout), accessibility_(new QVBoxLayout) {
    setWindowTitle(SetupModel::windowTitle);
    auto* page = new Form::Page(this);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(page);
    page->add(Form::label(SetupModel::introduction));

    for (auto [title, rows, note] : {std::tuple{SetupModel::browserAccessTitle, browsers_, SetupModel::browserAccessNote},
                                     std::tuple{SetupModel::accessibilityTitle, accessibility_,
                                                SetupModel::accessibilityNote}}) {
        Form::Group* group = page->section(title);
        auto* holder = new QWidget;
        rows->setContentsMargins(0, 0, 0, 0);
        rows->setSpacing(6);
        holder->setLayout(rows);
        group->addRow(holder);
        group->addRow(Form::label(note, Form::TextStyle::caption));
    }
    page->layout()->addSpacing(12);
    auto* finish = static_cast<QPushButton*>(
        Form::button(SetupModel::doneTitle, Form::ButtonRole::prominent, [this] { window()->close(); }));
    finish->setDefault(true);
    finish->setAutoDefault(true);
    page->layout()->addWidget(finish, 0, Qt::AlignRight);
    setFixedWidth(520);

    watch_ = model_.changed.connect([this] { Form::refreshLater(this, refreshPending_, [this] { refresh(); }); });
    refresh();
}

void SetupWidget::refresh() {
    clear(*browsers_);
    for (const SetupModel::Row& shown : model_.browserRows()) browsers_->addWidget(row(shown));
    clear(*accessibility_);
    accessibility_->addWidget(row(model_.accessibilityRow()));
    adjustSize();
}

}  // namespace ashview
