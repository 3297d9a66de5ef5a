#include "ProgressWindow.h"

#include "ProgramColours.h"
#include "ui_ConverterFrom.h"

namespace velmora {

ProgressWindow::ProgressWindow(QWidget* owner)
    : PanelWindow(owner), outlets_(std::make_unique<Ui::ConverterFrom>()) {
    outlets_->setupUi(this);
    for (QProgressBar* bar : {outlets_->singleProgress, outlets_->totleProgress}) {
        QPalette colours = bar->palette();
        colours.setColor(QPalette::Highlight, kAccent);
        bar->setPalette(colours);
    }
}

ProgressWindow::~ProgressWindow() = default;

void ProgressWindow::show(QLabel& label, const QString& text) {
    label.setText(text);
    label.setAccessibleName(text);
}

void ProgressWindow::reject() {
    outlets_->btCancel->click();
}

} // namespace velmora
