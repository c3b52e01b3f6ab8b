// A top-level Qt widget as the shell's `WindowView`: title, bringing it
// front, whether it can be seen, closing, and the owner's `onClose` at every
// close (the close button or `close()`). Owns the widget. Main thread only.
#pragma once

#include "Ashview/Shell/WindowView.h"

#include <QWidget>

#include <functional>
#include <memory>

namespace ashview {

class QtWindowView final : public WindowView {
public:
    explicit QtWindowView(std::unique_ptr<QWidget> widget, std::function<void()> onClose = {});
    ~QtWindowView() override;

    void setTitle(const std::string& title) override;
    void present() override;
    bool isVisible() const override;
    void close() override;

    QWidget& widget() { return *widget_; }

private:
    class CloseWatch;
    std::unique_ptr<QWidget> widget_;
    std::unique_ptr<CloseWatch> watch_;
};

}  // namespace ashview
