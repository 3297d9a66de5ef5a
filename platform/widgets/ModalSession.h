#pragma once

class QWidget;

namespace velmora {

// Modal sessions. They nest, and the innermost one is in force. Main thread.
//
// A stopped session leaves its window on screen, but Qt ends the modality of a window only by
// hiding it. So what is modal in Qt's eyes is a widget that never gets onto the screen, and for the
// session the window counts as its child. A click on a blocked window makes Qt hand the focus on to
// what is modal, which here cannot have it; so under X a session looks at the focus events
// themselves, which also works without a window manager. Wayland does not let a program bring its
// windows forward; there, its compositor keeps the window above the one that it belongs to.

/// Shows `window` and handles events, but no input to other windows, until the session is stopped.
/// A click on one of those brings `window` to the front, and it stays above its parent. Windows and
/// panels that belong to `window` are not blocked. The session also ends when the window is hidden
/// or destroyed, or the application quits.
void runModalForWindow(QWidget& window);

/// Ends the innermost session, if there is one. Its window stays on screen and blocks the others no
/// longer; its runModalForWindow() returns once the caller of this function has returned to the
/// event loop. Until then it stays the innermost one, and stopping it again does nothing.
void stopModal();

/// The window of the innermost session that has not been stopped; null without one.
QWidget* modalWindow();

} // namespace velmora
