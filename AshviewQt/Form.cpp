#include "AshviewQt/Form.h"

#include "AshviewQt/Theme.h"

#include <QButtonGroup>
#include <QMetaObject>
#include <QPushButton>
#include <QRadioButton>

namespace ashview::Form {

QString qt(const std::string& text) { return QString::fromStdString(text); }

QWidget* hairline(QWidget* parent) {
    auto* line = new QWidget(parent);
    line->setFixedHeight(1);
    line->setAutoFillBackground(true);
    QPalette shade = line->palette();
    shade.setColor(QPalette::Window, QColor(0xe5, 0xe5, 0xe7));
    line->setPalette(shade);
    return line;
}

QLabel* label(const std::string& text, TextStyle style, QWidget* parent) {
    auto* shown = new QLabel(qt(text), parent);
    shown->setTextFormat(Qt::PlainText);
    // Wrapping makes a label lay its text out again at every width the
    // layout tries: only sentences wrap.
    shown->setWordWrap(text.size() > 40);
    QPalette palette = shown->palette();
    switch (style) {
        case TextStyle::body: break;
        case TextStyle::secondary:
            palette.setColor(QPalette::WindowText, Theme::secondaryText());
            break;
        case TextStyle::caption:
            shown->setFont(Theme::font(11));
            palette.setColor(QPalette::WindowText, Theme::secondaryText());
            break;
        case TextStyle::head: shown->setFont(Theme::font(13, QFont::DemiBold)); break;
        case TextStyle::lead: shown->setFont(Theme::font(15, QFont::DemiBold)); break;
        case TextStyle::title: shown->setFont(Theme::font(20, QFont::DemiBold)); break;
        case TextStyle::largeTitle: shown->setFont(Theme::font(26, QFont::Bold)); break;
    }
    shown->setPalette(palette);
    return shown;
}

Group::Group(QWidget* parent) : QFrame(parent), rows_(new QVBoxLayout(this)) {
    setObjectName("group");
    rows_->setContentsMargins(12, 4, 12, 4);
    rows_->setSpacing(0);
}

void Group::addRow(QWidget* content) {
    if (rows_->count() > 0) {
        rows_->addWidget(hairline(this));
    }
    auto* row = new QWidget(this);
    auto* box = new QVBoxLayout(row);
    box->setContentsMargins(0, 8, 0, 8);
    box->addWidget(content);
    row->setMinimumHeight(24);
    rows_->addWidget(row);
}

void Group::addRow(const std::string& text, QWidget* trailing) {
    auto* row = new QWidget(this);
    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    QLabel* name = label(text, TextStyle::body, row);
    name->setWordWrap(false);
    // A one-line control stands level with its label; a taller one (a
    // column of radio buttons) hangs from the label's line.
    const bool tall = trailing->sizeHint().height() > 40;
    line->addWidget(name, 0, Qt::AlignLeft | (tall ? Qt::AlignTop : Qt::AlignVCenter));
    line->addStretch(1);
    line->addWidget(trailing, 0, Qt::AlignRight);
    addRow(row);
}

void Group::addValueRow(const std::string& text, const std::string& value) {
    QLabel* shown = label(value, TextStyle::secondary);
    shown->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    addRow(text, shown);
}

Page::Page(QWidget* parent) : QWidget(parent), column_(new QVBoxLayout(this)) {
    column_->setContentsMargins(24, 20, 24, 24);
    column_->setSpacing(6);
}

Group* Page::section(const std::string& head) {
    if (column_->count() > 0) column_->addSpacing(14);
    if (!head.empty()) add(label(head, TextStyle::head));
    auto* group = new Group(this);
    add(group);
    return group;
}

void Page::footer(const std::string& text) { add(label(text, TextStyle::caption)); }

void Page::add(QWidget* widget) { column_->addWidget(widget); }

void Page::addStretch() { column_->addStretch(1); }

namespace {

QButtonGroup* group(QWidget* owner, std::function<void(int)> choose) {
    auto* buttons = new QButtonGroup(owner);
    buttons->setExclusive(true);
    QObject::connect(buttons, &QButtonGroup::idClicked, owner, [choose](int index) { choose(index); });
    return buttons;
}

}  // namespace

QWidget* segmented(const std::string& name, const std::vector<Choice>& choices, std::function<void(int)> choose) {
    auto* strip = new QWidget;
    strip->setObjectName(qt(name));
    auto* line = new QHBoxLayout(strip);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(0);
    QButtonGroup* buttons = group(strip, std::move(choose));
    for (std::size_t index = 0; index < choices.size(); ++index) {
        auto* segment = new QPushButton(qt(choices[index].title), strip);
        segment->setCheckable(true);
        segment->setChecked(choices[index].selected);
        segment->setProperty("segment", index == 0 ? "first" : index + 1 == choices.size() ? "last" : "middle");
        buttons->addButton(segment, static_cast<int>(index));
        line->addWidget(segment);
    }
    return strip;
}

QWidget* radios(const std::string& name, const std::vector<Choice>& choices, std::function<void(int)> choose) {
    auto* column = new QWidget;
    column->setObjectName(qt(name));
    auto* lines = new QVBoxLayout(column);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(4);
    QButtonGroup* buttons = group(column, std::move(choose));
    for (std::size_t index = 0; index < choices.size(); ++index) {
        auto* radio = new QRadioButton(qt(choices[index].title), column);
        radio->setChecked(choices[index].selected);
        buttons->addButton(radio, static_cast<int>(index));
        lines->addWidget(radio);
    }
    return column;
}

QComboBox* menu(const std::string& name, const std::vector<Choice>& choices, std::function<void(int)> choose) {
    auto* box = new QComboBox;
    box->setObjectName(qt(name));
    for (const Choice& choice : choices) {
        box->addItem(qt(choice.title));
        if (choice.selected) box->setCurrentIndex(box->count() - 1);
    }
    QObject::connect(box, &QComboBox::activated, box, [choose](int index) { choose(index); });
    return box;
}

QSpinBox* stepper(const std::string& name, std::int64_t value, std::int64_t minimum, std::int64_t maximum,
                  const std::string& suffix, std::function<void(std::int64_t)> step) {
    auto* box = new QSpinBox;
    box->setObjectName(qt(name));
    box->setRange(static_cast<int>(minimum), static_cast<int>(maximum));
    box->setValue(static_cast<int>(value));
    box->setSuffix(qt(suffix));
    box->setKeyboardTracking(false);
    box->setAlignment(Qt::AlignRight);
    box->setMinimumWidth(120);
    QObject::connect(box, &QSpinBox::valueChanged, box, [step](int chosen) { step(chosen); });
    return box;
}

QWidget* button(const std::string& title, ButtonRole role, std::function<void()> press) {
    auto* pushed = new QPushButton(qt(title));
    pushed->setObjectName(qt(title));
    switch (role) {
        case ButtonRole::normal: break;
        case ButtonRole::prominent: pushed->setProperty("role", "prominent"); break;
        case ButtonRole::destructive: pushed->setProperty("role", "destructive"); break;
    }
    QObject::connect(pushed, &QPushButton::clicked, pushed, [press] { press(); });
    return pushed;
}

void refreshLater(QObject* owner, bool& pending, std::function<void()> refresh) {
    if (pending) return;
    pending = true;
    QMetaObject::invokeMethod(
        owner,
        [&pending, refresh = std::move(refresh)] {
            pending = false;
            refresh();
        },
        Qt::QueuedConnection);
}

}  // namespace ashview::Form
