#include "Pictures.h"

#include "Ashview/Controller/Log.h"
#include "Ashview/Shell/AboutPage.h"
#include "Ashview/Shell/SetupModel.h"
#include "Ashview/Shell/StatusMenu.h"
#include "AshviewQt/AboutWidget.h"
#include "AshviewQt/SetupWidget.h"
#include "AshviewQt/SimulatedScreen.h"
#include "AshviewQt/Form.h"
#include "AshviewQt/StatusGlyph.h"
#include "AshviewQt/StatusItem.h"
#include "AshviewQt/SettingsWidget.h"
#include "AshviewQt/Theme.h"
#include "Platform/Sim/SimAppServices.h"

#include "ShellStage.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

namespace ashview::Pictures {

namespace {

constexpr qreal scale = 2.0;
constexpr int shadow = 36;
constexpr int titleBar = 28;

void settle() {
    for (int round = 0; round < 3; ++round) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

/// A soft shadow under a rounded rectangle.
void dropShadow(QPainter& painter, const QRectF& area, qreal radius) {
    painter.setPen(Qt::NoPen);
    for (int step = 18; step >= 1; --step) {
        painter.setBrush(QColor(0, 0, 0, 5));
        painter.drawRoundedRect(area.adjusted(-step, -step + 8, step, step + 8), radius + step, radius + step);
    }
}

QImage canvas(QSize logical) {
    QImage image(logical * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    return image;
}

/// `content` drawn inside a window frame with the three buttons and `title`.
QImage windowPicture(QWidget& content, const QString& title) {
    content.show();
    settle();
    const QSize body = content.size();
    QImage image = canvas(QSize(body.width() + 2 * shadow, body.height() + titleBar + 2 * shadow));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QRectF frame(shadow, shadow, body.width(), body.height() + titleBar);
    dropShadow(painter, frame, 10);
    QPainterPath outline;
    outline.addRoundedRect(frame, 10, 10);
    painter.setClipPath(outline);
    painter.fillRect(frame, QColor(0xec, 0xec, 0xec));
    painter.fillRect(QRectF(frame.left(), frame.top(), frame.width(), titleBar), QColor(0xe8, 0xe8, 0xea));
    const QColor lights[] = {QColor(0xff, 0x5f, 0x57), QColor(0xfe, 0xbc, 0x2e), QColor(0x28, 0xc8, 0x40)};
    for (int light = 0; light < 3; ++light) {
        painter.setBrush(lights[light]);
        painter.setPen(lights[light].darker(115));
        painter.drawEllipse(QPointF(frame.left() + 18 + light * 20, frame.top() + titleBar / 2.0), 6, 6);
    }
    painter.setPen(QColor(0x4d, 0x4d, 0x4f));
    painter.setFont(Theme::font(13, QFont::DemiBold));
    painter.drawText(QRectF(frame.left(), frame.top(), frame.width(), titleBar), Qt::AlignCenter, title);
    painter.fillRect(QRectF(frame.left(), frame.top() + titleBar - 1, frame.width(), 1), QColor(0xd1, 0xd1, 0xd6));
    content.render(&painter, QPoint(shadow, shadow + titleBar), QRegion(), QWidget::DrawChildren);
    painter.setClipping(false);
    painter.setPen(QPen(QColor(0, 0, 0, 60), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(frame, 10, 10);
    return image;
}

/// The status item in a strip of menu bar with its menu open below it.
QImage menuPicture(QMenu& menu, const QString& clock) {
    menu.popup(QPoint(0, 0));
    settle();
    const QSize body = menu.sizeHint();
    menu.resize(body);
    const int bar = 24;
    const int width = body.width() + 2 * shadow + 120;
    QImage image = canvas(QSize(width, bar + body.height() + shadow + 12));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(QRectF(0, 0, width, bar), QColor(0xf2, 0xf2, 0xf4));
    painter.fillRect(QRectF(0, bar - 1, width, 1), QColor(0xd1, 0xd1, 0xd6));
    const qreal glyphLeft = shadow + 8;
    painter.setBrush(QColor(0, 0, 0, 36));
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(QRectF(glyphLeft - 6, 2, 30, bar - 4), 5, 5);
    painter.drawPixmap(QRectF(glyphLeft, 3, 18, 18), StatusGlyph::pixmap(18, scale), QRectF(0, 0, 18 * scale, 18 * scale));
    painter.setPen(QColor(0x1d, 0x1d, 0x1f));
    painter.setFont(Theme::font(13, QFont::DemiBold));
    painter.drawText(QRectF(width - 100, 0, 90, bar), Qt::AlignRight | Qt::AlignVCenter, clock);
    QRectF frame(shadow, bar + 4, body.width(), body.height());
    dropShadow(painter, frame, 8);
    QPainterPath outline;
    outline.addRoundedRect(frame, 8, 8);
    painter.setClipPath(outline);
    menu.render(&painter, frame.topLeft().toPoint(), QRegion(), QWidget::DrawWindowBackground | QWidget::DrawChildren);
    painter.setClipping(false);
    painter.setPen(QPen(QColor(0, 0, 0, 50), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(frame, 8, 8);
    menu.hide();
    return image;
}

void save(const QImage& image, const std::filesystem::path& folder, const std::string& name,
          std::vector<std::string>& written) {
    image.save(QString::fromStdString((folder / name).string()), "PNG");
    written.push_back(name);
}

}  // namespace

std::vector<std::string> render(const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    std::vector<std::string> written;
    ShellStage stage(ShellStage::berlin().date(2026, 2, 24, 8, 0, 0).value());
    stage.startProgram();
    stage.furnish();

    SimLoginItemService loginItems;
    std::ostringstream errors;
    StatusMenu statusMenu(*stage.controller, stage.appMonitor, loginItems, stage.desktop.mainLoop(), errors, {});
    StatusItem item([&] { return statusMenu.menuNeedsUpdate(); }, SystemActions{});
    const QString clock =
        QString::fromStdString(Log::clockText(stage.desktop.clock().now(), stage.desktop.clock().calendar())).left(5);
    save(menuPicture(item.menu(), clock), folder, "status-menu.png", written);

    SimulatedScreen screen(item);
    screen.showDesktop(&stage.desktop, &stage.apps);
    screen.resize(1080, 701);
    save(windowPicture(screen, screen.windowTitle()), folder, "desktop.png", written);

    using Page = SettingsModel::Page;
    SettingsModel& model = stage.settings();
    SettingsWidget window(model);
    const struct {
        Page page;
        const char* file;
    } pages[] = {
        {Page::forSite(model.rules().sites[0].id), "settings-site.png"},
        {Page::stats(), "settings-stats.png"},
        {Page::daysOff(), "settings-days-off.png"},
        {Page::newSites(), "settings-new-sites.png"},
    };
    for (const auto& shown : pages) {
        model.setPage(shown.page);
        window.refresh();
        settle();
        save(windowPicture(window, QString::fromStdString(model.title())), folder, shown.file, written);
    }

    SetupModel setup({stage.apps.workspace(), stage.apps.appleEvents(), stage.apps.accessibility(),
                      stage.desktop.mainLoop()},
                     SetupModel::installedCatalog(stage.apps.workspace()));
    setup.refresh();
    SetupWidget setupWindow(setup);
    save(windowPicture(setupWindow, SetupModel::windowTitle), folder, "setup.png", written);

    AboutWidget about(AboutPage::make("1.0", "42"), [](const std::string&) {});
    save(windowPicture(about, AboutPage::windowTitle), folder, "about.png", written);
    return written;
}

}  // namespace ashview::Pictures
