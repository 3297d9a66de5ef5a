#include "MainWindow.h"

#include "ProgramColours.h"
#include "ui_MainWindow.h"

#include <QCloseEvent>
#include <QFile>
#include <QFontDatabase>
#include <QScreen>
#include <QStyle>

#include <utility>

namespace velmora {
namespace {

QString styleSheetText() {
    QFile file(":/MainWindow.qss");
    return file.open(QIODevice::ReadOnly) ? withProgramColours(QString::fromUtf8(file.readAll()))
                                          : QString();
}

/// Dark on light whatever the desktop's theme, because the window's colour is.
QPalette lightPalette() {
    QPalette palette(QColor("#f4fafe"), QColor("#baddf7"));
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, kInk);
        palette.setColor(QPalette::Disabled, role, QColor("#6b8598"));
    }
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::AlternateBase, QColor("#f1f8fd"));
    palette.setColor(QPalette::ToolTipBase, Qt::white);
    palette.setColor(QPalette::PlaceholderText, QColor("#47647a"));
    palette.setColor(QPalette::Highlight, kAccent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, Qt::blue);
    return palette;
}

} // namespace

MainWindow::MainWindow() : ui_(std::make_unique<Ui::MainWindow>()) {
    setPalette(lightPalette());
    ui_->setupUi(this);
    // On the contents only: file panels are children of the window and keep the desktop's looks.
    ui_->centralwidget->setStyleSheet(styleSheetText());
    useTabularDigits();
    fitToScreen();
    ui_->centralwidget->setFocus(); // nothing stands out until the user goes somewhere
}

MainWindow::~MainWindow() = default;

void MainWindow::setCloseAction(std::function<void()> action) {
    closeAction_ = std::move(action);
}

void MainWindow::setBackgroundColor(const QColor& color) {
    QPalette colors = palette();
    colors.setColor(QPalette::Window, color);
    setPalette(colors);
}

/// All digits of the desktop's fixed font are equally wide, so times do not jump as they run.
void MainWindow::useTabularDigits() {
    QFont digits = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    digits.setPointSizeF(font().pointSizeF());
    for (QLineEdit* const field :
         {static_cast<QLineEdit*>(ui_->mLabelStart), static_cast<QLineEdit*>(ui_->mLabelEnd),
          ui_->mLabelDuration, ui_->mLabelDrag}) {
        field->setFont(digits);
    }
}

/// What does not fit on the screen with the window manager's frame around it is out of reach.
void MainWindow::fitToScreen() {
    constexpr QSize kUsualFrame(16, 40);
    resize(size().boundedTo(screen()->availableSize() - kUsualFrame));
}

void MainWindow::showLoadedStage(const QSize& displaySize) {
    constexpr int kRim = 8;
    ui_->mAddFileToolTip->hide();
    ui_->mButtonSetImage->setToolTip({});
    ui_->mButtonSetImage->hide();
    PreviewStage& stage = *ui_->previewStage;
    stage.setContentsMargins(kRim, kRim, kRim, kRim);
    stage.setDisplaySize(displaySize.isEmpty() ? QSize(16, 9) : displaySize);
    if (!stage.property("loaded").toBool()) {
        stage.setProperty("loaded", true);
        stage.style()->polish(&stage);
    }
}

void MainWindow::closeEvent(QCloseEvent* event) {
    event->accept();
    if (closeAction_) {
        closeAction_();
    }
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        Q_EMIT activated();
    }
}

} // namespace velmora
