// The simulated desktop drawn in a window (the Linux program's --gui): the
// primary display with its windows as framed rectangles, back to front, each
// showing its application and address, and this program's overlays turning
// what lies beneath them gray, live, as the window server would. A person
// can click a window to bring it front, drag it by its title bar, and click
// its address to type a new one. It only draws the desktop and carries out
// the person's moves on it; the program reacts as it would on a Mac.
// Linux only; main thread only; the desktop must outlive the view.
#pragma once

#include "AshviewCore/Foundation/Rect.h"

#include <QLineEdit>
#include <QWidget>

#include <cstdint>
#include <optional>

namespace ashview {

class SimApplications;
class SimDesktop;

class DesktopView final : public QWidget {
public:
    explicit DesktopView(QWidget* parent = nullptr);

    /// The desktop to draw; nothing is drawn before.
    void setDesktop(SimDesktop* desktop, SimApplications* apps);

    /// Points of the desktop per point of the view.
    double scale() const;
    /// The desktop point (Quartz) under a point of the view.
    Point desktopPoint(QPointF at) const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    struct Drag {
        std::int64_t window;
        Point grabbed;
        Rect bounds;
    };
    QRectF onView(const Rect& quartz) const;
    void editAddress(std::int64_t window);

    SimDesktop* desktop_ = nullptr;
    SimApplications* apps_ = nullptr;
    std::optional<Drag> drag_;
    QLineEdit* address_;
    std::int64_t editing_ = 0;
};

}  // namespace ashview
