// Renders the pictures of the program's face into the folder named on the
// command line (docs/images from scripts/screenshots).
#include "../Pictures.h"
#include "AshviewQt/Theme.h"

#include <QApplication>

#include <iostream>

int main(int argc, char** argv) {
    ashview::Theme::quietOffscreenNotices();
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
