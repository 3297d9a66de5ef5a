#include "HelpPage.h"

#include "MainWindowSupport.h"
#include "OpenedUrls.h"

#include <QAction>
#include <QFile>
#include <QHash>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QTest>

namespace velmora::test {
namespace {

class HelpPageTest : public MainWindowTest {
protected:
    void SetUp() override { QFile::remove(QUrl(controller_.helpPageAddress()).toLocalFile()); }

    QString content() {
        QFile page(opened_.urls().value(0).toLocalFile());
        return page.open(QIODevice::ReadOnly) ? QString::fromUtf8(page.readAll()) : QString();
    }

    OpenedUrls opened_;
};

TEST_F(HelpPageTest, address_isThatOfALocalPage) {
    const QUrl address(controller_.helpPageAddress());
    EXPECT_TRUE(address.isLocalFile());
    EXPECT_TRUE(address.path().endsWith("/help/index.html"));
}

TEST_F(HelpPageTest, link_clicked_opensThePage) {
    auto& line = outlet<QLabel>("mTextFieldHowTo");
    QTest::mouseClick(&line, Qt::LeftButton, {}, line.rect().center());
    ASSERT_EQ(opened_.urls(), QList{QUrl(controller_.helpPageAddress())});
    EXPECT_TRUE(content().contains("How to use Velmora"));
}

TEST_F(HelpPageTest, f1_opensThePage) {
    QTest::keyClick(&controller_.mainWin(), Qt::Key_F1);
    ASSERT_EQ(opened_.urls().size(), 1);
    EXPECT_TRUE(content().contains("<html"));
}

TEST_F(HelpPageTest, page_namesWhatIsOnTheButtons) {
    controller_.showHelp();
    for (const char* const name :
         {"segmentVideoCutter", "segmentVideoJoiner", "mButtonSetImage", "mButtonLeft",
          "mButtonRight", "mButtonCutterAdd", "mButtonCutterSetting", "mButtonJoinerRemove",
          "mButtonJoinerSetting"}) {
        const QString label = outlet<QPushButton>(name).text();
        EXPECT_TRUE(content().contains("“" + label + "”")) << label.toStdString();
    }
}

TEST_F(HelpPageTest, page_hasTheKeysOfAllShortcuts) {
    controller_.showHelp();
    const QHash<QString, QString> drawn{
        {"Left", "←"}, {"Right", "→"}, {"Return", "Enter"}, {"-", "−"}};
    int shortcuts = 0;
    for (const QAction* const action : controller_.mainWin().findChildren<QAction*>()) {
        for (const QKeySequence& shortcut : action->shortcuts()) {
            // The last key may be the plus itself.
            for (QString key : shortcut.toString().replace("++", "+Plus").split('+')) {
                key = key == "Plus" ? "+" : key;
                const QString shown = "<kbd>" + drawn.value(key, key) + "</kbd>";
                EXPECT_TRUE(content().contains(shown)) << shown.toStdString();
            }
            ++shortcuts;
        }
    }
    EXPECT_GE(shortcuts, 15);
}

TEST_F(HelpPageTest, openedTwice_givesTheSamePage) {
    controller_.showHelp();
    controller_.showHelp();
    ASSERT_EQ(opened_.urls().size(), 2);
    EXPECT_EQ(opened_.urls()[0], opened_.urls()[1]);
    EXPECT_FALSE(content().isEmpty());
}

} // namespace
} // namespace velmora::test
