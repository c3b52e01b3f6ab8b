// The setup and About windows draw their models' words and forward each
// press: a browser's button asks, its row waits and then tells the answer,
// "Done" closes; a study's link opens its address.
#include "Ashview/Shell/AboutPage.h"
#include "Ashview/Shell/SetupModel.h"
#include "AshviewQt/QtWindowView.h"
#include "AshviewQt/QtWindowViews.h"

#include "ShellStage.h"

#include <QAbstractButton>
#include <QLabel>
#include <QTest>
#include <QTextDocumentFragment>

#include <gtest/gtest.h>

#include <set>

namespace ashview {
namespace {

void settle() {
    for (int round = 0; round < 3; ++round) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

/// The words of every label and button, links reduced to their text.
std::set<std::string> shownWords(QWidget& window) {
    std::set<std::string> words;
    for (QLabel* label : window.findChildren<QLabel*>()) {
        if (!label->isVisibleTo(&window) || label->text().isEmpty()) continue;
        QString text = label->textFormat() == Qt::RichText ? QTextDocumentFragment::fromHtml(label->text()).toPlainText()
                                                           : label->text();
        words.insert(text.toStdString());
    }
    for (QAbstractButton* button : window.findChildren<QAbstractButton*>())
        if (button->isVisibleTo(&window)) words.insert(button->text().toStdString());
    return words;
}

std::set<std::string> modelWords(SetupModel& model) {
    std::set<std::string> words{SetupModel::introduction, SetupModel::browserAccessTitle, SetupModel::browserAccessNote,
                                SetupModel::accessibilityTitle, SetupModel::accessibilityNote, SetupModel::doneTitle};
    std::vector<SetupModel::Row> rows = model.browserRows();
    rows.push_back(model.accessibilityRow());
    for (const SetupModel::Row& row : rows) {
        if (!row.name.empty()) words.insert(row.name);
        words.insert(row.status);
        if (row.button) words.insert(*row.button);
    }
    return words;
}

QAbstractButton* buttonBeside(QWidget& window, const std::string& name) {
    for (QLabel* label : window.findChildren<QLabel*>())
        if (label->text().toStdString() == name) return label->parentWidget()->findChild<QAbstractButton*>();
    return nullptr;
}

TEST(SetupWindowView, ShowsTheRowsAndForwardsEachPress) {
    ShellStage stage;
    for (const char* id : {ShellStage::chrome, ShellStage::safari, "com.microsoft.edgemac"})
        stage.apps.registerBundle(id, std::string("/Applications/") + id + ".app");
    stage.apps.launchBrowser(ShellStage::chrome);
    stage.apps.setPermission(ShellStage::safari, SimPermission::notDecided);
    stage.apps.launchBrowser(ShellStage::safari);
    SetupModel model({stage.apps.workspace(), stage.apps.appleEvents(), stage.apps.accessibility(),
                      stage.desktop.mainLoop()},
                     SetupModel::installedCatalog(stage.apps.workspace()));
    model.refresh();
    QtWindowViews views([](const std::string&) {});
    int closes = 0;
    std::unique_ptr<WindowView> view = views.setupView(model, [&] { ++closes; });
    view->present();
    settle();
    QWidget& window = static_cast<QtWindowView&>(*view).widget();
    EXPECT_TRUE(view->isVisible());
    EXPECT_EQ(shownWords(window), modelWords(model));
    EXPECT_EQ(window.windowTitle().toStdString(), SetupModel::windowTitle);

    // Safari's "Allow…" asks; its row waits, then tells the answer.
    QAbstractButton* allow = buttonBeside(window, "Safari");
    ASSERT_NE(allow, nullptr);
    QTest::mouseClick(allow, Qt::LeftButton);
    settle();
    EXPECT_EQ(model.asking(), std::set<std::string>{ShellStage::safari});
    EXPECT_EQ(buttonBeside(window, "Safari"), nullptr);
    EXPECT_EQ(shownWords(window), modelWords(model));
    stage.desktop.clock().finishBackgroundWork();
    settle();
    EXPECT_TRUE(model.asking().empty());
    EXPECT_EQ(shownWords(window), modelWords(model));

    QTest::mouseClick(window.findChild<QAbstractButton*>(SetupModel::doneTitle), Qt::LeftButton);
    EXPECT_EQ(closes, 1);
    EXPECT_FALSE(view->isVisible());
}

TEST(AboutWindowView, ShowsEveryTextSelectableAndOpensTheStudies) {
    AboutPage page = AboutPage::make("1.2", "7");
    std::vector<std::string> opened;
    QtWindowViews views([&](const std::string& url) { opened.push_back(url); });
    std::unique_ptr<WindowView> view = views.aboutView(page);
    QWidget& window = static_cast<QtWindowView&>(*view).widget();

    std::set<std::string> words = shownWords(window);
    std::vector<std::string> expected{AboutPage::name, AboutPage::tagline, page.version, page.opening};
    for (const AboutPage::Section& section : page.sections) {
        expected.push_back(section.head);
        for (const AboutPage::Source& source : section.sources) expected.insert(expected.end(), {source.id, source.note});
    }
    for (const std::string& text : expected) EXPECT_TRUE(words.contains(text)) << text;
    for (QLabel* label : window.findChildren<QLabel*>())
        EXPECT_TRUE(label->textInteractionFlags() & Qt::TextSelectableByMouse) << label->text().toStdString();

    const AboutPage::Source& study = AboutPage::sources().front();
    for (QLabel* label : window.findChildren<QLabel*>())
        if (label->text().contains(QString::fromStdString(study.url))) Q_EMIT label->linkActivated(QString::fromStdString(study.url));
    ASSERT_FALSE(opened.empty());
    EXPECT_EQ(opened.front(), study.url);
}

}  // namespace
}  // namespace ashview
