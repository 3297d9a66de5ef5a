#include "ParameterBoxes.h"

#include "ComboBox.h"
#include "NodeSetting.h"
#include "ProfileInfo.h"
#include "ui_OutputSettingsForm.h"

#include <algorithm>
#include <array>

namespace velmora {
namespace {

struct Row {
    const char* parameter; ///< its name in a profile
    QComboBox* Ui::OutputSettingsForm::*box;
    QString NodeSetting::*field;
};

constexpr Row kFrameRateRow{ParameterBoxes::kFrameRate, &Ui::OutputSettingsForm::mFrameRate,
                            &NodeSetting::vFrameRate};
constexpr std::array<Row, 4> kOtherRows{{
    {"aSamplerate", &Ui::OutputSettingsForm::mSampleRate, &NodeSetting::aSamplerate},
    {"aBitRate", &Ui::OutputSettingsForm::mAudioQuality, &NodeSetting::aBitrate},
    {"vBitRate", &Ui::OutputSettingsForm::mVideoQuality, &NodeSetting::vBitrate},
    {"vResolution", &Ui::OutputSettingsForm::mVideoSize, &NodeSetting::vResolution},
}};

template <class Action> void forEachRow(const Action& action) {
    std::ranges::for_each(kOtherRows, action);
    action(kFrameRateRow);
}

} // namespace

ParameterBoxes::ParameterBoxes(const Ui::OutputSettingsForm& form) : form_(form) {}

void ParameterBoxes::add(const ProfileParameter& parameter, int position) {
    forEachRow([&](const Row& row) {
        if (parameter.name == row.parameter) {
            QComboBox& box = *(form_.*row.box);
            box.addItems(parameter.arrayValue);
            box.setCurrentIndex(position);
        }
    });
}

void ParameterBoxes::clear() {
    forEachRow([this](const Row& row) { (form_.*row.box)->clear(); });
}

void ParameterBoxes::setEnabled(bool enabled) {
    forEachRow([this, enabled](const Row& row) { (form_.*row.box)->setEnabled(enabled); });
}

void ParameterBoxes::putInto(NodeSetting& setting) const {
    for (const Row& row : kOtherRows) {
        setting.*row.field = selectedItem(*(form_.*row.box));
    }
}

void ParameterBoxes::select(const NodeSetting& setting) {
    for (const Row& row : kOtherRows) {
        selectItem(*(form_.*row.box), setting.*row.field);
    }
}

} // namespace velmora
