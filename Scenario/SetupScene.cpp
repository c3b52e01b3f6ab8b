#include "Scenario/SetupScene.h"

#include "Ashview/App/AppDelegate.h"
#include "Ashview/Shell/AboutPage.h"
#include "Ashview/Shell/SetupWindow.h"
#include "AshviewCore/Reading/BrowserCatalog.h"
#include "Platform/Sim/SimApplications.h"
#include "Platform/Sim/SimClock.h"

#include <ostream>

namespace ashview {

namespace {

std::string browserName(const std::string& bundleID) {
    return bundleID.empty() ? std::string() : BrowserCatalog::browser(bundleID)->name;
}

bool isOpen(const SetupWindow& window) { return window.view() && window.view()->isVisible(); }

}  // namespace

void SetupScene::run(const ScenarioCommand& command) {
    using Kind = ScenarioCommand::Kind;
    switch (command.kind) {
        case Kind::install:
            apps_.registerBundle(command.program, "/Applications/" + browserName(command.program) + ".app");
            break;
        case Kind::uninstall:
            apps_.removeBundle(command.program);
            break;
        case Kind::permission:
            apps_.setPermission(command.program, command.name == "allowed"  ? SimPermission::allowed
                                                 : command.name == "denied" ? SimPermission::denied
                                                                            : SimPermission::notDecided);
            break;
        case Kind::accessibility:
            apps_.setTrusted(command.name == "allowed");
            break;
        case Kind::setup: {
            SetupWindow& window = delegate_->setupWindow();
            if (!isOpen(window)) out_ << "  the setup window opens\n";
            window.show();
            printSetup();
            break;
        }
        case Kind::setupPress:
            press(command);
            break;
        case Kind::setupClose:
            openWindow().done();
            out_ << "  the setup window closes\n";
            break;
        case Kind::answerPrompt:
            answer(command);
            break;
        case Kind::about:
            printAbout();
            break;
        default:
            break;
    }
}

SetupWindow& SetupScene::openWindow() {
    SetupWindow& window = delegate_->setupWindow();
    if (!isOpen(window)) throw SceneFailure{"the setup window is not open"};
    return window;
}

void SetupScene::press(const ScenarioCommand& command) {
    SetupModel& model = openWindow().model();
    std::string name = browserName(command.program);
    std::optional<SetupModel::Row> row;
    if (name.empty()) row = model.accessibilityRow();
    for (SetupModel::Row& each : model.browserRows())
        if (!name.empty() && each.name == name) row = std::move(each);
    if (!row) throw SceneFailure{"the setup window has no row for " + name};
    if (!row->button) throw SceneFailure{"the row of " + (name.empty() ? "Accessibility" : name) + " has no button"};

    std::size_t opened = apps_.openedURLs().size();
    std::size_t prompts = apps_.trustPrompts();
    bool asking = model.asking().contains(command.program);
    row->action();
    if (apps_.trustPrompts() > prompts) out_ << "  the system asks to allow Accessibility\n";
    if (!asking && model.asking().contains(command.program))
        out_ << "  the system asks to let Drabwise control " << name << "\n";
    for (std::size_t i = opened; i < apps_.openedURLs().size(); ++i)
        out_ << "  opened " << apps_.openedURLs()[i] << "\n";
    printSetup();
}

void SetupScene::answer(const ScenarioCommand& command) {
    // While the program runs, its window knows which prompts are open; after
    // it has quit, a prompt may still stand on the desktop.
    bool open = delegate_ ? delegate_->setupWindow().model().asking().contains(command.program)
                          : clock_.backgroundWorkWaiting() > 0;
    if (!open) throw SceneFailure{"no prompt for " + browserName(command.program) + " is open"};
    apps_.setPermission(command.program, command.name == "allow" ? SimPermission::allowed : SimPermission::denied);
    clock_.finishBackgroundWork();
    if (delegate_ && isOpen(delegate_->setupWindow())) printSetup();
}

void SetupScene::printSetup() {
    SetupModel& model = delegate_->setupWindow().model();
    auto line = [this](const SetupModel::Row& row) {
        out_ << "      " << (row.name.empty() ? "" : row.name + ": ") << row.status
             << (row.button ? " [" + *row.button + "]" : "") << "\n";
    };
    out_ << "  " << SetupModel::windowTitle << "\n    " << SetupModel::browserAccessTitle << "\n";
    for (const SetupModel::Row& row : model.browserRows()) line(row);
    out_ << "    " << SetupModel::accessibilityTitle << "\n";
    line(model.accessibilityRow());
}

void SetupScene::printAbout() {
    // Opened as the menu's "About Drabwise" opens it; the Linux program has
    // no bundle, so no version of its own.
    if (!delegate_) throw SceneFailure{"the About window opens from the running program"};
    delegate_->aboutWindow().show();
    const AboutPage& page = delegate_->aboutWindow().page();
    out_ << "  " << AboutPage::windowTitle << "\n    " << AboutPage::name << "\n    " << AboutPage::tagline << "\n    "
         << page.version << "\n    " << page.opening << "\n";
    for (const AboutPage::Section& section : page.sections) {
        out_ << "    " << section.head << "\n";
        for (const AboutPage::Paragraph& paragraph : section.paragraphs) {
            out_ << "      " << paragraph.text << "\n";
            for (const AboutPage::Source& source : paragraph.cites)
                out_ << "        cites " << source.id << " <" << source.url << ">\n";
        }
        for (const AboutPage::Source& source : section.sources)
            out_ << "      " << source.id << " <" << source.url << ">\n        " << source.note << "\n";
    }
}

}  // namespace ashview
