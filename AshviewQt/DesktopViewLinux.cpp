#include "AshviewQt/DesktopView.h"

#include "AshviewQt/Theme.h"
#include "Platform/Sim/SimApplications.h"
#include "Platform/Sim/SimDesktop.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QUrl>

#include <stdexcept>

namespace ashview {

namespace {

constexpr double titleBar = 28;
constexpr double addressBar = 30;

/// A steady colour for a text: the same site always looks the same.
QColor tint(const QString& text) {
    static const QColor colours[] = {QColor(0xe5, 0x39, 0x35), QColor(0xfb, 0x8c, 0x00), QColor(0x43, 0xa0, 0x47),
                                     QColor(0x1e, 0x88, 0xe5), QColor(0x8e, 0x24, 0xaa), QColor(0x00, 0xac, 0xc1)};
    return colours[qHash(text) % std::size(colours)];
}

QString hostOf(const std::optional<std::string>& address) {
    if (!address) return {};
    QUrl url(QString::fromStdString(*address));
    return url.host().isEmpty() ? QString::fromStdString(*address) : url.host();
}

/// What one window shows, as far as the desktop knows it.
struct Shown {
    QString owner;
    std::optional<std::string> address;
    bool isBrowser = false;
};

Shown shown(SimApplications& apps, const SimWindow& window) {
    Shown about{QString::fromStdString(window.ownerName), std::nullopt, false};
    try {
        SimAppWindow entry = apps.appWindow(window.number);
        about.address = entry.address;
        about.isBrowser = entry.scriptingID != 0;
        if (std::optional<RunningApplication> owner = apps.application(entry.ownerPID))
            about.owner = QString::fromStdString(owner->localizedName);
    } catch (const std::out_of_range&) {
        // A window of no simulated application: its owner's name is all.
    }
    return about;
}

void drawWindow(QPainter& painter, const QRectF& frame, const Shown& about, double scale) {
    painter.save();
    QPainterPath outline;
    outline.addRoundedRect(frame, 8 / scale, 8 / scale);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 40));
    painter.drawPath(outline.translated(0, 3 / scale));
    painter.setClipPath(outline);
    painter.fillRect(frame, Qt::white);

    const double bar = titleBar / scale;
    QRectF title(frame.left(), frame.top(), frame.width(), bar);
    painter.fillRect(title, QColor(0xe9, 0xe9, 0xeb));
    const QColor lights[] = {QColor(0xff, 0x5f, 0x57), QColor(0xfe, 0xbc, 0x2e), QColor(0x28, 0xc8, 0x40)};
    for (int light = 0; light < 3; ++light) {
        painter.setBrush(lights[light]);
        painter.drawEllipse(QPointF(frame.left() + (16 + light * 18) / scale, title.center().y()), 5.5 / scale,
                            5.5 / scale);
    }
    painter.setPen(QColor(0x3c, 0x3c, 0x43));
    QFont font = Theme::font(12, QFont::DemiBold);
    font.setPixelSize(std::max(1, qRound(12 / scale)));
    painter.setFont(font);
    painter.drawText(title, Qt::AlignCenter, about.owner);

