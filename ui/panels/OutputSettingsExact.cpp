#include "OutputSettingsForm.h"
#include "OutputSettingsPanel.h"
#include "PanelWindow.h"
#include "ui_OutputSettingsForm.h"

// The box "Exact" of the panel.

namespace velmora {

void OutputSettingsPanel::setTrouble(const QString& trouble) {
    if (trouble == trouble_) {
        return;
    }
    trouble_ = trouble;
    if (isLoaded()) {
        reencodesExactly_ = !trouble_.isEmpty();
        refreshExact();
    }
}

bool OutputSettingsPanel::isExactCopy() const {
    return selectedRow() != kReencodeRow && canCopyExactly() && copiesExactly_;
}

/// Of the row that is selected. A box that cannot be used shows what it is for the other one.
bool& OutputSettingsPanel::exactChoice() {
    return selectedRow() == kReencodeRow || !canCopyExactly() ? reencodesExactly_ : copiesExactly_;
}

QString OutputSettingsPanel::exactCopySentence() {
    return "Needs re-encoding: copies begin at key frames.";
}

void OutputSettingsPanel::refreshExact() {
    const bool reencodes = selectedRow() == kReencodeRow;
    const bool possible = reencodes || canCopyExactly();
    form_->setExact(exactChoice());
    const QString hint = reencodes ? exactSentence() : exactCopySentence();
    form_->showExact(possible, trouble_.isEmpty() ? hint : trouble_ + '\n' + hint);
}

} // namespace velmora
