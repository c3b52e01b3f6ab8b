// Small pictures for the sidebar rows, drawn here with QPainter: a site's
// round badge, an app's rounded square (with its initial; the system's own
// icon is the Mac adapter's to give), and the glyphs of the statistics, the
// defaults and the days off. 20 points, at 2x. Main thread.
#pragma once

#include <QImage>
#include <QPixmap>

#include <functional>
#include <string>

namespace ashview {
class AppIcon;
/// The picture of an application's icon as the platform draws it (on the Mac
/// from the icon's PNG); a null image where it has none.
using IconImage = std::function<QImage(const AppIcon&)>;
}  // namespace ashview

namespace ashview::AppGlyph {

QPixmap site(const std::string& name);
/// `known`: the system has an icon for the app; an unknown app is drawn
/// hollow.
QPixmap app(const std::string& name, const std::string& key, bool known);
QPixmap chart();
QPixmap defaults();
QPixmap calendar();

}  // namespace ashview::AppGlyph
