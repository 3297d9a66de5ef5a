#include "OpenPanel.h"

#include "Desktop.h"
#include "TestFiles.h"

#include <QApplication>
#include <QEventLoop>
#include <QFileDialog>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

#include <optional>

namespace velmora::test {
namespace {

/// A window with an open panel over it, in a folder with the files a.mp4 and b.txt and a folder.
class OpenPanelTest : public ::testing::Test {
protected:
    void SetUp() override {
        writeFile(folder_.path() / "a.mp4", "a");
        writeFile(folder_.path() / "b.txt", "b");
        std::filesystem::create_directory(folder_.path() / "inner");
        window_.show();
    }

    QString path(const char* name) const { return QString::fromStdString(folder_ / name); }

    QFileDialog* open(OpenPanelChoice choice) {
        result_.reset();
        beginOpenPanel(window_, choice, path(""), [this](int result, const QStringList& paths) {
            result_ = result;
            paths_ = paths;
        });
        QFileDialog* const panel = window_.findChildren<QFileDialog*>("openPanel").back();
        // A panel remembers the folder of the one before.
        panel->setDirectory(path(""));
        return panel;
    }

    static void type(QFileDialog& panel, const QString& names) {
        auto* const name = panel.findChild<QLineEdit*>("fileNameEdit");
        name->setText(names);
        QTest::keyClick(name, Qt::Key_Return);
    }
    /// The result, once the completion has been called.
    std::optional<int> result() {
        EXPECT_TRUE(QTest::qWaitFor([this] { return result_.has_value(); }));
        return result_;
    }

