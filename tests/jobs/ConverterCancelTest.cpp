// Runs that are cancelled, and controllers that go away.

#include "ControllerSupport.h"
#include "MediaReader.h"
#include "ModalSession.h"

#include <QTest>

#include <optional>
#include <utility>

namespace velmora::test {
namespace {

/// The ways in which a user cancels.
class CancelBy : public ConverterControllerTest, public testing::WithParamInterface<const char*> {
protected:
    void cancel() {
        QWidget& window = windowOf(controller_);
        if (GetParam() == std::string("click")) {
            QTest::mouseClick(window.findChild<QPushButton*>("btCancel"), Qt::LeftButton);
        } else {
            QTest::keyClick(&window, Qt::Key_Escape);
        }
    }
};

TEST_P(CancelBy, run_stopsAndNothingIsSaid) {
    addItem(mediaPath("h264.mp4"), 0, 4000).isSeleted = 1;
    show(controller_, slowJob("out.mp4", 3840, 2160), [&] {
        ASSERT_TRUE(QTest::qWaitForWindowActive(&windowOf(controller_)));
        cancel();
        EXPECT_FALSE(windowOf(controller_).isVisible());
        EXPECT_EQ(engine_.stopRequested, 1);
        EXPECT_EQ(modalWindow(), nullptr);
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isRefreshing(controller_); }));
    EXPECT_TRUE(alerts_.messages.isEmpty());
    EXPECT_LE(item(0).converteState, Ready); // or pending, by what the run was doing

    show(controller_, directJob("next.mp4"));
    EXPECT_EQ(alerts_.messages, QStringList{kCompleted});
}

INSTANTIATE_TEST_SUITE_P(Ways, CancelBy, testing::Values("click", "escape"),
                         [](const auto& made) { return std::string(made.param); });

TEST_F(ConverterControllerTest, cancelAtOnce_reachesAWorkerThatHasNotBegun) {
    addItem(mediaPath("h264.mp4"), 0, 4000);
    const ConverterInfo job = slowJob("out.mp4", 3840, 2160);
    for (int round = 0; round < 20; ++round) {
        show(controller_, job, [&] { controller_.closeFrom(); });
        std::filesystem::remove(folder_ / "out.mp4");
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isRefreshing(controller_); }, 60000));
    EXPECT_TRUE(alerts_.messages.isEmpty());
    EXPECT_LE(item(0).converteState, Ready); // or pending, by what the run was doing
}

TEST_F(ConverterControllerTest, destruction_stopsTheRunAndWaits) {
    addItem(mediaPath("h264.mp4"), 0, 4000);
    auto leaving = std::make_unique<ConverterController>();
    show(*leaving, slowJob("out.mp4", 3840, 2160), [&] { windowOf(*leaving).close(); });
    leaving.reset();
    EXPECT_EQ(engine_.stopRequested, 1);
    EXPECT_EQ(engine_.fileStates[0], ConversionEngine::Pending);
    EXPECT_TRUE(alerts_.messages.isEmpty());
}

} // namespace
} // namespace velmora::test