    QRectF page(frame.left(), title.bottom(), frame.width(), frame.bottom() - title.bottom());
    const QString host = hostOf(about.address);
    if (about.isBrowser) {
        QRectF field(frame.left() + 12 / scale, title.bottom() + 4 / scale, frame.width() - 24 / scale,
                     (addressBar - 8) / scale);
        painter.setPen(QColor(0xd1, 0xd1, 0xd6));
        painter.setBrush(QColor(0xf2, 0xf2, 0xf4));
        painter.drawRoundedRect(field, 6 / scale, 6 / scale);
        painter.setPen(QColor(0x1d, 0x1d, 0x1f));
        font.setWeight(QFont::Normal);
        painter.setFont(font);
        painter.drawText(field.adjusted(10 / scale, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                         about.address ? QString::fromStdString(*about.address) : QString("(a new tab)"));
        page.setTop(title.bottom() + addressBar / scale);
    }
    if (!host.isEmpty() || !about.isBrowser) {
        const QString name = host.isEmpty() ? about.owner : host;
        const QColor colour = tint(name);
        painter.fillRect(QRectF(page.left(), page.top(), page.width(), std::min(page.height(), 90 / scale)), colour);
        painter.setPen(Qt::white);
        QFont big = Theme::font(22, QFont::Bold);
        big.setPixelSize(std::max(1, qRound(22 / scale)));
        painter.setFont(big);
        painter.drawText(QRectF(page.left() + 20 / scale, page.top(), page.width(), 90 / scale),
                         Qt::AlignLeft | Qt::AlignVCenter, name);
        // A few blocks of picture and text, in the site's colours.
        painter.setPen(Qt::NoPen);
        for (int block = 0; block < 3; ++block) {
            QRectF card(page.left() + (20 + block * 200) / scale, page.top() + 110 / scale, 180 / scale, 110 / scale);
            if (card.right() > page.right() || card.bottom() > page.bottom()) break;
            painter.setBrush(colour.lighter(130 + block * 20));
            painter.drawRoundedRect(card, 6 / scale, 6 / scale);
        }
        painter.setBrush(QColor(0xe5, 0xe5, 0xea));
        for (int line = 0; line < 6; ++line) {
            QRectF text(page.left() + 20 / scale, page.top() + (240 + line * 22) / scale,
                        (page.width() - 40 / scale) * (line % 3 == 2 ? 0.6 : 1.0), 10 / scale);
            if (text.bottom() > page.bottom()) break;
            painter.drawRoundedRect(text, 4 / scale, 4 / scale);
        }
    }
    painter.restore();
    painter.setPen(QPen(QColor(0, 0, 0, 70), 1 / scale));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(frame, 8 / scale, 8 / scale);
}

/// Turns the part of `image` under `area` (image pixels) black and white, as
/// the compositor does beneath an overlay.
void desaturate(QImage& image, QRect area) {
    area = area.intersected(image.rect());
    for (int y = area.top(); y <= area.bottom(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = area.left(); x <= area.right(); ++x) {
            const int gray = qGray(line[x]);
            line[x] = qRgb(gray, gray, gray);
        }
    }
}

}  // namespace

DesktopView::DesktopView(QWidget* parent) : QWidget(parent), address_(new QLineEdit(this)) {
    setMinimumSize(720, 450);
    setMouseTracking(false);
    address_->hide();
    connect(address_, &QLineEdit::returnPressed, this, [this] {
        QString text = address_->text().trimmed();
        if (!text.isEmpty() && !text.contains("://")) text = "https://" + text + "/";
        address_->hide();
        if (apps_ && editing_) {
            try {
                apps_->showAddress(editing_, text.isEmpty() ? std::nullopt : std::optional(text.toStdString()));
            } catch (const std::out_of_range&) {
                // The window closed while the person typed.
            }
        }
        update();
    });
    connect(address_, &QLineEdit::editingFinished, address_, &QLineEdit::hide);
}

void DesktopView::setDesktop(SimDesktop* desktop, SimApplications* apps) {
    desktop_ = desktop;
    apps_ = apps;
    update();
}

double DesktopView::scale() const {
    if (!desktop_ || desktop_->displays().empty()) return 1;
    const Rect& display = desktop_->displays().front();
    return std::max(display.width / width(), display.height / height());
}

Point DesktopView::desktopPoint(QPointF at) const { return Point{at.x() * scale(), at.y() * scale()}; }

QRectF DesktopView::onView(const Rect& quartz) const {
    const double s = scale();
    return QRectF(quartz.x / s, quartz.y / s, quartz.width / s, quartz.height / s);
}

