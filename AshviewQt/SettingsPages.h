// The detail pages of the settings window, each built anew from the model
// after every change: the problem text that replaces every editor, the
// empty-list screen, a site's editor, the defaults for new sites, the days
// off and the statistics. A page reads the model, shows it and forwards each
// action to one command; it keeps no copy of the data. Main thread only.
#pragma once

#include "Ashview/Shell/SettingsModel.h"

#include <functional>

class QMessageBox;
class QWidget;

namespace ashview::SettingsPages {

/// Runs a change of typed text without rebuilding the page that shows it, so
/// that the text box keeps its focus and cursor.
using Typing = std::function<void(const std::function<void()>&)>;

/// The page for the model's problem and page, as the detail area shows it.
QWidget* make(SettingsModel& model, const Typing& typing);

/// The statistics page (in its own file).
QWidget* stats(SettingsModel& model);
/// The confirmation before the history is cleared, open over `parent`; it
/// answers the model and deletes itself when closed.
QMessageBox* confirmClear(SettingsModel& model, QWidget* parent);

}  // namespace ashview::SettingsPages
