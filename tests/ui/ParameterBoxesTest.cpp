#include "ParameterBoxes.h"

#include "NodeSetting.h"
#include "OutputSettingsForm.h"
#include "ProfileInfo.h"

#include <QComboBox>
#include <gtest/gtest.h>

#include <string>

namespace velmora::test {
namespace {

/// A parameter of a profile, the box that shows it and the field of a setting that takes it.
struct ShownParameter {
    const char* parameter;
    const char* box;
    QString NodeSetting::*field;
};

constexpr ShownParameter kRate{"vFrameRate", "mFrameRate", &NodeSetting::vFrameRate};

class ParameterBoxesTest : public ::testing::Test {
protected:
    QComboBox& box(const ShownParameter& shown) { return *form_.findChild<QComboBox*>(shown.box); }
    void add(const char* parameter, int position) {
        boxes_.add({.name = parameter, .arrayValue = {"a", "b", "c"}}, position);
    }

    OutputSettingsForm form_;
    ParameterBoxes boxes_{form_.outlets()};
};

class EachParameterTest : public ParameterBoxesTest,
                          public ::testing::WithParamInterface<ShownParameter> {};

TEST_P(EachParameterTest, choices_goToItsBoxWithTheOneAtThePositionSelected) {
    add(GetParam().parameter, 1);
    EXPECT_EQ(box(GetParam()).count(), 3);
    EXPECT_EQ(box(GetParam()).currentText(), "b");
    for (QComboBox* const other : form_.findChildren<QComboBox*>()) {
        EXPECT_TRUE(other == &box(GetParam()) || other->count() == 0)
            << other->objectName().toStdString();
    }
}

TEST_P(EachParameterTest, choicesAddedAgain_followTheFirst) {
    add(GetParam().parameter, 1);
    add(GetParam().parameter, 2);
    EXPECT_EQ(box(GetParam()).count(), 6);
}

TEST_P(EachParameterTest, clear_emptiesItsBox) {
    add(GetParam().parameter, 0);
    boxes_.clear();
    EXPECT_EQ(box(GetParam()).count(), 0);
}

TEST_P(EachParameterTest, setEnabled_reachesItsBox) {
    boxes_.setEnabled(false);
    EXPECT_FALSE(box(GetParam()).isEnabledTo(&form_));
    boxes_.setEnabled(true);
    EXPECT_TRUE(box(GetParam()).isEnabledTo(&form_));
}

class KeptParameterTest : public EachParameterTest {};

TEST_P(KeptParameterTest, putInto_givesTheSelectedChoice) {
    add(GetParam().parameter, 1);
    NodeSetting setting;
    boxes_.putInto(setting);
    EXPECT_EQ(setting.*GetParam().field, "b");
}

TEST_P(KeptParameterTest, putInto_textThatIsNoChoice_isEmpty) {
    add(GetParam().parameter, 1);
    box(GetParam()).setEditText("d");
    NodeSetting setting;
    boxes_.putInto(setting);
    EXPECT_EQ(setting.*GetParam().field, "");
}

TEST_P(KeptParameterTest, select_showsWhatTheSettingHas) {
    add(GetParam().parameter, 0);
    NodeSetting setting;
    setting.*GetParam().field = "c";
    boxes_.select(setting);
    EXPECT_EQ(box(GetParam()).currentText(), "c");
}

constexpr ShownParameter kKept[] = {
    {"aSamplerate", "mSampleRate", &NodeSetting::aSamplerate},
    {"aBitRate", "mAudioQuality", &NodeSetting::aBitrate},
    {"vBitRate", "mVideoQuality", &NodeSetting::vBitrate},
    {"vResolution", "mVideoSize", &NodeSetting::vResolution},
};
std::string nameOf(const ::testing::TestParamInfo<ShownParameter>& info) {
    return info.param.parameter;
}
INSTANTIATE_TEST_SUITE_P(Kept, EachParameterTest, ::testing::ValuesIn(kKept), nameOf);
INSTANTIATE_TEST_SUITE_P(Rate, EachParameterTest, ::testing::Values(kRate), nameOf);
INSTANTIATE_TEST_SUITE_P(All, KeptParameterTest, ::testing::ValuesIn(kKept), nameOf);

TEST_F(ParameterBoxesTest, frameRate_isLeftToThePanel) {
    add(kRate.parameter, 1);
    NodeSetting setting;
    setting.vFrameRate = "a";
    boxes_.select(setting);
    EXPECT_EQ(box(kRate).currentText(), "b");
    boxes_.putInto(setting);
    EXPECT_EQ(setting.vFrameRate, "a");
}

TEST_F(ParameterBoxesTest, parameterWithoutABox_changesNothing) {
    add("vEncoder", 0);
    for (const QComboBox* const box : form_.findChildren<QComboBox*>()) {
        EXPECT_EQ(box->count(), 0) << box->objectName().toStdString();
    }
}

} // namespace
} // namespace velmora::test
