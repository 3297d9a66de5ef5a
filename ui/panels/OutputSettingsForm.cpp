#include "OutputSettingsForm.h"

#include "ui_OutputSettingsForm.h"

#include <QButtonGroup>

namespace velmora {
namespace {

constexpr int kDirect = 0;
constexpr int kReencode = 1;

/// A title without the mark of its shortcut.
QString spoken(QString title) {
    return title.remove('&');
}

void setTitle(QRadioButton& button, const QString& title) {
    button.setText(title);
    button.setAccessibleName(spoken(title));
}

void setHint(QLabel& label, QRadioButton& button, const QString& hint) {
    label.setText(hint);
    label.setAccessibleName(hint);
    button.setAccessibleDescription(hint);
}

void setItalic(QLabel& label, bool italic) {
    QFont font = label.font();
    font.setItalic(italic);
    label.setFont(font);
}

/// Combo boxes take what is typed as it is: they neither complete it nor keep it as an entry.
void keepTextAsTyped(QWidget& form) {
    for (QComboBox* const box : form.findChildren<QComboBox*>()) {
        box->setCompleter(nullptr);
    }
}

/// Labels are found by what they say.
void nameLabels(QWidget& form) {
    for (QLabel* const label : form.findChildren<QLabel*>()) {
        if (label->accessibleName().isEmpty()) {
            label->setAccessibleName(spoken(label->text()));
        }
    }
}

} // namespace

OutputSettingsForm::OutputSettingsForm(QWidget* parent)
    : QWidget(parent), outlets_(std::make_unique<Ui::OutputSettingsForm>()) {
    outlets_->setupUi(this);
    outlets_->mRadioRows->setId(outlets_->mRadioDirect, kDirect);
    outlets_->mRadioRows->setId(outlets_->mRadioReencode, kReencode);
    keepTextAsTyped(*this);
    nameLabels(*this);
}

OutputSettingsForm::~OutputSettingsForm() = default;

int OutputSettingsForm::selectedRow() const {
    return outlets_->mRadioRows->checkedId();
}

QButtonGroup& OutputSettingsForm::rows() const {
    return *outlets_->mRadioRows;
}

void OutputSettingsForm::showResultPath(const QString& path) {
    outlets_->mResultPath->setText(path);
    outlets_->mResultPath->setToolTip(path.toHtmlEscaped());
    outlets_->mResultPath->setAccessibleDescription(path);
    setItalic(*outlets_->mResultPath, false);
}

void OutputSettingsForm::showNoResultPath(const QString& hint) {
    showResultPath(hint);
    setItalic(*outlets_->mResultPath, true);
}

bool OutputSettingsForm::isExact() const {
    return outlets_->mExact->isEnabled() && outlets_->mExact->isChecked();
}

void OutputSettingsForm::setExact(bool exact) {
    outlets_->mExact->setChecked(exact);
}

void OutputSettingsForm::showExact(bool enabled, const QString& hint) {
    outlets_->mExact->setEnabled(enabled);
    outlets_->mExact->setAccessibleDescription(hint);
    outlets_->mExactHint->setText(hint);
    outlets_->mExactHint->setAccessibleName(hint);
}

void OutputSettingsForm::setDirectTitle(const QString& title) {
    setTitle(*outlets_->mRadioDirect, title);
}

void OutputSettingsForm::setDirectHint(const QString& hint) {
    directHint_ = hint;
    setHint(*outlets_->mDirectHint, *outlets_->mRadioDirect, hint);
}

void OutputSettingsForm::addToDirectHint(const QString& sentence) {
    setHint(*outlets_->mDirectHint, *outlets_->mRadioDirect,
            sentence.isEmpty() ? directHint_ : directHint_ + '\n' + sentence);
}

void OutputSettingsForm::setReencodeTitle(const QString& title) {
    setTitle(*outlets_->mRadioReencode, title);
}

void OutputSettingsForm::setReencodeHint(const QString& hint) {
    setHint(*outlets_->mReencodeHint, *outlets_->mRadioReencode, hint);
}

} // namespace velmora
