// The views' test program: one QApplication for every test, on the offscreen
// platform unless the environment names another, with the program's own
// look, so that no display is needed and every run draws alike.
#include "AshviewQt/Theme.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    ashview::Theme::quietOffscreenNotices();
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    ashview::Theme::apply(application);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
