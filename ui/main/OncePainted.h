#pragma once

#include <QEvent>
#include <QMetaObject>
#include <QObject>
#include <QWidget>

#include <functional>
#include <utility>

namespace velmora {

/// While it lives: calls `action` from the event loop, once, after the window's first painting.
class OncePainted : public QObject {
public:
    OncePainted(QWidget& window, std::function<void()> action) : action_(std::move(action)) {
        window.installEventFilter(this);
    }

    bool eventFilter(QObject* window, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            window->removeEventFilter(this);
            QMetaObject::invokeMethod(
                this, [this] { action_(); }, Qt::QueuedConnection);
        }
        return false;
    }

private:
    std::function<void()> action_;
};

} // namespace velmora
