#include "AshviewQt/AppGlyph.h"

#include "AshviewQt/Theme.h"

#include <QPainter>
#include <QPixmapCache>

#include <functional>

namespace ashview::AppGlyph {

namespace {

constexpr int points = 20;
constexpr qreal scale = 2.0;

QPixmap drawn(const std::function<void(QPainter&)>& draw) {
    QPixmap image(qRound(points * scale), qRound(points * scale));
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    draw(painter);
    return image;
}

/// A steady colour for a name: the same name always gets the same one.
QColor tint(const std::string& name) {
    static const QColor colours[] = {QColor(0xff, 0x6b, 0x5e), QColor(0xff, 0x9f, 0x0a), QColor(0x30, 0xb0, 0x50),
                                     QColor(0x0a, 0x84, 0xff), QColor(0x5e, 0x5c, 0xe6), QColor(0xbf, 0x5a, 0xf2),
                                     QColor(0x64, 0xd2, 0xff), QColor(0xff, 0x37, 0x5f)};
    std::size_t sum = 0;
    for (unsigned char c : name) sum = sum * 31 + c;
    return colours[sum % std::size(colours)];
}

QString initial(const std::string& name) {
    QString text = QString::fromStdString(name).trimmed();
    return text.isEmpty() ? QString("?") : text.left(1).toUpper();
}

void letter(QPainter& painter, const QString& text, const QColor& colour) {
    painter.setPen(colour);
    painter.setFont(Theme::font(10, QFont::Bold));
    painter.drawText(QRectF(0, 0, points, points), Qt::AlignCenter, text);
}

}  // namespace

QPixmap site(const std::string& name) {
    // Drawn once per name: a long list draws many at each redraw.
    const QString key = "site-glyph:" + QString::fromStdString(name);
    QPixmap image;
    if (QPixmapCache::find(key, &image)) return image;
    image = drawn([&](QPainter& painter) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(tint(name));
        painter.drawEllipse(QRectF(1, 1, points - 2, points - 2));
        letter(painter, initial(name), Qt::white);
    });
    QPixmapCache::insert(key, image);
    return image;
}

QPixmap app(const std::string& name, const std::string& key, bool known) {
    return drawn([&](QPainter& painter) {
        QRectF square(1.5, 1.5, points - 3, points - 3);
        if (known) {
            QLinearGradient shade(square.topLeft(), square.bottomLeft());
            shade.setColorAt(0, tint(key).lighter(125));
            shade.setColorAt(1, tint(key));
            painter.setPen(Qt::NoPen);
            painter.setBrush(shade);
            painter.drawRoundedRect(square, 4.5, 4.5);
            letter(painter, initial(name), Qt::white);
        } else {
            painter.setPen(QPen(Theme::secondaryText(), 1.2));
            painter.setBrush(Qt::NoBrush);
            painter.drawRoundedRect(square, 4.5, 4.5);
            letter(painter, initial(name), Theme::secondaryText());
        }
    });
}

namespace {

/// A white glyph on a coloured tile, as the rows of the system's settings.
QPixmap tile(const QColor& colour, const std::function<void(QPainter&)>& glyph) {
    return drawn([&](QPainter& painter) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(colour);
        painter.drawRoundedRect(QRectF(1, 1, points - 2, points - 2), 4.5, 4.5);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::white);
        glyph(painter);
    });
}

}  // namespace

QPixmap chart() {
    return tile(Theme::accent(), [](QPainter& painter) {
        const qreal heights[] = {5, 9, 7, 11};
        for (int bar = 0; bar < 4; ++bar)
            painter.drawRoundedRect(QRectF(4.5 + bar * 3.0, 15 - heights[bar], 2, heights[bar]), 0.8, 0.8);
    });
}

QPixmap defaults() {
    return tile(QColor(0x8e, 0x8e, 0x93), [](QPainter& painter) {
        painter.setPen(QPen(Qt::white, 1.3, Qt::SolidLine, Qt::RoundCap));
        for (int line = 0; line < 3; ++line) painter.drawLine(QPointF(5, 6 + line * 4.0), QPointF(15, 6 + line * 4.0));
        painter.setPen(QPen(QColor(0x8e, 0x8e, 0x93), 1));
        const qreal knobs[] = {12, 7, 10};
        for (int line = 0; line < 3; ++line) painter.drawEllipse(QPointF(knobs[line], 6 + line * 4.0), 2.1, 2.1);
    });
}

QPixmap calendar() {
    return tile(QColor(0xff, 0x3b, 0x30), [](QPainter& painter) {
        painter.drawRoundedRect(QRectF(4.5, 5, 11, 10.5), 1.5, 1.5);
        painter.setBrush(QColor(0xff, 0x3b, 0x30));
        for (int row = 0; row < 2; ++row)
            for (int column = 0; column < 3; ++column)
                painter.drawRect(QRectF(6 + column * 3.0, 9 + row * 3.0, 1.8, 1.8));
    });
}

}  // namespace ashview::AppGlyph
