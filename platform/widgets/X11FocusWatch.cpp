#include "X11FocusWatch.h"

#include <QCoreApplication>

#include <utility>

#include <xcb/xproto.h> // only its types: no X library is linked

namespace velmora {
namespace {

constexpr unsigned kSentByAClient = 0x80; ///< of an event's type

bool tellsOfTheWindowItself(const xcb_focus_in_event_t& event) {
    return event.mode != XCB_NOTIFY_MODE_GRAB && event.mode != XCB_NOTIFY_MODE_UNGRAB &&
           event.detail != XCB_NOTIFY_DETAIL_POINTER;
}

} // namespace

X11FocusWatch::X11FocusWatch(std::function<void(WId)> focused) : focused_(std::move(focused)) {
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11FocusWatch::~X11FocusWatch() {
    QCoreApplication::instance()->removeNativeEventFilter(this);
}

bool X11FocusWatch::nativeEventFilter(const QByteArray& eventType, void* message,
                                      qintptr* /*result*/) {
    if (eventType != "xcb_generic_event_t") {
        return false;
    }
    const auto& event = *static_cast<const xcb_focus_in_event_t*>(message);
    if ((event.response_type & ~kSentByAClient) == XCB_FOCUS_IN && tellsOfTheWindowItself(event)) {
        focused_(event.event);
    }
    return false;
}

} // namespace velmora
