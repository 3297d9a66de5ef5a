#include "MainWindowSupport.h"

#include "CustomSlider.h"
#include "JoinerTable.h"
#include "ModalSession.h"
#include "customImageView.h"

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <utility>

namespace velmora::test {

SeenAlert plainAlert(const QString& message) {
    return {QGuiApplication::applicationDisplayName(), message, {"OK"}, {}, {}};
}

SeenAlert errorAlert(const QString& message) {
    return {"Error", message, {"OK"}, {}, {}};
}

bool operator==(const SeenAlert& a, const SeenAlert& b) {
    return a.title == b.title && a.message == b.message && a.buttons == b.buttons;
}

void PrintTo(const SeenAlert& alert, std::ostream* out) {
    *out << alert.title.toStdString() << ": " << alert.message.toStdString() << " ["
         << alert.buttons.join("|").toStdString() << ']';
}

std::vector<SeenAlert> alertsOf(const std::function<void()>& action) {
    std::vector<SeenAlert> seen;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&seen] {
        QMessageBox* const box = alertPanel();
        if (!box) {
            return;
        }
        QStringList buttons;
        for (const QAbstractButton* const button : box->buttons()) {
            buttons.append(button->text());
        }
        seen.push_back({box->windowTitle(), box->text(), buttons, box->informativeText(),
                        box->geometry().center()});
        answerAlert("OK");
    });
    watch.start(0);
    action();
    return seen;
}

InNextPanel::InNextPanel(std::function<void(QWidget&)> action) : action_(std::move(action)) {
    QObject::connect(&watch_, &QTimer::timeout, [this] { look(); });
    watch_.start(0);
}

void InNextPanel::look() {
    QWidget* const panel = modalWindow();
    if (!panel) {
        return;
    }
    watch_.stop();
    opened_ = true;
    action_(*panel);
    panel->close();
}

MainWindowTest::MainWindowTest() {
    controller_.awakeFromNib();
    controller_.mainWin().show();
    QApplication::processEvents();
}

void MainWindowTest::press(const char* button) {
    clickOnScreen(outlet(button));
}

void MainWindowTest::show(const char* workspace) {
    for (QPushButton* const segment : outlet("mButtonSeg").findChildren<QPushButton*>()) {
        if (segment->text() == workspace) {
            clickOnScreen(*segment);
        }
    }
}

void MainWindowTest::dropOnPreview(const QString& path) {
    ASSERT_TRUE(dropFiles(preview(), {path}));
}

bool MainWindowTest::isPanelOpen() {
    for (const QFileDialog* const panel : controller_.mainWin().findChildren<QFileDialog*>()) {
        if (panel->isVisible()) {
            return true;
        }
    }
    return false;
}

void MainWindowTest::choose(const QStringList& paths) {
    QFileDialog* const panel =
        controller_.mainWin().findChildren<QFileDialog*>("openPanel").value(0);
    ASSERT_NE(panel, nullptr) << "no open panel";
    auto* const name = panel->findChild<QLineEdit*>("fileNameEdit");
    name->setText('"' + paths.join("\" \"") + '"');
    QTest::keyClick(name, Qt::Key_Return);
    // The choice is taken, and the panel gone, once the event loop has run.
    EXPECT_TRUE(QTest::qWaitFor([] { return !QApplication::activeModalWidget(); }));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void MainWindowTest::scrubTo(int percent) {
    CustomSlider& slider = bar();
    const QPoint place(slider.width() * percent / 100, slider.height() / 2);
    QTest::mouseClick(&slider, Qt::LeftButton, {}, place);
}

void MainWindowTest::markStart(int percent) {
    bar().moveByUser(percent);
    press("mButtonLeft");
}

void MainWindowTest::markEnd(int percent) {
    bar().moveByUser(percent);
    press("mButtonRight");
}

void MainWindowTest::type(const char* field, const QString& text) {
    auto& edit = outlet<QLineEdit>(field);
    edit.setFocus();
    edit.selectAll();
    QTest::keyClicks(&edit, text);
}

} // namespace velmora::test
