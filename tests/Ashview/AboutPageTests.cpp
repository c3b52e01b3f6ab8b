#include "Ashview/Shell/AboutPage.h"

#include "Ashview/Shell/AboutWindow.h"
#include "Platform/Sim/SimAppServices.h"
#include "Scenario/HeadlessViews.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

TEST(AboutPage, TheVersionLineForEachBundle) {
    struct Case {
        std::optional<std::string> shortVersion;
        std::optional<std::string> build;
        std::string text;
    };
    const std::vector<Case> cases{
        {std::nullopt, "7", "Development build"},
        {"1.4", "212", "Version 1.4 (212)"},
        {"1.4", std::nullopt, "Version 1.4 (1)"},
    };
    for (const Case& test : cases) EXPECT_EQ(AboutPage::make(test.shortVersion, test.build).version, test.text);

    // The window reads the version from the bundle it runs from.
    SimApplicationShell application;
    application.info = {{"CFBundleShortVersionString", "2.0"}, {"CFBundleVersion", "31"}};
    HeadlessViews views;
    AboutWindow window(application, views);
    EXPECT_EQ(window.page().version, "Version 2.0 (31)");
    window.show();
    window.show();
    ASSERT_NE(views.about, nullptr);
    EXPECT_EQ(views.about->title, "About Drabwise");
    EXPECT_EQ(views.about->presentations, 2);
    EXPECT_EQ(application.activations, 2);
}

TEST(AboutPage, EveryStudyAndCitationLinksToItsDoi) {
    AboutPage page = AboutPage::make(std::nullopt, std::nullopt);
    std::vector<AboutPage::Source> linked;
    for (const AboutPage::Section& section : page.sections) {
        for (const AboutPage::Paragraph& paragraph : section.paragraphs)
            linked.insert(linked.end(), paragraph.cites.begin(), paragraph.cites.end());
        linked.insert(linked.end(), section.sources.begin(), section.sources.end());
    }
    ASSERT_EQ(AboutPage::sources().size(), 5U);
    EXPECT_EQ(page.sections.back().sources, AboutPage::sources());
    EXPECT_EQ(linked.size(), 8U) << "five studies and, under \"Why color?\", three citations";
    for (const AboutPage::Source& source : linked) {
        EXPECT_TRUE(source.url.starts_with("https://doi.org/10.")) << source.id;
        EXPECT_FALSE(source.note.empty()) << source.id;
    }
}

}  // namespace
}  // namespace ashview
