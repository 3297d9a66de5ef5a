#include "Screen.h"

#include "Desktop.h"
#include "ModalSession.h"

#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <QWindow>

#include <cstdlib>

namespace velmora::test {
namespace {

constexpr auto kMainWindow = "mainWin";

QWidget* visibleIn(QWidget& window, const QString& name) {
    if (window.objectName() == name && window.isVisible()) {
        return &window;
    }
    for (QWidget* const widget : window.findChildren<QWidget*>(name)) {
        if (widget->isVisible() && widget->window()->windowHandle()) {
            return widget;
        }
    }
    return nullptr;
}

bool isInFront(const QWidget& widget) {
    const QWidget* const modal = QApplication::activeModalWidget();
    return !modal || modal == widget.window() || modalWindow() == widget.window();
}

} // namespace

QWidget* onScreen(const QString& name) {
    if (QWidget* const front = modalWindow()) {
        if (QWidget* const found = visibleIn(*front, name)) {
            return found;
        }
    }
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (QWidget* const found = visibleIn(*window, name)) {
            return found;
        }
    }
    return nullptr;
}

QWidget* windowInUse() {
    QWidget* const active = QApplication::activeWindow();
    return active && active->windowHandle() ? active : onScreen(kMainWindow);
}

void click(const QString& name) {
    if (QWidget* const widget = onScreen(name)) {
        clickOnScreen(*widget);
    }
}

void clickMark(const QString& name) {
    QWidget* const widget = onScreen(name);
    if (!widget) {
        return;
    }
    constexpr int inset = 8;
    const QPoint place = widget->mapTo(widget->window(), QPoint(inset, widget->height() / 2));
    QTest::mouseClick(widget->window()->windowHandle(), Qt::LeftButton, {}, place);
}

void pressKey(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    if (const QWidget* const window = windowInUse()) {
        QTest::keyClick(window->windowHandle(), key, modifiers);
    }
}

void typeInto(const QString& name, const QString& text) {
    auto* const field = qobject_cast<QLineEdit*>(onScreen(name));
    if (!field || !isInFront(*field)) {
        return;
    }
    field->setFocus();
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Delete);
    QTest::keyClicks(field, text);
}

void moveIn(const QString& box, int steps) {
    QWidget* const widget = onScreen(box);
    if (!widget || !widget->isEnabled() || !isInFront(*widget)) {
        return;
    }
    for (int i = 0; i < std::abs(steps); ++i) {
        QTest::keyClick(widget, steps < 0 ? Qt::Key_Up : Qt::Key_Down);
    }
}

void close(const QString& window) {
    QWidget* const found = onScreen(window);
    if (found && isInFront(*found)) {
        found->close();
    }
}

} // namespace velmora::test
