#include "AshviewQt/Theme.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QPalette>
#include <QStyleFactory>

#include <cstdio>

namespace ashview::Theme {

namespace {

constexpr const char* bodyFamily = "Inter";
/// DejaVu Sans draws every digit at one width.
constexpr const char* digitFamily = "DejaVu Sans";

}  // namespace

QFont font(qreal points, QFont::Weight weight) {
    QFont face(bodyFamily);
    // A Mac point is one logical pixel; Qt's points elsewhere are larger.
    face.setPixelSize(qRound(points));
    face.setWeight(weight);
    face.setHintingPreference(QFont::PreferNoHinting);
    return face;
}

bool hasEvenDigits(const QFont& font) {
    QFontMetricsF metrics(font);
    const qreal width = metrics.horizontalAdvance(QChar('0'));
    for (char digit = '1'; digit <= '9'; ++digit) {
        if (!qFuzzyCompare(metrics.horizontalAdvance(QChar(digit)), width)) return false;
    }
    return true;
}

QFont evenDigitFont(qreal points) {
    QFont body = font(points);
    if (hasEvenDigits(body)) return body;
    QFont digits(digitFamily);
    digits.setPixelSize(qRound(points * 0.92));
    digits.setHintingPreference(QFont::PreferNoHinting);
    return digits;
}

QColor secondaryText() { return QColor(0x6e, 0x6e, 0x73); }
QColor accent() { return QColor(0x0a, 0x7a, 0xff); }

void apply(QApplication& application) {
    application.setStyle(QStyleFactory::create("Fusion"));
    application.setFont(font());
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(0xec, 0xec, 0xec));
    palette.setColor(QPalette::WindowText, QColor(0x1d, 0x1d, 0x1f));
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::AlternateBase, QColor(0xf5, 0xf5, 0xf7));
    palette.setColor(QPalette::Text, QColor(0x1d, 0x1d, 0x1f));
    palette.setColor(QPalette::Button, QColor(0xfb, 0xfb, 0xfb));
    palette.setColor(QPalette::ButtonText, QColor(0x1d, 0x1d, 0x1f));
    palette.setColor(QPalette::Highlight, accent());
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::PlaceholderText, QColor(0xa1, 0xa1, 0xa6));
    palette.setColor(QPalette::Link, accent());
    palette.setColor(QPalette::ToolTipBase, QColor(0xff, 0xff, 0xf0));
    palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0xa1, 0xa1, 0xa6));
    palette.setColor(QPalette::Disabled, QPalette::Text, QColor(0xa1, 0xa1, 0xa6));
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0xa1, 0xa1, 0xa6));
    application.setPalette(palette);
    // Thin scroll bars over the content, and rounded text fields, as on the
    // Mac.
    application.setStyleSheet(
        "QScrollBar:vertical { width: 9px; background: transparent; margin: 2px; }"
        "QScrollBar::handle:vertical { background: rgba(0,0,0,0.22); border-radius: 3px; min-height: 30px; }"
        "QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical { height: 0; }"
        "QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical { background: transparent; }"
        "QLineEdit { background: white; border: 1px solid #c8c8cc; border-radius: 6px; padding: 3px 6px; }"
        "QLineEdit:focus { border: 2px solid #7fb2ff; padding: 2px 5px; }"
        "QFrame#group { background: white; border: 1px solid #dcdcde; border-radius: 8px; }"
        "QPushButton[segment] { background: #f4f4f5; border: 1px solid #c8c8cc; padding: 3px 12px; }"
        "QPushButton[segment=\"middle\"], QPushButton[segment=\"last\"] { border-left: none; }"
        "QPushButton[segment=\"first\"] { border-top-left-radius: 6px; border-bottom-left-radius: 6px; }"
        "QPushButton[segment=\"last\"] { border-top-right-radius: 6px; border-bottom-right-radius: 6px; }"
        "QPushButton[segment]:checked { background: white; font-weight: 600; }"
        "QPushButton[role=\"prominent\"] { background: #0a7aff; color: white; border: none; border-radius: 6px;"
        " padding: 5px 14px; font-weight: 600; }"
        "QPushButton[role=\"destructive\"] { color: #d70015; }");
}

void quietOffscreenNotices() {
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString& message) {
        if (message.startsWith("This plugin does not support")) return;
        std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, message)));
    });
}

}  // namespace ashview::Theme
