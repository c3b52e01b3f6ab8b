#include "AshviewQt/MenuView.h"

#include <QCoreApplication>
#include <QMetaObject>

namespace ashview::MenuView {

namespace {

/// Runs `work` from the event loop, after the menu that chose it has closed
/// and whatever rebuilds it next can no longer pull the item from under it.
void later(std::function<void()> work) {
    if (!work) return;
    QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(work), Qt::QueuedConnection);
}

std::function<void()> systemWork(SystemAction action, const SystemActions& actions) {
    switch (action) {
        case SystemAction::checkForUpdates:
            return actions.checkForUpdates;
        case SystemAction::quit:
            if (actions.quit) return actions.quit;
            return [] { QCoreApplication::quit(); };
    }
    return {};
}

}  // namespace

QKeySequence keySequence(const std::string& keyEquivalent) {
    if (keyEquivalent.empty()) return {};
    QString key = QString::fromStdString(keyEquivalent);
    QString modifiers = "Ctrl+";
    if (key.size() == 1 && key.at(0).isUpper()) modifiers += "Shift+";
    return QKeySequence(modifiers + key.toUpper(), QKeySequence::PortableText);
}

QString title(const std::string& text) { return QString::fromStdString(text).replace('&', "&&"); }

void fill(QMenu& menu, const std::vector<MenuItem>& items, const SystemActions& actions) {
    menu.clear();
    qDeleteAll(menu.findChildren<QMenu*>(Qt::FindDirectChildrenOnly));
    for (const MenuItem& item : items) {
        if (item.isSeparator) {
            menu.addSeparator();
            continue;
        }
        if (!item.submenu.empty()) {
            QMenu* submenu = new QMenu(title(item.title), &menu);
            fill(*submenu, item.submenu, actions);
            menu.addMenu(submenu)->setEnabled(item.enabled);
            continue;
        }
        QAction* action = menu.addAction(title(item.title));
        action->setEnabled(item.enabled);
        action->setCheckable(item.checked);
        action->setChecked(item.checked);
        if (!item.keyEquivalent.empty()) {
            action->setShortcut(keySequence(item.keyEquivalent));
            action->setShortcutVisibleInContextMenu(true);
        }
        std::function<void()> work = item.systemAction ? systemWork(*item.systemAction, actions) : item.handler;
        QObject::connect(action, &QAction::triggered, action, [work] { later(work); });
    }
}

}  // namespace ashview::MenuView
