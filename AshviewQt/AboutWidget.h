// The About window's page: the head, the opening, and each section with its
// lines, citations and studies. Every text can be selected; a study's name is
// a link that opens in the default browser through the platform's way of
// opening addresses. Main thread only.
#pragma once

#include "Ashview/Shell/AboutPage.h"

#include <QScrollArea>

#include <functional>
#include <string>

namespace ashview {

class AboutWidget final : public QScrollArea {
public:
    /// `openURL` opens an address with the application the system chooses.
    AboutWidget(const AboutPage& page, std::function<void(const std::string&)> openURL, QWidget* parent = nullptr);
};

}  // namespace ashview
