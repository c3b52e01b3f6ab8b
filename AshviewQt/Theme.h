// The look of the windows where the system gives none of its own (Linux, the
// offscreen platform of the tests and pictures): a light palette, the Fusion
// style and a fixed typeface, so that every run draws the same pixels. The
// Mac program keeps the system's look and does not call this. Main thread,
// after the QApplication exists.
#pragma once

#include <QColor>
#include <QFont>

class QApplication;

namespace ashview::Theme {

void apply(QApplication& application);
/// Leaves out the offscreen platform's notice, for every window, of the
/// display services it lacks; every other message is written as usual.
void quietOffscreenNotices();

/// The body text's typeface at `points` (13 by default), `weight` as given.
QFont font(qreal points = 13, QFont::Weight weight = QFont::Normal);
/// A typeface whose ten digits are all of one width, for columns of figures:
/// the body face when its digits already are, else one whose digits are.
QFont evenDigitFont(qreal points = 13);
/// True when the ten digits of `font` have one advance.
bool hasEvenDigits(const QFont& font);

/// The secondary text colour (labels beside values, notes, footers).
QColor secondaryText();
/// The accent of prominent buttons and the selected sidebar row.
QColor accent();

}  // namespace ashview::Theme
