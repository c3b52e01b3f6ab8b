#include "AshviewQt/MainMenu.h"

#include <QAction>
#include <QApplication>
#include <QKeySequence>
#include <QMenu>
#include <QMetaObject>
#include <QWidget>

namespace ashview {

namespace {

QAction* add(QMenu& menu, const QString& title, const QKeySequence& keys, std::function<void()> run,
             QAction::MenuRole role = QAction::NoRole) {
    QAction* action = menu.addAction(title);
    action->setShortcut(keys);
    action->setMenuRole(role);
    QObject::connect(action, &QAction::triggered, [run = std::move(run)] {
        if (run) run();
    });
    return action;
}

/// Calls the editing slot `name` ("copy", "undo"…) of the focused widget, when
/// it has one.
std::function<void()> onFocus(const char* name) {
    return [name] {
        if (QWidget* focus = QApplication::focusWidget()) QMetaObject::invokeMethod(focus, name);
    };
}

}  // namespace

std::unique_ptr<QMenuBar> makeMainMenu(MainMenuActions actions) {
    auto bar = std::make_unique<QMenuBar>(nullptr);
    QMenu* application = bar->addMenu(QString());
    add(*application, "About Drabwise", {}, actions.showAbout, QAction::AboutRole);
    add(*application, "Check for Updates…", {}, actions.checkForUpdates, QAction::ApplicationSpecificRole);
    add(*application, "Settings…", QKeySequence(Qt::CTRL | Qt::Key_Comma), actions.showSettings,
        QAction::PreferencesRole);
    add(*application, "Close Window", QKeySequence(Qt::CTRL | Qt::Key_W), [] {
        if (QWidget* window = QApplication::activeWindow()) window->close();
    });
    add(*application, "Quit Drabwise", QKeySequence(Qt::CTRL | Qt::Key_Q), [] { QCoreApplication::quit(); },
        QAction::QuitRole);

    QMenu* edit = bar->addMenu("Edit");
    add(*edit, "Undo", QKeySequence(Qt::CTRL | Qt::Key_Z), onFocus("undo"));
    add(*edit, "Redo", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), onFocus("redo"));
    add(*edit, "Cut", QKeySequence(Qt::CTRL | Qt::Key_X), onFocus("cut"));
    add(*edit, "Copy", QKeySequence(Qt::CTRL | Qt::Key_C), onFocus("copy"));
    add(*edit, "Paste", QKeySequence(Qt::CTRL | Qt::Key_V), onFocus("paste"));
    add(*edit, "Select All", QKeySequence(Qt::CTRL | Qt::Key_A), onFocus("selectAll"));
    return bar;
}

}  // namespace ashview
