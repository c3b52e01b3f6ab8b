// The status item's image: a circle around two upright bars, drawn here with
// QPainter so that no image file is needed. Black on transparent, so that the
// Mac treats it as a template and tints it for the menu bar. Main thread.
#pragma once

#include <QIcon>
#include <QPixmap>

namespace ashview::StatusGlyph {

/// The glyph `points` wide and high, at `scale` pixels per point.
QPixmap pixmap(int points, qreal scale);
/// The glyph at 16, 18 and 22 points, each at 1x and 2x, marked as a mask.
QIcon icon();

}  // namespace ashview::StatusGlyph
