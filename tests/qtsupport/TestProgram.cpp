#include "TestProgram.h"

#include <QApplication>
#include <QStandardPaths>
#include <gtest/gtest.h>

namespace velmora::test {

int runTests(int argc, char** argv) {
    // Also when they are started by hand.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QStandardPaths::setTestModeEnabled(true);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}

} // namespace velmora::test