void DesktopView::paintEvent(QPaintEvent*) {
    QPainter widgetPainter(this);
    widgetPainter.fillRect(rect(), QColor(0x2c, 0x2c, 0x2e));
    if (!desktop_ || desktop_->displays().empty()) return;
    const Rect& display = desktop_->displays().front();
    const double s = scale();
    const qreal ratio = devicePixelRatioF();
    QSize size(qCeil(display.width / s * ratio), qCeil(display.height / s * ratio));
    QImage image(size, QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);

    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, display.height / s);
    sky.setColorAt(0, QColor(0x3a, 0x7b, 0xd5));
    sky.setColorAt(1, QColor(0x8e, 0x5b, 0xc9));
    painter.fillRect(QRectF(0, 0, display.width / s, display.height / s), sky);

    // Back to front: each window over those behind it, each overlay turning
    // what is behind it gray.
    std::vector<std::int64_t> stack = desktop_->onScreenStack();
    std::vector<SimOverlay> overlays = desktop_->overlays();
    for (auto number = stack.rbegin(); number != stack.rend(); ++number) {
        std::optional<SimWindow> window = desktop_->window(*number);
        if (!window || window->isDesktopElement) continue;
        if (window->isOverlay) {
            for (const SimOverlay& overlay : overlays) {
                if (overlay.number != *number || !overlay.desaturates) continue;
                Rect frame = overlay.frame;
                Rect quartz{frame.x, display.height - frame.y - frame.height, frame.width, frame.height};
                painter.end();
                QRectF area = onView(quartz);
                desaturate(image, QRect(qFloor(area.left() * ratio), qFloor(area.top() * ratio),
                                        qCeil(area.width() * ratio), qCeil(area.height() * ratio)));
                painter.begin(&image);
                painter.setRenderHint(QPainter::Antialiasing);
            }
            continue;
        }
        if (window->layer != 0) continue;
        drawWindow(painter, onView(window->bounds), shown(*apps_, *window), s);
    }
    painter.end();
    widgetPainter.drawImage(QPointF(0, 0), image);
}

void DesktopView::mousePressEvent(QMouseEvent* event) {
    if (!desktop_ || !apps_) return;
    Point at = desktopPoint(event->position());
    std::optional<std::int64_t> hit = desktop_->windowAt(at);
    if (!hit) return;
    std::optional<SimWindow> window = desktop_->window(*hit);
    if (!window) return;
    try {
        SimAppWindow entry = apps_->appWindow(*hit);
        apps_->activate(entry.ownerPID);
        apps_->focus(*hit);
        const double offset = at.y - window->bounds.y;
        if (entry.scriptingID != 0 && offset >= titleBar && offset < titleBar + addressBar) {
            editAddress(*hit);
            return;
        }
    } catch (const std::out_of_range&) {
        desktop_->bringToFront(*hit);
    }
    if (at.y - window->bounds.y < titleBar) drag_ = Drag{*hit, at, window->bounds};
    update();
}

void DesktopView::mouseMoveEvent(QMouseEvent* event) {
    if (!drag_ || !desktop_) return;
    Point at = desktopPoint(event->position());
    Rect moved = drag_->bounds;
    moved.x += at.x - drag_->grabbed.x;
    moved.y += at.y - drag_->grabbed.y;
    try {
        desktop_->setBounds(drag_->window, moved);
    } catch (const std::out_of_range&) {
        drag_.reset();
    }
    update();
}

void DesktopView::mouseReleaseEvent(QMouseEvent*) { drag_.reset(); }

void DesktopView::editAddress(std::int64_t window) {
    std::optional<SimWindow> shownWindow = desktop_->window(window);
    if (!shownWindow) return;
    editing_ = window;
    SimAppWindow entry = apps_->appWindow(window);
    QRectF frame = onView(shownWindow->bounds);
    const double s = scale();
    address_->setGeometry(QRectF(frame.left() + 12 / s, frame.top() + (titleBar + 2) / s, frame.width() - 24 / s,
                                 std::max(22.0, (addressBar - 4) / s))
                              .toRect());
    address_->setText(entry.address ? QString::fromStdString(*entry.address) : QString());
    address_->selectAll();
    address_->show();
    address_->setFocus();
}

}  // namespace ashview
