#include "AshviewQt/SimulatedScreen.h"

#include "Ashview/Controller/Log.h"
#include "AshviewQt/StatusItem.h"
#include "AshviewQt/Theme.h"
#include "Platform/Sim/SimDesktop.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace ashview {

SimulatedScreen::SimulatedScreen(StatusItem& item, QWidget* parent)
    : QWidget(parent), status_(new QToolButton), time_(new QLabel), desktop_(new DesktopView) {
    setWindowTitle("Drabwise on a simulated desktop");
    auto* strip = new QWidget;
    strip->setAutoFillBackground(true);
    QPalette shade = strip->palette();
    shade.setColor(QPalette::Window, QColor(0xf2, 0xf2, 0xf4));
    strip->setPalette(shade);
    strip->setFixedHeight(26);
    auto* line = new QHBoxLayout(strip);
    line->setContentsMargins(12, 0, 12, 0);
    auto* title = new QLabel("Simulated desktop");
    title->setFont(Theme::font(13, QFont::DemiBold));
    line->addWidget(title);
    line->addStretch(1);
    status_->setObjectName("statusItem");
    status_->setIcon(item.icon());
    status_->setToolTip("Drabwise");
    status_->setAutoRaise(true);
    status_->setPopupMode(QToolButton::InstantPopup);
    status_->setMenu(&item.menu());
    status_->setStyleSheet("QToolButton::menu-indicator { image: none; }");
    line->addWidget(status_);
    time_->setFont(Theme::evenDigitFont(13));
    line->addWidget(time_);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(strip);
    column->addWidget(desktop_, 1);
}

void SimulatedScreen::showDesktop(SimDesktop* desktop, SimApplications* apps) {
    if (desktop) {
        desktop_->setDesktop(desktop, apps);
        time_->setText(QString::fromStdString(Log::clockText(desktop->clock().now(), desktop->clock().calendar())));
    }
    desktop_->update();
}

}  // namespace ashview
