// The system's file chooser, run modally.
#pragma once

#include <optional>
#include <string>

namespace ashview {

struct OpenPanelSettings final {
    /// The folder the panel opens in.
    std::string directory;
    /// Only application bundles may be chosen.
    bool applicationsOnly = true;
    bool canChooseDirectories = false;
    bool allowsMultipleSelection = false;
    std::string prompt;
    std::string message;

    friend bool operator==(const OpenPanelSettings&, const OpenPanelSettings&) = default;
};

struct OpenPanelResult final {
    /// 1 for OK; anything else means the user cancelled.
    long response = 0;
    /// The chosen item's path, when there is one.
    std::optional<std::string> path;

    friend bool operator==(const OpenPanelResult&, const OpenPanelResult&) = default;
};

class OpenPanel {
public:
    OpenPanel() = default;
    OpenPanel(const OpenPanel&) = delete;
    OpenPanel& operator=(const OpenPanel&) = delete;
    virtual ~OpenPanel() = default;

    /// Shows the panel with `settings` and waits for the user.
    virtual OpenPanelResult runModal(const OpenPanelSettings& settings) = 0;
};

}  // namespace ashview
