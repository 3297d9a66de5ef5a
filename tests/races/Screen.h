#pragma once

#include <QString>
#include <Qt>

class QWidget;

namespace velmora::test {

// What a user's eyes and hands do. A click or key comes through its window, so a modal window keeps
// it from the others. What is not on screen is left alone.

/// The widget of this name that is on screen, in the window in front if there are several; else
/// null.
QWidget* onScreen(const QString& name);
/// The window that has the keyboard, else the main window.
QWidget* windowInUse();

void click(const QString& name);
/// Clicks the mark of a radio button, which may be wider than its text.
void clickMark(const QString& name);
void pressKey(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
/// Types over what is in a field.
void typeInto(const QString& name, const QString& text);
/// Moves up or down in a box by keys.
void moveIn(const QString& box, int steps);
/// Clicks the close box of a window that is not blocked.
void close(const QString& window);

} // namespace velmora::test
