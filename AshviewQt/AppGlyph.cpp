#include "AshviewQt/AppGlyph.h"

#include "AshviewQt/Theme.h"

#include <QPainter>

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
    return drawn([&](QPainter& painter) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(tint(name));
        painter.drawEllipse(QRectF(1, 1, points - 2, points - 2));
        letter(painter, initial(name), Qt::white);
    });
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

QPixmap chart() {
    return drawn([](QPainter& painter) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(Theme::accent());
        const qreal heights[] = {7, 12, 9, 15};
        for (int bar = 0; bar < 4; ++bar)
            painter.drawRoundedRect(QRectF(2.5 + bar * 4.0, 18 - heights[bar], 3, heights[bar]), 1, 1);
    });
}

QPixmap defaults() {
    return drawn([](QPainter& painter) {
        painter.setPen(QPen(QColor(0x8e, 0x8e, 0x93), 1.6, Qt::SolidLine, Qt::RoundCap));
        for (int line = 0; line < 3; ++line) painter.drawLine(QPointF(3, 5 + line * 5.0), QPointF(17, 5 + line * 5.0));
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0x8e, 0x8e, 0x93));
        const qreal knobs[] = {12, 6, 14};
        for (int line = 0; line < 3; ++line) painter.drawEllipse(QPointF(knobs[line], 5 + line * 5.0), 2.4, 2.4);
    });
}

QPixmap calendar() {
    return drawn([](QPainter& painter) {
        QRectF page(2.5, 3.5, 15, 14);
        painter.setPen(QPen(QColor(0xff, 0x3b, 0x30), 1.4));
        painter.setBrush(Qt::white);
        painter.drawRoundedRect(page, 3, 3);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0xff, 0x3b, 0x30));
        painter.drawRect(QRectF(2.5, 3.5, 15, 4));
        painter.setBrush(QColor(0x8e, 0x8e, 0x93));
        for (int row = 0; row < 2; ++row)
            for (int column = 0; column < 3; ++column)
                painter.drawEllipse(QPointF(6.5 + column * 3.5, 11 + row * 3.5), 0.9, 0.9);
    });
}

}  // namespace ashview::AppGlyph
