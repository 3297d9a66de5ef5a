#pragma once

#include "MainWindowSupport.h"
#include "SharedState.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace velmora::test {

/// The joiner's workspace. "video-only.mp4" has 320x180, 30 pictures per second, 4 s.
class JoinerTest : public MainWindowTest {
protected:
    void SetUp() override;

    const QString video_ = media("video-only.mp4");

    /// Puts an item into the list that no file stands behind.
    static void addRow(const QString& format, const QString& resolution);

    int rows() { return table().model()->rowCount(); }
    QString cell(int row, int column);
    QString value(const char* column, int row = 0);
    bool dropOnTable(const QStringList& paths) { return dropFiles(*table().viewport(), paths); }

    /// Presses "Merge into a video file" and does `inPanel` with the panel on screen.
    bool merge(const std::function<void(QWidget&)>& inPanel);
};

} // namespace velmora::test
