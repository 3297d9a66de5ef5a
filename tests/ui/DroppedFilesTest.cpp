#include "DroppedFiles.h"

#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

/// A drag that offers to be copied, moved or linked, and that nobody has answered.
class DroppedFilesTest : public ::testing::Test {
protected:
    DroppedFilesTest() { event_.ignore(); }

    void drag(const QList<QUrl>& urls) { drag_.setUrls(urls); }

    QMimeData drag_;
    QDropEvent event_{QPointF(), Qt::CopyAction | Qt::MoveAction | Qt::LinkAction, &drag_,
                      Qt::LeftButton, Qt::NoModifier};
};

TEST_F(DroppedFilesTest, localFiles_areGivenInTheirOrder) {
    drag({QUrl("file:///b%20%C3%A9.mp4"), QUrl("file:///a.txt")});
    EXPECT_EQ(localFiles(drag_), QStringList({"/b é.mp4", "/a.txt"}));
}

TEST_F(DroppedFilesTest, localFiles_leaveOutWhatLiesElsewhere) {
    drag({QUrl("https://localhost/a.mp4"), QUrl("file:///b.mp4")});
    EXPECT_EQ(localFiles(drag_), QStringList("/b.mp4"));
}

TEST_F(DroppedFilesTest, localFiles_ofADragOfText_areNone) {
    drag_.setText("/a.mp4");
    EXPECT_EQ(localFiles(drag_), QStringList());
}

TEST_F(DroppedFilesTest, answerDrag_ofWelcomeFiles_offersACopy) {
    event_.setDropAction(Qt::MoveAction);
    drag({QUrl("file:///a.mp4")});
    answerDrag(event_, true);
    EXPECT_TRUE(event_.isAccepted());
    EXPECT_EQ(event_.dropAction(), Qt::CopyAction);
}

TEST_F(DroppedFilesTest, answerDrag_ofFilesThatAreNotWelcome_isNone) {
    drag({QUrl("file:///a.mp4")});
    answerDrag(event_, false);
    EXPECT_FALSE(event_.isAccepted());
}

TEST_F(DroppedFilesTest, answerDrag_ofText_isNone) {
    drag_.setText("/a.mp4");
    answerDrag(event_, true);
    EXPECT_FALSE(event_.isAccepted());
}

TEST_F(DroppedFilesTest, answerDrop_tellsWhetherTheFilesWereTaken) {
    event_.setDropAction(Qt::MoveAction);
    answerDrop(event_, true);
    EXPECT_TRUE(event_.isAccepted());
    EXPECT_EQ(event_.dropAction(), Qt::CopyAction); // the other program keeps its files
    answerDrop(event_, false);
    EXPECT_FALSE(event_.isAccepted());
}

} // namespace
} // namespace velmora::test
