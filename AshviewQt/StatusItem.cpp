#include "AshviewQt/StatusItem.h"

#include "AshviewQt/StatusGlyph.h"

namespace ashview {

StatusItem::StatusItem(Provider provider, SystemActions actions)
    : provider_(std::move(provider)),
      actions_(std::move(actions)),
      icon_(StatusGlyph::icon()),
      menu_(std::make_unique<QMenu>()) {
    connect(menu_.get(), &QMenu::aboutToShow, this, [this] { rebuild(); });
}

StatusItem::~StatusItem() = default;

bool StatusItem::showInTray() {
    if (!QSystemTrayIcon::isSystemTrayAvailable()) return false;
    if (!tray_) {
        tray_ = std::make_unique<QSystemTrayIcon>(icon_);
        tray_->setToolTip("Drabwise");
        tray_->setContextMenu(menu_.get());
    }
    tray_->show();
    return true;
}

void StatusItem::rebuild() { MenuView::fill(*menu_, provider_ ? provider_() : std::vector<MenuItem>{}, actions_); }

}  // namespace ashview
