#include "AshviewQt/SettingsWidget.h"

#include "AshviewQt/Form.h"
#include "AshviewQt/SettingsPages.h"
#include "AshviewQt/SettingsSidebar.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollBar>

namespace ashview {

namespace {

/// What a control shows besides its label's words: its kind, name, words,
/// state and value.
QString shape(QWidget* widget) {
    QString text = QString(widget->metaObject()->className()) + "|" + widget->objectName() + "|" +
                   (widget->isEnabled() ? "on" : "off") + "|" + (widget->isVisibleTo(widget->window()) ? "shown" : "");
    if (auto* button = qobject_cast<QAbstractButton*>(widget))
        text += "|" + button->text() + "|" + (button->isChecked() ? "checked" : "");
    if (auto* menu = qobject_cast<QComboBox*>(widget)) {
        for (int index = 0; index < menu->count(); ++index) text += "|" + menu->itemText(index);
        text += "|" + QString::number(menu->currentIndex());
    }
    if (auto* spin = qobject_cast<QAbstractSpinBox*>(widget)) text += "|" + spin->text();
    return text;
}

/// Brings the words of `shown` up to those of `built` when the two pages
/// differ in nothing else, so that a page whose state line moved on keeps
/// its focus, open menus and typed text. False when they differ in more.
bool takeWords(QWidget& shown, QWidget& built) {
    const QList<QWidget*> old = shown.findChildren<QWidget*>();
    const QList<QWidget*> fresh = built.findChildren<QWidget*>();
    if (old.size() != fresh.size()) return false;
    for (qsizetype index = 0; index < old.size(); ++index) {
        const bool bothLabels = qobject_cast<QLabel*>(old[index]) && qobject_cast<QLabel*>(fresh[index]);
        if (!bothLabels && shape(old[index]) != shape(fresh[index])) return false;
    }
    for (qsizetype index = 0; index < old.size(); ++index) {
        if (auto* label = qobject_cast<QLabel*>(old[index])) {
            const QString words = static_cast<QLabel*>(fresh[index])->text();
            if (label->text() != words) label->setText(words);
        }
    }
    return true;
}

}  // namespace

SettingsWidget::SettingsWidget(SettingsModel& model, IconImage iconImage, QWidget* parent)
    : QWidget(parent),
      model_(model),
      sidebar_(new SettingsSidebar(
          model, [this](const std::function<void()>& change) { typing(change); }, std::move(iconImage), this)),
      detail_(new QScrollArea(this)) {
    resize(width, height);
    sidebar_->setFixedWidth(250);
    detail_->setWidgetResizable(true);
    detail_->setFrameShape(QFrame::NoFrame);
    detail_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* columns = new QHBoxLayout(this);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->setSpacing(0);
    columns->addWidget(sidebar_);
    QWidget* line = Form::hairline(this);
    line->setMinimumHeight(0);
    line->setMaximumHeight(QWIDGETSIZE_MAX);
    line->setFixedWidth(1);
    columns->addWidget(line);
    columns->addWidget(detail_, 1);
    watch_ = model_.changed.connect([this] { scheduleRefresh(); });
    refresh();
}

void SettingsWidget::scheduleRefresh() {
    if (!isVisible()) {
        stale_ = true;
        return;
    }
    Form::refreshLater(this, refreshPending_, [this] { refresh(); });
}

void SettingsWidget::showEvent(QShowEvent* event) {
    if (stale_) refresh();
    QWidget::showEvent(event);
}

void SettingsWidget::refresh() {
    stale_ = false;
    setWindowTitle(QString::fromStdString(model_.title()));
    sidebar_->update();
    if (keepPage_)
        keepPage_ = false;
    else
        rebuildPage();
    // The confirmation stands over the window, through every redraw of the
    // page beneath it.
    if (model_.showsClearConfirmation() && !confirmation_) confirmation_ = SettingsPages::confirmClear(model_, this);
    if (!model_.showsClearConfirmation() && confirmation_) confirmation_->close();
}

void SettingsWidget::typing(const std::function<void()>& change) {
    keepPage_ = true;
    change();
}

void SettingsWidget::rebuildPage() {
    QWidget* page = SettingsPages::make(model_, [this](const std::function<void()>& change) { typing(change); });
    if (QWidget* old = detail_->widget(); old && takeWords(*old, *page)) {
        delete page;
        return;
    }
    // The control that had the focus, and how far the page was scrolled, are
    // found again on the new page.
    QString focused;
    if (QWidget* old = detail_->widget(); old && old->isAncestorOf(focusWidget())) {
        for (QWidget* at = focusWidget(); at && at != old && focused.isEmpty(); at = at->parentWidget())
            focused = at->objectName();
    }
    const int scrolled = detail_->verticalScrollBar()->value();
    if (QWidget* old = detail_->takeWidget()) {
        old->hide();
        old->deleteLater();
    }
    detail_->setWidget(page);
    page->adjustSize();
    detail_->verticalScrollBar()->setValue(scrolled);
    if (!focused.isEmpty()) {
        if (auto* again = page->findChild<QWidget*>(focused)) again->setFocus();
    }
}

}  // namespace ashview
