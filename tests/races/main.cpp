#include "EngineLog.h"

#include <QApplication>
#include <QStandardPaths>
#include <gtest/gtest.h>

namespace {

void dropLine(const char* /*line*/) {}

} // namespace

int main(int argc, char** argv) {
    // Tests run without a display, also when they are started by hand.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QStandardPaths::setTestModeEnabled(true); // the user's own folders stay as they are
    const QApplication application(argc, argv);
    velmora::setLogSink(dropLine);
    return RUN_ALL_TESTS();
}
