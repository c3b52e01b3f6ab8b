// The settings window: the sidebar on the left, the open page on the right,
// and the title that follows the page. It shows the model after each of its
// changes, redrawn once the change is complete (from the event loop), or at
// the next showing while it is closed, and forwards every action to the
// model. Made once, at the first showing, and
// kept when closed; main thread only.
#pragma once

#include "Ashview/Shell/SettingsModel.h"
#include "Ashview/Shell/Signal.h"
#include "AshviewQt/AppGlyph.h"

#include <QMessageBox>
#include <QPointer>
#include <QScrollArea>
#include <QWidget>

namespace ashview {

class SettingsSidebar;

class SettingsWidget final : public QWidget {
public:
    /// The content size, in points.
    static constexpr int width = 820;
    static constexpr int height = 640;

    /// `model` must outlive the window; `iconImage` draws apps' own icons.
    explicit SettingsWidget(SettingsModel& model, IconImage iconImage = {}, QWidget* parent = nullptr);

    /// Shows the model as it stands now, at once.
    void refresh();
    SettingsSidebar& sidebar() { return *sidebar_; }
    /// The open page's widget.
    QWidget* page() const { return detail_->widget(); }

protected:
    void showEvent(QShowEvent* event) override;

private:
    void scheduleRefresh();
    void rebuildPage();
    void typing(const std::function<void()>& change);

    SettingsModel& model_;
    SettingsSidebar* sidebar_;
    QScrollArea* detail_;
    Signal::Connection watch_;
    QPointer<QMessageBox> confirmation_;
    bool refreshPending_ = false;
    bool keepPage_ = false;
    /// The model changed while the window was closed.
    bool stale_ = false;
};

}  // namespace ashview
