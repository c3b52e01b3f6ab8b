// The owner of the About window: the page, read once from the bundle's
// version, and a view made at the first showing and kept when closed.
// Main thread only; borrowed services must outlive it.
#pragma once

#include "Ashview/Shell/AboutPage.h"
#include "Ashview/Shell/WindowView.h"

#include <memory>

namespace ashview {

class Application;

class AboutWindow final {
public:
    AboutWindow(Application& application, WindowViews& views);
    AboutWindow(const AboutWindow&) = delete;
    AboutWindow& operator=(const AboutWindow&) = delete;

    /// Makes the window at the first call, activates the program and brings
    /// the window front.
    void show();

    const AboutPage& page() const { return page_; }
    /// Absent until the first showing.
    WindowView* view() const { return view_.get(); }

private:
    Application& application_;
    WindowViews& views_;
    AboutPage page_;
    std::unique_ptr<WindowView> view_;
};

}  // namespace ashview
