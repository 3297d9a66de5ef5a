#include "OutputSettingsPanel.h"

#include "ConverterController.h"
#include "ModalSession.h"
#include "OpenPanel.h"
#include "OutputSettingsForm.h"
#include "PanelWindow.h"
#include "PlatformLog.h"
#include "PrimaryButton.h"
#include "UserName.h"
#include "ui_OutputSettingsForm.h"

#include <QCheckBox>
#include <QSettings>
#include <QStandardPaths>

#include <utility>

namespace velmora {
namespace {

/// What the user has set as a folder under this key, or else the usual place of films.
QString defaultFolder(const QString& key) {
    const QVariant stored = QSettings().value(key);
    return stored.isValid() ? stored.toString()
                            : QString("%1%2").arg("/Users/" + userName(), "/Movies");
}

} // namespace

OutputSettingsPanel::OutputSettingsPanel(QWidget* owner) : owner_(owner) {}

OutputSettingsPanel::~OutputSettingsPanel() = default;

QWidget& OutputSettingsPanel::window() {
    if (!window_) {
        load();
    }
    return *window_;
}

void OutputSettingsPanel::load() {
    window_ = std::make_unique<PanelWindow>(owner_);
    form_ = setupWindow(*window_);
    boxes_.emplace(outlets());
    window_->windowShouldClose = [this] { return windowShouldClose(); };
    windowDidLoad();
    bindActions();
    reencodesExactly_ = !trouble_.isEmpty();
    refreshExact();
    refreshResultPath();
}

void OutputSettingsPanel::close() {
    if (!window_ || !window_->isVisible()) {
        return;
    }
    for (QDialog* const above : window_->findChildren<QDialog*>()) {
        if (above->isVisible()) {
            above->close();
        }
    }
    window_->close();
}

void OutputSettingsPanel::bindActions() {
    const auto& form = outlets();
    QObject::connect(form.mComboBox, &QComboBox::activated, form_, [this] { mButFormatChange(); });
    QObject::connect(form.mComboBox->lineEdit(), &QLineEdit::editingFinished, form_,
                     [this] { profileTextEntered(); });
    QObject::connect(form.mComboBox, &QComboBox::editTextChanged, form_,
                     [this] { refreshResultPath(); });
    QObject::connect(&form_->rows(), &QButtonGroup::idClicked, form_, [this] { mButMakeChoice(); });
    QObject::connect(form.mExact, &QCheckBox::clicked, form_, [this](bool checked) {
        exactChoice() = checked;
        refreshExact();
    });
    QObject::connect(&form_->rows(), &QButtonGroup::idToggled, form_, [this] {
        refreshExact();
        refreshResultPath();
    });
    QObject::connect(form.mButBrowse, &QPushButton::clicked, form_, [this] { mButBrowse(); });
    QObject::connect(form.mButCustomize, &QPushButton::clicked, form_, [this] { mButCustomize(); });
    for (QLineEdit* const field : {form.mTextField1, form.mTextField2}) {
        QObject::connect(field, &QLineEdit::textChanged, form_, [this] { refreshResultPath(); });
    }
}

void OutputSettingsPanel::bindStart(QPushButton& button, std::function<void()> action) {
    makePrimary(button);
    QObject::connect(&button, &QPushButton::clicked, std::move(action));
}

void OutputSettingsPanel::windowDidLoad() {
    initMainWin();
    initProfile();
    setStatus(false);
}

void OutputSettingsPanel::initMainWin() {
    mInputPath = defaultFolder("inputpath");
    mOutputPath = defaultFolder("outputpath");
    outlets().mTextField1->clear();
    outlets().mTextField2->setText(mFilename);
}

void OutputSettingsPanel::setStatus(bool enabled) {
    boxes_->setEnabled(enabled);
    outlets().mComboBox->setEnabled(enabled);
    outlets().mButCustomize->setEnabled(enabled);
}

bool OutputSettingsPanel::windowShouldClose() {
    if (modalWindow() == window_.get()) { // a refused start has ended its session before
        stopModal();
    }
    return true;
}

void OutputSettingsPanel::mButMakeChoice() {
    platformLog(QString("index:%1").arg(selectedRow()));
    setStatus(selectedRow() == kReencodeRow);
}

void OutputSettingsPanel::mButBrowse() {
    const QString start = folder().isEmpty()
                              ? QStandardPaths::writableLocation(QStandardPaths::MoviesLocation)
                              : folder();
    beginOpenPanel(*window_, OpenPanelChoice::Folder, start,
                   [this](int result, const QStringList& paths) {
                       if (result == 1) {
                           outlets().mTextField1->setText(paths.value(0));
                       }
                   });
}

const Ui::OutputSettingsForm& OutputSettingsPanel::outlets() const {
    return form_->outlets();
}

int OutputSettingsPanel::selectedRow() const {
    return form_->selectedRow();
}

QString OutputSettingsPanel::folder() const {
    return outlets().mTextField1->text();
}

QString OutputSettingsPanel::profileText() const {
    return outlets().mComboBox->currentText();
}

void OutputSettingsPanel::setDefaultFilename(const QString& name) {
    mFilename = name;
    refreshResultPath();
}

void OutputSettingsPanel::setDirectExtension(const QString& extension) {
    mExtension = extension;
    refreshResultPath();
}

void OutputSettingsPanel::refreshResultPath() {
    if (!isLoaded()) {
        return;
    }
    if (folder().isEmpty()) {
        form_->showNoResultPath("Browse for a folder first");
    } else if (selectedRow() == kReencodeRow) {
        form_->showResultPath(composedPath(getExtension(profileText())));
    } else {
        form_->showResultPath(composedPath(expectedExtension()));
    }
}

} // namespace velmora
