#include "AshviewQt/StatusGlyph.h"

#include <QPainter>
#include <QPainterPath>

namespace ashview::StatusGlyph {

QPixmap pixmap(int points, qreal scale) {
    const int pixels = qRound(points * scale);
    QPixmap image(pixels, pixels);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);

    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal size = points;
    const qreal stroke = size / 11.0;
    QRectF circle(stroke, stroke, size - 2 * stroke, size - 2 * stroke);
    painter.setPen(QPen(Qt::black, stroke * 1.2));
    painter.drawEllipse(circle);

    const qreal barWidth = size * 0.11;
    const qreal barHeight = size * 0.36;
    const qreal gap = size * 0.09;
    const qreal top = (size - barHeight) / 2;
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    painter.drawRoundedRect(QRectF(size / 2 - gap / 2 - barWidth, top, barWidth, barHeight), barWidth / 3, barWidth / 3);
    painter.drawRoundedRect(QRectF(size / 2 + gap / 2, top, barWidth, barHeight), barWidth / 3, barWidth / 3);
    return image;
}

QIcon icon() {
    QIcon glyph;
    for (int points : {16, 18, 22}) {
        glyph.addPixmap(pixmap(points, 1.0));
        glyph.addPixmap(pixmap(points, 2.0));
    }
    glyph.setIsMask(true);
    return glyph;
}

}  // namespace ashview::StatusGlyph
