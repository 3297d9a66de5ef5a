#include "Desktop.h"

#include <QApplication>
#include <QDropEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QUrl>
#include <QWindow>
#include <gtest/gtest.h>

#include <utility>

namespace velmora::test {
namespace {

QAbstractButton* buttonOf(const QMessageBox& box, const QString& label) {
    for (QAbstractButton* const button : box.buttons()) {
        if (button->text() == label) {
            return button;
        }
    }
    return nullptr;
}

} // namespace

void fromTheEventLoop(std::function<void()> action) {
    QTimer::singleShot(0, std::move(action));
}

QMessageBox* alertPanel() {
    auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    return box && box->objectName() == "alertPanel" ? box : nullptr;
}

void answerAlert(const QString& button) {
    QMessageBox* const box = alertPanel();
    ASSERT_NE(box, nullptr) << "no alert on screen";
    QAbstractButton* const answer = buttonOf(*box, button);
    if (!answer) {
        box->reject();
        FAIL() << "no button " << button.toStdString();
    }
    QTest::mouseClick(answer, Qt::LeftButton);
}

void clickOnScreen(QWidget& widget) {
    const QPoint place = widget.mapTo(widget.window(), widget.rect().center());
    QTest::mouseClick(widget.window()->windowHandle(), Qt::LeftButton, {}, place);
}

bool dropFiles(QWidget& target, const QStringList& paths) {
    QMimeData files;
    QList<QUrl> urls;
    for (const QString& path : paths) {
        urls.append(QUrl::fromLocalFile(path));
    }
    files.setUrls(urls);
    const QPoint place = target.rect().center();
    QDragEnterEvent enter(place, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&target, &enter);
    if (!enter.isAccepted()) {
        return false;
    }
    QDropEvent drop(place, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&target, &drop);
    return drop.isAccepted();
}

} // namespace velmora::test
