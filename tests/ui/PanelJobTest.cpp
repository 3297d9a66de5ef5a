// What both panels call their two ways of writing, and the job that they describe.

#include "ConverterInfo.h"
#include "PanelSupport.h"

namespace velmora::test {
namespace {

class CutterPanelJobTest : public PanelTest<cutterWinController> {};
class JoinerPanelJobTest : public PanelTest<joinerWinController> {};

template <class Panel> ConverterInfo jobOf(OpenedPanel<Panel>& panel) {
    ConverterInfo job = panel.newJob(false);
    panel.applyChoices(job);
    return job;
}

TEST_F(CutterPanelJobTest, rows_areDirectCopyAndReencode) {
    showPanel();
    EXPECT_EQ(outlet<QAbstractButton>("mRadioDirect").text(), "&Direct copy");
    EXPECT_EQ(outlet<QAbstractButton>("mRadioReencode").text(), "&Re-encode");
}

TEST_F(JoinerPanelJobTest, rows_areDirectAndIndirectJoin) {
    showPanel();
    EXPECT_EQ(outlet<QAbstractButton>("mRadioDirect").text(), "&Direct join");
    EXPECT_EQ(outlet<QAbstractButton>("mRadioReencode").text(), "&Indirect join");
}

TEST_F(CutterPanelJobTest, job_reencoded_hasTheChosenFrameSize) {
    auto& panel = showPanel();
    selectRow(1);
    choose("mVideoSize", 1);
    const ConverterInfo job = jobOf(panel);
    EXPECT_EQ(job.isDirectly, 0);
    EXPECT_EQ(job.width, 640);
    EXPECT_EQ(job.height, 480);
}

TEST_F(JoinerPanelJobTest, job_reencoded_hasTheChosenFrameSize) {
    auto& panel = showPanel();
    selectRow(1);
    choose("mVideoSize", 0);
    const ConverterInfo job = jobOf(panel);
    EXPECT_EQ(job.width, 320);
    EXPECT_EQ(job.height, 240);
}

TEST_F(CutterPanelJobTest, job_direct_hasNoFrameSize) {
    const ConverterInfo job = jobOf(showPanel());
    EXPECT_EQ(job.isDirectly, 1);
    EXPECT_EQ(job.width, 0);
    EXPECT_EQ(job.height, 0);
}

} // namespace
} // namespace velmora::test
