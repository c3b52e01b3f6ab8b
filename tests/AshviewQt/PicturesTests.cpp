// The pictures of docs/images: the script draws every one of them, and none
// comes out blank.
#include "Pictures.h"

#include "TempFolder.h"

#include <QImage>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace ashview {
namespace {

TEST(Pictures, EachIsDrawnAndNoneIsBlank) {
    TempFolder folder;
    std::vector<std::string> written = Pictures::render(folder.path());
    ASSERT_FALSE(written.empty());
    for (const std::string& name : written) {
        SCOPED_TRACE(name);
        QImage image(QString::fromStdString((folder.path() / name).string()));
        ASSERT_FALSE(image.isNull());
        EXPECT_GE(image.width(), 600);
        // A blank picture has a colour or two; a drawn window has hundreds.
        std::set<QRgb> colours;
        for (int y = 0; y < image.height(); y += 3)
            for (int x = 0; x < image.width(); x += 3) colours.insert(image.pixel(x, y));
        EXPECT_GT(colours.size(), 200u);
    }

    // Every picture in docs/images is one the script draws.
    std::set<std::string> committed;
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(DRABWISE_SOURCE_DIR) / "docs/images"))
        committed.insert(entry.path().filename().string());
    EXPECT_EQ(committed, std::set<std::string>(written.begin(), written.end()));
}

}  // namespace
}  // namespace ashview
