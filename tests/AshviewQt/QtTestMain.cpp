// The views' test program: one QApplication for every test, on the offscreen
// platform unless the environment names another, with the program's own
// look, so that no display is needed and every run draws alike.
#include "AshviewQt/Theme.h"

#include <QApplication>

#include <gtest/gtest.h>

#include <cstdio>

namespace {

/// The offscreen platform says, for every window, which of a real display's
/// services it lacks; every other message is written as usual.
void quietOffscreen(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (message.startsWith("This plugin does not support")) return;
    std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, message)));
}

}  // namespace

int main(int argc, char** argv) {
    qInstallMessageHandler(quietOffscreen);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    ashview::Theme::apply(application);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
