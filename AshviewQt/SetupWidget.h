// The setup window's content over the setup model: the introduction, a group
// of browser rows (name, state, the one button that can change it), the
// Accessibility row, their notes, and "Done", which closes the window as its
// close button does. Redrawn from the model after each of its changes; each
// button runs its row's action. Main thread only; the model must outlive the
// widget.
#pragma once

#include "Ashview/Shell/SetupModel.h"
#include "Ashview/Shell/Signal.h"

#include <QWidget>

class QVBoxLayout;

namespace ashview {

class SetupWidget final : public QWidget {
public:
    explicit SetupWidget(SetupModel& model, QWidget* parent = nullptr);

    /// Shows the model as it stands now, at once.
    void refresh();

private:
    SetupModel& model_;
    QVBoxLayout* browsers_;
    QVBoxLayout* accessibility_;
    Signal::Connection watch_;
    bool refreshPending_ = false;
};

}  // namespace ashview
