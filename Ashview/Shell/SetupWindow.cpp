#include "Ashview/Shell/SetupWindow.h"

namespace ashview {

SetupWindow::SetupWindow(Services services, std::vector<SetupModel::CatalogEntry> catalog)
    : services_(services), model_(services.model, std::move(catalog)) {}

SetupWindow::~SetupWindow() {
    if (timer_) timer_->cancel();
}

void SetupWindow::show() {
    model_.refresh();
    if (!view_) {
        view_ = services_.views.setupView(model_, [this] { windowWillClose(); });
        view_->setTitle(SetupModel::windowTitle);
    }
    if (!timer_) {
        timer_ = services_.model.loop.repeatEvery(refreshInterval, [this] {
            // Settings changed elsewhere and browsers opened meanwhile show
            // up by themselves, but a hidden window costs no query.
            if (view_->isVisible()) model_.refresh();
        });
    }
    services_.application.activate();
    view_->present();
}

bool SetupWindow::showAtLaunchIfNeeded() {
    model_.refresh();
    if (services_.defaults.boolValue(seenKey) && !model_.lacksBrowserAccess()) return false;
    show();
    return true;
}

void SetupWindow::done() {
    if (view_) view_->close();
}

void SetupWindow::windowWillClose() {
    if (timer_) timer_->cancel();
    timer_.reset();
    services_.defaults.setBool(seenKey, true);
}

}  // namespace ashview
