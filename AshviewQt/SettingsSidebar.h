// The settings window's sidebar: the list of pages ("Last 7 days", a section
// of the listed sites and apps, each with its icon, display name and status
// line, "Defaults for new sites", "Days off") bound to the model's page, and
// below it the add area. Redrawn from the model after every change; the add
// box keeps its text and focus while the user types. Main thread only.
#pragma once

#include "Ashview/Shell/SettingsContent.h"
#include "Ashview/Shell/SettingsModel.h"
#include "AshviewQt/AppGlyph.h"
#include "AshviewQt/SettingsPages.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QWidget>

namespace ashview {

class SettingsSidebar final : public QWidget {
public:
    /// Item data: the page a row selects (empty for the section head), and
    /// the row's status line.
    static constexpr int pageRole = Qt::UserRole + 1;
    static constexpr int statusRole = Qt::UserRole + 2;

    /// `iconImage` draws an app's own icon; without it, or when it gives
    /// nothing, the row shows a drawn badge.
    SettingsSidebar(SettingsModel& model, SettingsPages::Typing typing, IconImage iconImage = {},
                    QWidget* parent = nullptr);

    /// Shows the model as it stands.
    void update();
    QListWidget& list() { return *list_; }

private:
    void fillList();
    void fillAddArea();
    QPixmap icon(const SettingsContent::SidebarRow& row);

    SettingsModel& model_;
    SettingsPages::Typing typing_;
    IconImage iconImage_;
    QListWidget* list_;
    QPushButton* addFrontSite_;
    QPushButton* addApp_;
    QPushButton* chooseApp_;
    QLineEdit* newHost_;
    QLabel* message_;
};

}  // namespace ashview
