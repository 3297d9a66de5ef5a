#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    // Tests run without a display, also when they are started by hand.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
