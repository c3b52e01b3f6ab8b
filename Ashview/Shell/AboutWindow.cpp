#include "Ashview/Shell/AboutWindow.h"

#include "Platform/AppServices.h"

namespace ashview {

AboutWindow::AboutWindow(Application& application, WindowViews& views)
    : application_(application),
      views_(views),
      page_(AboutPage::make(application.infoDictionaryText("CFBundleShortVersionString"),
                            application.infoDictionaryText("CFBundleVersion"))) {}

void AboutWindow::show() {
    if (!view_) {
        view_ = views_.aboutView(page_);
        view_->setTitle(AboutPage::windowTitle);
    }
    application_.activate();
    view_->present();
}

}  // namespace ashview
