#include "AshviewQt/SettingsWidget.h"

#include "AshviewQt/SettingsPages.h"
#include "AshviewQt/SettingsSidebar.h"

#include <QHBoxLayout>
#include <QScrollBar>

namespace ashview {

SettingsWidget::SettingsWidget(SettingsModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      sidebar_(new SettingsSidebar(model, [this](const std::function<void()>& change) { typing(change); }, this)),
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
    auto* line = new QFrame(this);
    line->setFixedWidth(1);
    line->setStyleSheet("background: #d1d1d6; border: none;");
    columns->addWidget(line);
    columns->addWidget(detail_, 1);
    watch_ = model_.changed.connect([this] { scheduleRefresh(); });
    refresh();
}

void SettingsWidget::scheduleRefresh() {
    if (refreshPending_) return;
    refreshPending_ = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            refreshPending_ = false;
            refresh();
        },
        Qt::QueuedConnection);
}

void SettingsWidget::refresh() {
    setWindowTitle(QString::fromStdString(model_.title()));
    sidebar_->update();
    if (keepPage_)
        keepPage_ = false;
    else
        rebuildPage();
}

void SettingsWidget::typing(const std::function<void()>& change) {
    keepPage_ = true;
    change();
}

void SettingsWidget::rebuildPage() {
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
    QWidget* page = SettingsPages::make(model_, [this](const std::function<void()>& change) { typing(change); });
    detail_->setWidget(page);
    page->adjustSize();
    detail_->verticalScrollBar()->setValue(scrolled);
    if (!focused.isEmpty()) {
        if (auto* again = page->findChild<QWidget*>(focused)) again->setFocus();
    }
}

}  // namespace ashview
