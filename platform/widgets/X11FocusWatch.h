#pragma once

#include <QAbstractNativeEventFilter>
#include <QWindow>

#include <functional>

namespace velmora {

/// While it lives, tells to which of the program's windows the X server gives the keyboard, also
/// when Qt keeps quiet about it because the window is blocked. Tells nothing where there is no X
/// server. Main thread.
class X11FocusWatch : public QAbstractNativeEventFilter {
public:
    /// `focused` is called with the native id of the window, before Qt handles the event.
    explicit X11FocusWatch(std::function<void(WId window)> focused);
    ~X11FocusWatch() override;
    X11FocusWatch(const X11FocusWatch&) = delete;
    X11FocusWatch& operator=(const X11FocusWatch&) = delete;

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    std::function<void(WId)> focused_;
};

} // namespace velmora
