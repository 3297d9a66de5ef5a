#include "Bundle.h"
#include "ComboBox.h"
#include "OutputSettingsForm.h"
#include "OutputSettingsPanel.h"
#include "PanelWindow.h"
#include "PlatformLog.h"
#include "SharedState.h"
#include "ui_OutputSettingsForm.h"

// The chosen profile and its parameters: in the boxes, in the editor and in the current setting.

namespace velmora {

QString OutputSettingsPanel::profilePath() const {
    return Bundle::pathForResource("profile", "plist");
}

void OutputSettingsPanel::initProfile() {
    const auto& form = outlets();
    mProfileInfo.initWithPath(profilePath());
    mProfileArray = mProfileInfo.getAllProfileName();
    form.mComboBox->addItems(mProfileArray);
    form.mRadioReencode->setEnabled(!mProfileArray.isEmpty());
    const QString first = mProfileArray.value(0);
    mSetInfo.initWithDict(mProfileInfo.getProfileByName(first));
    mSetInfo.isDefautValue = 1;
    mSetInfo.profileName = first;
    comboxClean();
    addSourceFrameRate();
    parameterChoice(mSetInfo.profileName);
}

void OutputSettingsPanel::parameterChoice(const QString& profileName) {
    profileOnShow_ = profileName;
    const Profile* const profile = mProfileInfo.getProfileByName(profileName);
    if (profile == nullptr) {
        return;
    }
    for (const ProfileParameter& parameter : profile->setInfo) {
        addChoices(parameter);
    }
}

void OutputSettingsPanel::addChoices(const ProfileParameter& parameter) {
    const QString& name = parameter.name;
    const bool isFrameRate = name == ParameterBoxes::kFrameRate;
    boxes_->add(parameter,
                isFrameRate ? frameRatePosition(parameter.position()) : parameter.position());
    if (name == "vEncoder") {
        mVideoEncoder = parameter.choice();
    } else if (name == "aEncoder") {
        mAudioEncoder = parameter.choice();
    } else if (name == "channel") {
        mAudioChannels = getChannel(parameter.choice());
    }
}

void OutputSettingsPanel::comboxClean() {
    boxes_->clear();
}

void OutputSettingsPanel::mButFormatChange() {
    platformLog(QString("index:%1 format:%2")
                    .arg(QString::number(selectedPosition(*outlets().mComboBox)), profileText()));
    comboxClean();
    parameterChoice(profileText());
    addSourceFrameRate();
}

void OutputSettingsPanel::profileTextEntered() {
    if (profileText() != profileOnShow_) {
        mButFormatChange();
    }
}

void OutputSettingsPanel::mButCustomize() {
    if (!editing_.edit(*window_, profilePath(), [this] { parametersToSetting(); })) {
        return;
    }
    const ProfileParameter* const rates = parameterOfProfile(ParameterBoxes::kFrameRate);
    parametersFromSetting(rates != nullptr ? rates->choice() : QString());
}

void OutputSettingsPanel::parametersToSetting() {
    getSetInfo();
    currentSetting->aChannels = channelChoice();
    currentSetting->profileName = profileText();
    currentSetting->isDefautValue = 0;
}

void OutputSettingsPanel::parametersFromSetting(const QString& frameRateShownBefore) {
    const NodeSetting& setting = *currentSetting;
    boxes_->select(setting);
    selectFrameRate(setting.vFrameRate, frameRateShownBefore);
    mVideoEncoder = setting.vEncoder;
    mAudioEncoder = setting.aEncoder;
    mAudioChannels = getChannel(setting.aChannels);
    getSetInfo();
    parseResolution(setting.vResolution);
}

void OutputSettingsPanel::getSetInfo() {
    NodeSetting& setting = *currentSetting;
    setting.aEncoder = mAudioEncoder;
    setting.aChannels = mAudioChannels;
    setting.vEncoder = mVideoEncoder;
    setting.vFrameRate = chosenFrameRate();
    boxes_->putInto(setting);
}

/// A parameter of the profile that the user has chosen; null without one.
const ProfileParameter* OutputSettingsPanel::parameterOfProfile(const QString& name) const {
    const Profile* const profile = mProfileInfo.getProfileByName(profileText());
    return profile != nullptr ? profile->parameter(name) : nullptr;
}

QString OutputSettingsPanel::channelChoice() const {
    if (const ProfileParameter* const channels = parameterOfProfile("channel")) {
        for (const QString& choice : channels->arrayValue) {
            if (getChannel(choice) == mAudioChannels) {
                return choice;
            }
        }
    }
    return mAudioChannels;
}

QString OutputSettingsPanel::getChannel(const QString& text) {
    return text.section(' ', 0, 0);
}

void OutputSettingsPanel::selectFrameRate(const QString& rate, const QString& /*shownBefore*/) {
    selectItem(*outlets().mFrameRate, rate);
}

QString OutputSettingsPanel::chosenFrameRate() const {
    return selectedItem(*outlets().mFrameRate);
}

} // namespace velmora
