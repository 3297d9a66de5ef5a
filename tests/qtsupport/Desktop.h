#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class QMessageBox;
class QWidget;

namespace velmora::test {

/// Calls `action` from the event loop that runs next, be it that of a modal window.
void fromTheEventLoop(std::function<void()> action);

/// The alert panel on screen; null without one.
QMessageBox* alertPanel();

/// Presses the button labelled `button` of the alert panel on screen, as a user does. The test
/// fails if there is no such panel or button.
void answerAlert(const QString& button);

/// Clicks where `widget` is on screen. Unlike QTest::mouseClick() on the widget itself, the click
/// comes through its window and does not arrive while a modal window blocks that.
void clickOnScreen(QWidget& widget);

/// Drops files from another program on the middle of `target`; whether it took them.
bool dropFiles(QWidget& target, const QStringList& paths);

} // namespace velmora::test
