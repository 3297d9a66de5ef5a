#pragma once

#include "PanelSupport.h"

#include <QLabel>
#include <QPushButton>

#include <array>
#include <type_traits>

namespace velmora::test {

inline constexpr std::array kParameterBoxes = {"mVideoQuality", "mVideoSize", "mFrameRate",
                                               "mAudioQuality", "mSampleRate"};

/// What both panels have in common; where they differ on purpose, the test says so.
template <class Panel> class OutputSettingsTest : public PanelTest<Panel> {
protected:
    static constexpr bool kIsCutter = std::is_same_v<Panel, cutterWinController>;

    /// The frame rates on offer for a profile with these.
    static QStringList offered(QStringList rates) {
        if (kIsCutter) {
            rates.prepend(kSourceFrameRate);
        }
        return rates;
    }
    void expectEnabled(bool enabled) const {
        for (const char* const name : kParameterBoxes) {
            EXPECT_EQ(this->box(name).isEnabled(), enabled) << name;
        }
        EXPECT_EQ(this->box("mComboBox").isEnabled(), enabled);
        EXPECT_EQ(this->template outlet<QPushButton>("mButCustomize").isEnabled(), enabled);
    }
    QString resultPath() const { return this->template outlet<QLabel>("mResultPath").text(); }
};

using Panels = ::testing::Types<cutterWinController, joinerWinController>;

} // namespace velmora::test