    TemporaryFolder folder_;
    QPushButton window_;
    std::optional<int> result_;
    QStringList paths_;
};

TEST_F(OpenPanelTest, file_chosen_givesItsPath) {
    QFileDialog* const panel = open(OpenPanelChoice::File);
    EXPECT_EQ(panel->fileMode(), QFileDialog::ExistingFile);
    type(*panel, "a.mp4");
    EXPECT_EQ(result(), 1);
    EXPECT_EQ(paths_, QStringList(path("a.mp4")));
}

TEST_F(OpenPanelTest, files_severalChosen_givesAllPathsInOrder) {
    type(*open(OpenPanelChoice::Files), R"("b.txt" "a.mp4")");
    EXPECT_EQ(result(), 1);
    EXPECT_EQ(paths_, QStringList({path("b.txt"), path("a.mp4")}));
}

TEST_F(OpenPanelTest, files_severalMarkedByMouse_givesAllPaths) {
    QFileDialog* const panel = open(OpenPanelChoice::Files);
    panel->setViewMode(QFileDialog::List);
    auto& list = *panel->findChild<QListView*>("listView");
    ASSERT_TRUE(QTest::qWaitFor([&] { return list.model()->rowCount(list.rootIndex()) == 3; }));
    for (int row = 0; row < 3; ++row) {
        const QModelIndex entry = list.model()->index(row, 0, list.rootIndex());
        if (entry.data() != "inner") {
            QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::ControlModifier,
                              list.visualRect(entry).center());
        }
    }
    QTest::keyClick(panel->findChild<QLineEdit*>("fileNameEdit"), Qt::Key_Return);
    EXPECT_EQ(result(), 1);
    paths_.sort();
    EXPECT_EQ(paths_, QStringList({path("a.mp4"), path("b.txt")}));
}

TEST_F(OpenPanelTest, files_offersFilesOfAnyType) {
    EXPECT_TRUE(open(OpenPanelChoice::Files)->nameFilters().join(' ').contains("*"));
    type(*window_.findChild<QFileDialog*>("openPanel"), "b.txt");
    EXPECT_EQ(result(), 1);
    EXPECT_EQ(paths_, QStringList(path("b.txt")));
}

TEST_F(OpenPanelTest, folder_chosen_givesItsPath) {
    type(*open(OpenPanelChoice::Folder), "inner");
    EXPECT_EQ(result(), 1);
    EXPECT_EQ(paths_, QStringList(path("inner")));
}

TEST_F(OpenPanelTest, panel_cancelled_givesResult0AndNoPath) {
    QFileDialog* const panel = open(OpenPanelChoice::Files);
    QTest::keyClick(panel, Qt::Key_Escape);
    EXPECT_EQ(result(), 0);
    EXPECT_TRUE(paths_.isEmpty());
}

TEST_F(OpenPanelTest, panel_open_returnsAtOnceAndBlocksItsWindowUntilTheCompletion) {
    int clicks = 0;
    QObject::connect(&window_, &QPushButton::clicked, [&clicks] { ++clicks; });
    QFileDialog* const panel = open(OpenPanelChoice::Files);
    EXPECT_FALSE(result_.has_value());
    EXPECT_EQ(panel->windowModality(), Qt::WindowModal);
    clickOnScreen(window_);
    EXPECT_EQ(clicks, 0);
    panel->reject();
    clickOnScreen(window_); // nothing comes in between
    EXPECT_EQ(clicks, 0);
    EXPECT_EQ(result(), 0);
    clickOnScreen(window_);
    EXPECT_EQ(clicks, 1);
}

TEST_F(OpenPanelTest, panel_answered_isGone) {
    open(OpenPanelChoice::Files)->reject();
    EXPECT_TRUE(QTest::qWaitFor([this] { return !window_.findChild<QFileDialog*>("openPanel"); }));
}

TEST_F(OpenPanelTest, panel_afterAChoice_startsInTheFolderOfThatChoice) {
    type(*open(OpenPanelChoice::File), "a.mp4");
    beginOpenPanel(window_, OpenPanelChoice::File, "/", [](int, const QStringList&) {});
    const QList<QFileDialog*> panels = window_.findChildren<QFileDialog*>("openPanel");
    EXPECT_EQ(panels.back()->directory(), QDir(path("")));
    panels.back()->reject();
}

TEST_F(OpenPanelTest, completion_opensAnotherPanel_works) {
    QFileDialog* second = nullptr;
    beginOpenPanel(window_, OpenPanelChoice::File, path(""),
                   [&](int, const QStringList&) { second = open(OpenPanelChoice::File); });
    window_.findChild<QFileDialog*>("openPanel")->reject();
    ASSERT_TRUE(QTest::qWaitFor([&second] { return second != nullptr; }));
    type(*second, "a.mp4");
    EXPECT_EQ(result(), 1);
    EXPECT_EQ(paths_, QStringList(path("a.mp4")));
}

// What the panel does with a key goes on after it has told that the user is done.
TEST_F(OpenPanelTest, completion_runsAnEventLoop_findsThePanelDoneWithItsKey) {
    bool isHandled = false;
    bool wasHandled = false;
    bool isCalled = false;
    beginOpenPanel(window_, OpenPanelChoice::File, path(""), [&](int, const QStringList&) {
        wasHandled = isHandled;
        QEventLoop loop;
        QTimer::singleShot(0, &loop, &QEventLoop::quit);
        loop.exec();
        isCalled = true;
    });
    auto* const panel = window_.findChild<QFileDialog*>("openPanel");
    panel->setDirectory(path(""));
    type(*panel, "a.mp4");
    isHandled = true;
    EXPECT_TRUE(QTest::qWaitFor([&isCalled] { return isCalled; }));
    EXPECT_TRUE(wasHandled);
}

TEST_F(OpenPanelTest, window_destroyedUnderThePanel_dropsTheCompletion) {
    auto window = std::make_unique<QWidget>();
    window->show();
    int calls = 0;
    beginOpenPanel(*window, OpenPanelChoice::File, path(""),
                   [&calls](int, const QStringList&) { ++calls; });
    window.reset();
    QCoreApplication::processEvents();
    EXPECT_EQ(calls, 0);
}

TEST_F(OpenPanelTest, window_destroyedBeforeTheCompletion_dropsIt) {
    auto window = std::make_unique<QWidget>();
    window->show();
    int calls = 0;
    beginOpenPanel(*window, OpenPanelChoice::File, path(""),
                   [&calls](int, const QStringList&) { ++calls; });
    window->findChild<QFileDialog*>("openPanel")->reject();
    window.reset();
    QCoreApplication::processEvents();
    EXPECT_EQ(calls, 0);
}

} // namespace
} // namespace velmora::test
