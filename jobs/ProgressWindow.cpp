#include "ProgressWindow.h"

#include "ui_ConverterFrom.h"

#include <QCloseEvent>
#include <QKeyEvent>

namespace velmora {
namespace {

constexpr QColor kAccent(0x1F, 0x6F, 0xB2);

} // namespace

ProgressWindow::ProgressWindow(QWidget* owner)
    : QWidget(owner, Qt::Dialog), outlets_(std::make_unique<Ui::ConverterFrom>()) {
    outlets_->setupUi(this);
    setAttribute(Qt::WA_QuitOnClose, false);
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

void ProgressWindow::closeEvent(QCloseEvent* event) {
    event->setAccepted(!shouldClose || shouldClose());
}

void ProgressWindow::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel))
        outlets_->btCancel->click();
    else
        QWidget::keyPressEvent(event);
}

} // namespace velmora
