#include "Ashview/Shell/SettingsWindow.h"

#include "Platform/AppServices.h"

namespace ashview {

SettingsWindow::SettingsWindow(SettingsModel::Services services, Application& application, WindowViews& views)
    : model_(services), controller_(services.controller), application_(application), views_(views) {
    controller_.onRulesChange = [this] { model_.reload(); };
    controller_.onRead = [this] { model_.refreshStatistics(); };
    activationWatch_ = application_.observeDidBecomeActive([this] { model_.refreshStatistics(); });
}

SettingsWindow::~SettingsWindow() {
    controller_.onRulesChange = nullptr;
    controller_.onRead = nullptr;
}

void SettingsWindow::show(const std::optional<SiteRule>& site) {
    model_.reload();
    if (site) model_.setPage(SettingsModel::Page::forSite(site->id));
    if (!view_) {
        view_ = views_.settingsView(model_);
        titleWatch_ = model_.changed.connect([this] {
            if (view_) view_->setTitle(model_.title());
        });
    }
    view_->setTitle(model_.title());
    application_.activate();
    view_->present();
}

void SettingsWindow::showStats() {
    model_.setPage(SettingsModel::Page::stats());
    show(std::nullopt);
}

}  // namespace ashview
