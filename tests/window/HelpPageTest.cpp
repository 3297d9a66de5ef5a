#include "HelpPage.h"

#include "MainWindowSupport.h"
#include "OpenedUrls.h"

#include <QAction>
#include <QFile>
#include <QLabel>
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

TEST_F(HelpPageTest, openedTwice_givesTheSamePage) {
    controller_.showHelp();
    controller_.showHelp();
    ASSERT_EQ(opened_.urls().size(), 2);
    EXPECT_EQ(opened_.urls()[0], opened_.urls()[1]);
    EXPECT_FALSE(content().isEmpty());
}

} // namespace
} // namespace velmora::test
