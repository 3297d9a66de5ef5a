#pragma once

#include <QEvent>
#include <QMetaObject>
#include <QObject>
#include <QWidget>

#include <cstdlib>

namespace velmora::bench {

/// Ends the process as soon as the window has been painted.
class EndOncePainted : public QObject {
public:
    explicit EndOncePainted(QWidget& window) { window.installEventFilter(this); }

    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        if (event->type() == QEvent::Paint)
            QMetaObject::invokeMethod(
                this, [] { std::_Exit(0); }, Qt::QueuedConnection);
        return false;
    }
};

} // namespace velmora::bench
