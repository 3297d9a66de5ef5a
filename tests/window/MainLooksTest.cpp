// How texts of the main window look, and what it knows of itself.

#include "Bundle.h"
#include "MainWindowSupport.h"

#include <QApplication>
#include <QFontInfo>
#include <QFontMetrics>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPalette>
#include <QTextBlock>
#include <QTextDocument>

#include <filesystem>

namespace velmora::test {
namespace {

class MainLooksTest : public MainWindowTest {
protected:
    static bool hasColour(const QImage& picture, QRgb colour) {
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                if (picture.pixel(x, y) == colour) {
                    return true;
                }
            }
        }
        return false;
    }
};

TEST_F(MainLooksTest, helpLine_isBlueUnderlinedItalicArialOf12Points) {
    QTextDocument document;
    document.setHtml(outlet<QLabel>("mTextFieldHowTo").text());
    const QTextCharFormat format = document.firstBlock().begin().fragment().charFormat();
    EXPECT_EQ(format.foreground().color(), QColor(0, 0, 255));
    EXPECT_TRUE(format.fontUnderline());
    EXPECT_TRUE(format.fontItalic());
    EXPECT_EQ(format.fontFamilies().toStringList(), QStringList("Arial"));
    EXPECT_EQ(format.fontPointSize(), 12);
}

TEST_F(MainLooksTest, helpLine_isBlueOnScreen) {
    QWidget& line = outlet("mTextFieldHowTo");
    const QImage shown = line.grab().toImage().convertToFormat(QImage::Format_RGB32);
    EXPECT_TRUE(hasColour(shown, qRgb(0, 0, 255)));
}

TEST_F(MainLooksTest, times_haveDigitsOfOneWidth) {
    for (const char* const name : {"mLabelStart", "mLabelEnd", "mLabelDuration", "mLabelDrag"}) {
        const QLineEdit& field = outlet<QLineEdit>(name);
        EXPECT_TRUE(QFontInfo(field.font()).fixedPitch()) << name;
        const QFontMetrics metrics(field.font());
        for (const QChar digit : QString("123456789")) {
            EXPECT_EQ(metrics.horizontalAdvance(digit), metrics.horizontalAdvance('0')) << name;
        }
        EXPECT_EQ(field.font().pointSizeF(), controller_.mainWin().font().pointSizeF()) << name;
    }
}

// The window's background is light whatever the desktop's colours are, and so all on it is dark.
TEST_F(MainLooksTest, colours_areDarkOnLight) {
    const QPalette colours = controller_.mainWin().menuBar()->palette();
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        EXPECT_EQ(colours.color(QPalette::Active, role), QColor("#12324a"));
        EXPECT_EQ(colours.color(QPalette::Disabled, role), QColor("#6b8598"));
    }
    EXPECT_EQ(colours.color(QPalette::ToolTipText), QColor("#12324a"));
    EXPECT_EQ(colours.color(QPalette::ToolTipBase), QColor(Qt::white));
}

TEST_F(MainLooksTest, version_isReadFromTheInfoList) {
    EXPECT_EQ(controller_.version(), VELMORA_VERSION);
    const std::filesystem::path programs = QCoreApplication::applicationDirPath().toStdString();
    const std::filesystem::path list = programs / "../share/velmora/velmora-Info.plist";
    std::filesystem::create_directories(list.parent_path());
    writeFile(list, "<plist version=\"1.0\"><dict><key>CFBundleShortVersionString</key>"
                    "<string>98.7</string></dict></plist>");
    controller_.initVersionPlist();
    std::filesystem::remove(list);
    EXPECT_EQ(controller_.version(), "98.7");
}

} // namespace
} // namespace velmora::test
