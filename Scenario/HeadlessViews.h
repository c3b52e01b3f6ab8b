// Windows for a program without a display: each view only remembers its
// title, whether it is shown and how often it was brought front, so that a
// scenario can print what a person would see from the models themselves,
// and tests can check what the owners did to their windows.
#pragma once

#include "Ashview/Shell/WindowView.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace ashview {

class HeadlessView final : public WindowView {
public:
    explicit HeadlessView(std::function<void()> onClose = {}) : onClose_(std::move(onClose)) {}

    void setTitle(const std::string& title) override { this->title = title; }
    void present() override {
        isShown = true;
        ++presentations;
    }
    bool isVisible() const override { return isShown && !isCovered; }
    void close() override {
        if (!isShown) return;
        isShown = false;
        if (onClose_) onClose_();
    }

    std::string title;
    bool isShown = false;
    /// Another window covers this one whole, or it is on another Space.
    bool isCovered = false;
    int presentations = 0;

private:
    std::function<void()> onClose_;
};

/// Makes headless views and keeps a pointer to each, for looking.
class HeadlessViews final : public WindowViews {
public:
    std::unique_ptr<WindowView> settingsView(SettingsModel&) override { return make(settings, {}); }
    std::unique_ptr<WindowView> setupView(SetupModel&, std::function<void()> onClose) override {
        return make(setup, std::move(onClose));
    }
    std::unique_ptr<WindowView> aboutView(const AboutPage&) override { return make(about, {}); }

    HeadlessView* settings = nullptr;
    HeadlessView* setup = nullptr;
    HeadlessView* about = nullptr;

private:
    static std::unique_ptr<WindowView> make(HeadlessView*& slot, std::function<void()> onClose) {
        auto view = std::make_unique<HeadlessView>(std::move(onClose));
        slot = view.get();
        return view;
    }
};

}  // namespace ashview
