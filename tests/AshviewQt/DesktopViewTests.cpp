// The simulated desktop in a window: a window under an overlay is drawn
// black and white, and a person's clicks, drags and typing reach the desktop
// as a person's would reach a Mac.
#include "AshviewQt/DesktopView.h"

#include "ShellStage.h"

#include <QImage>
#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

namespace ashview {
namespace {

bool isGray(QRgb pixel) { return qRed(pixel) == qGreen(pixel) && qGreen(pixel) == qBlue(pixel); }

TEST(DesktopView, DrawsGrayWindowsAndCarriesOutClicksDragsAndTyping) {
    ShellStage stage;
    stage.startProgram();
    RuleSet rules = stage.controller->rules();
    rules.newSiteDefaults.trigger = GrayTrigger::rightAway();
    rules.addSite("video.example");
    stage.setRules(rules);
    std::int64_t back = stage.browse("https://news.example/", Rect{100, 100, 500, 400});
    std::int64_t front = stage.browse("https://video.example/", Rect{700, 300, 500, 400});
    stage.advance(6);

    DesktopView view;
    view.setDesktop(&stage.desktop, &stage.apps);
    view.resize(720, 450);
    view.show();
    const double scale = view.scale();
    auto onView = [&](double x, double y) { return QPoint(qRound(x / scale), qRound(y / scale)); };
    auto pixel = [&](double x, double y) { return view.grab().toImage().pixel(onView(x, y)); };
    // Each page's coloured head, below the title and address bars.
    EXPECT_FALSE(isGray(pixel(300, 200)));
    EXPECT_TRUE(isGray(pixel(900, 400)));

    // A click on the back window brings it front; a drag by its title bar
    // moves it.
    QTest::mouseClick(&view, Qt::LeftButton, {}, onView(300, 300));
    EXPECT_EQ(stage.desktop.onScreenStack().front(), back);
    QTest::mousePress(&view, Qt::LeftButton, {}, onView(300, 110));
    QTest::mouseMove(&view, onView(400, 160));
    QTest::mouseRelease(&view, Qt::LeftButton, {}, onView(400, 160));
    Rect moved = stage.desktop.window(back)->bounds;
    EXPECT_NEAR(moved.x, 200, scale);
    EXPECT_NEAR(moved.y, 150, scale);

    // A click on the address lets the person type another.
    QTest::mouseClick(&view, Qt::LeftButton, {}, onView(900, 340));
    auto* address = view.findChild<QLineEdit*>();
    ASSERT_TRUE(address && address->isVisible());
    address->selectAll();
    QTest::keyClicks(address, "video.example/watch");
    QTest::keyClick(address, Qt::Key_Return);
    EXPECT_EQ(stage.apps.appWindow(front).address, "https://video.example/watch/");
}

}  // namespace
}  // namespace ashview
