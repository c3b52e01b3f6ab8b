// The Linux program's graphical face: a strip of menu bar across the top,
// with the program's status item (its glyph opening the real menu) and the
// virtual time, above the simulated desktop. Linux only; main thread only;
// the status item and the desktop must outlive the screen.
#pragma once

#include "AshviewQt/DesktopView.h"

#include <QLabel>
#include <QToolButton>
#include <QWidget>

namespace ashview {

class StatusItem;

class SimulatedScreen final : public QWidget {
public:
    explicit SimulatedScreen(StatusItem& item, QWidget* parent = nullptr);

    /// Shows `desktop` and its time as they stand now.
    void showDesktop(SimDesktop* desktop, SimApplications* apps);
    DesktopView& desktop() { return *desktop_; }
    /// The status item's place in the strip.
    QToolButton& statusButton() { return *status_; }

private:
    QToolButton* status_;
    QLabel* time_;
    DesktopView* desktop_;
};

}  // namespace ashview
