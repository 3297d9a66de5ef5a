#include <QApplication>
#include <gtest/gtest.h>

extern "C" {
#include <libavutil/log.h>
}

int main(int argc, char** argv) {
    // Tests run without a display, also when they are started by hand.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    av_log_set_level(AV_LOG_ERROR); // not what encoders tell of each of many runs
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
