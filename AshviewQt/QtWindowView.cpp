#include "AshviewQt/QtWindowView.h"

#include <QEvent>
#include <QWindow>

namespace ashview {

class QtWindowView::CloseWatch final : public QObject {
public:
    explicit CloseWatch(std::function<void()> onClose) : onClose_(std::move(onClose)) {}
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Close && onClose_) onClose_();
        return QObject::eventFilter(watched, event);
    }

private:
    std::function<void()> onClose_;
};

QtWindowView::QtWindowView(std::unique_ptr<QWidget> widget, std::function<void()> onClose)
    : widget_(std::move(widget)), watch_(std::make_unique<CloseWatch>(std::move(onClose))) {
    widget_->installEventFilter(watch_.get());
}

QtWindowView::~QtWindowView() { widget_->removeEventFilter(watch_.get()); }

void QtWindowView::setTitle(const std::string& title) { widget_->setWindowTitle(QString::fromStdString(title)); }

void QtWindowView::present() {
    if (widget_->isMinimized()) widget_->showNormal();
    widget_->show();
    widget_->raise();
    widget_->activateWindow();
}

bool QtWindowView::isVisible() const {
    // Exposure follows the system's occlusion: a window covered whole or on
    // another Space is shown but not exposed.
    const QWindow* window = widget_->windowHandle();
    return widget_->isVisible() && !widget_->isMinimized() && (!window || window->isExposed());
}

void QtWindowView::close() { widget_->close(); }

}  // namespace ashview
