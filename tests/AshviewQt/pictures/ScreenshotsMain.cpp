// Renders the pictures of the program's face into the folder named on the
// command line (docs/images from scripts/screenshots).
#include "../Pictures.h"
#include "AshviewQt/Theme.h"

#include <QApplication>

#include <cstdio>
#include <iostream>

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
    if (argc != 2) {
        std::cerr << "usage: DrabwiseScreenshots FOLDER\n";
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    ashview::Theme::apply(application);
    for (const std::string& name : ashview::Pictures::render(argv[1])) std::cout << name << "\n";
    return 0;
}
