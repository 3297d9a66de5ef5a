#include "SettingControler.h"

#include "ComboBox.h"
#include "ModalSession.h"
#include "PanelWindow.h"
#include "PlatformLog.h"
#include "PrimaryButton.h"
#include "ProfileParameters.h"
#include "SharedState.h"
#include "ui_SettingFrom.h"

#include <algorithm>
#include <array>

namespace velmora {

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): one per process, by design
std::shared_ptr<ProfileInfo> editorProfileStore;

namespace {

/// The box that offers the choices of a parameter, and the field for the chosen one.
struct Pairing {
    QComboBox* Ui::SettingFrom::*box;
    QString NodeSetting::*field;
};

constexpr std::array kPairings = {
    Pairing{&Ui::SettingFrom::comAEncoder, &NodeSetting::aEncoder},
    Pairing{&Ui::SettingFrom::comASamplerate, &NodeSetting::aSamplerate},
    Pairing{&Ui::SettingFrom::comABitrate, &NodeSetting::aBitrate},
    Pairing{&Ui::SettingFrom::comAChannels, &NodeSetting::aChannels},
    Pairing{&Ui::SettingFrom::comVEncoder, &NodeSetting::vEncoder},
    Pairing{&Ui::SettingFrom::comVResolution, &NodeSetting::vResolution},
    Pairing{&Ui::SettingFrom::comVBitrate, &NodeSetting::vBitrate},
    Pairing{&Ui::SettingFrom::comVFrameRate, &NodeSetting::vFrameRate},
};

} // namespace

SettingControler::SettingControler() = default;
SettingControler::~SettingControler() = default;

bool SettingControler::showSettingFrom(QWidget* parent) {
    platformLog("test show setting");
    if (!winSettingController_) {
        loadWindow(parent);
    }
    confirmed_ = false;
    winSettingController_->show();
    initProfile();
    runModalForWindow(*winSettingController_);
    return confirmed_;
}

void SettingControler::initProfile() {
    for (const Pairing& pairing : kPairings) {
        (outlets_.get()->*pairing.box)->clear();
    }
    outlets_->proName->setText(currentSetting->profileName);
    if (const Profile* const known = profile()) {
        for (const ProfileParameter& parameter : known->setInfo) {
            if (QComboBox* const box = boxOf(parameter.name)) {
                box->addItems(parameter.arrayValue);
                box->setCurrentIndex(parameter.position());
            }
        }
    }
    if (currentSetting->isDefautValue == 0) {
        selectOwnValues();
    }
}

void SettingControler::selectOwnValues() {
    for (const Pairing& pairing : kPairings) {
        QComboBox& box = *(outlets_.get()->*pairing.box);
        const int position = box.findText((*currentSetting).*pairing.field,
                                          Qt::MatchExactly | Qt::MatchCaseSensitive);
        // A value that the profile does not offer leaves its default selected.
        if (position >= 0) {
            box.setCurrentIndex(position);
        }
    }
}

void SettingControler::okClick() {
    for (const Pairing& pairing : kPairings) {
        (*currentSetting).*pairing.field = selectedItem(*(outlets_.get()->*pairing.box));
    }
    confirmed_ = true;
    winSettingController_->close();
}

void SettingControler::cancelClick() {
    winSettingController_->close();
}

void SettingControler::defaultClick() {
    const Profile* const known = profile();
    outlets_->proName->setText(currentSetting->profileName);
    if (known == nullptr) {
        return;
    }
    for (const ProfileParameter& parameter : known->setInfo) {
        if (QComboBox* const box = boxOf(parameter.name)) {
            box->setCurrentIndex(parameter.position());
        }
    }
}

bool SettingControler::windowShouldClose() {
    stopModal();
    return true;
}

void SettingControler::loadWindow(QWidget* parent) {
    winSettingController_ = std::make_unique<PanelWindow>(parent);
    outlets_ = std::make_unique<Ui::SettingFrom>();
    outlets_->setupUi(winSettingController_.get());
    winSettingController_->windowShouldClose = windowShouldClose;
    makePrimary(*outlets_->btOK);
    const QWidget* const window = winSettingController_.get();
    QObject::connect(outlets_->btOK, &QPushButton::clicked, window, [this] { okClick(); });
    QObject::connect(outlets_->btCancel, &QPushButton::clicked, window, [this] { cancelClick(); });
    QObject::connect(outlets_->btDefault, &QPushButton::clicked, window,
                     [this] { defaultClick(); });
    awakeFromNib();
}

const Profile* SettingControler::profile() {
    return editorProfileStore ? editorProfileStore->getProfileByName(currentSetting->profileName)
                              : nullptr;
}

QComboBox* SettingControler::boxOf(const QString& parameterName) const {
    const auto field = fieldOfParameter(parameterName);
    const auto* const found = std::ranges::find(kPairings, field, &Pairing::field);
    return found != kPairings.end() ? outlets_.get()->*found->box : nullptr;
}

} // namespace velmora
