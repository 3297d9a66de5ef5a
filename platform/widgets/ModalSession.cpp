#include "ModalSession.h"

#include "X11FocusWatch.h"

#include <QApplication>
#include <QCloseEvent>
#include <QEventLoop>
#include <QPointer>
#include <QWidget>
#include <QWindow>

#include <vector>

namespace velmora {
namespace {

/// Qt cannot end a window's own modality while it is on screen. So what is modal is this widget,
/// which never gets there, and the session's window counts as a child of it.
class Barrier : public QWidget {
public:
    explicit Barrier(QWidget& window) : window_(&window) {
        setAttribute(Qt::WA_DontShowOnScreen);
        setAttribute(Qt::WA_QuitOnClose, false);
        setWindowModality(Qt::ApplicationModal);
    }

protected:
    /// The application closes modal windows first when it quits.
    void closeEvent(QCloseEvent* event) override {
        event->setAccepted(!window_ || window_->close());
    }

private:
    QPointer<QWidget> window_;
};

class ModalSession : public QObject {
public:
    explicit ModalSession(QWidget& window) : window_(&window), barrier_(window) {
        sessions().push_back(this);
    }
    ~ModalSession() override {
        stop();
        sessions().pop_back();
    }
    ModalSession(const ModalSession&) = delete;
    ModalSession& operator=(const ModalSession&) = delete;

    /// The sessions that have not returned, innermost last.
    static std::vector<ModalSession*>& sessions() {
        static std::vector<ModalSession*> all;
        return all;
    }

    void run() {
        window_->show(); // while it belongs to its owner, over which the desktop then keeps it
        block();
        comeToTheFront();
        window_->installEventFilter(this);
        connect(window_, &QObject::destroyed, this, &ModalSession::stop);
        loop_.exec();
    }

    void stop() {
        if (stopped_) {
            return;
        }
        stopped_ = true;
        unblock();
        loop_.exit();
    }

    bool isStopped() const { return stopped_; }
    QWidget* window() const { return window_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Hide && !event->spontaneous()) {
            stop();
        }
        return QObject::eventFilter(watched, event);
    }

private:
    void block() {
        barrier_.show();
        handle_ = window_->windowHandle();
        parentBefore_ = handle_->transientParent();
        handle_->setTransientParent(barrier_.windowHandle());
    }

    void comeToTheFront() {
        window_->raise();
        window_->activateWindow();
    }

    /// Qt hands the focus of a blocked window on to the window that blocks it. Here that is the
    /// barrier, which cannot have it.
    void takeFocusFrom(WId focused) {
        if (blocks(focused)) {
            QMetaObject::invokeMethod(
                this,
                [this] {
                    if (!stopped_) {
                        comeToTheFront();
                    }
                },
                Qt::QueuedConnection);
        }
    }

    bool blocks(WId focused) const {
        // Also false while a window with a modality of its own, such as an alert, is over this one.
        if (stopped_ || QApplication::activeModalWidget() != &barrier_) {
            return false;
        }
        for (const QWindow* const window : QGuiApplication::topLevelWindows()) {
            if (window->handle() && window->winId() == focused) {
                return !barrier_.windowHandle()->isAncestorOf(window);
            }
        }
        return false;
    }

    void unblock() {
        if (handle_) {
            handle_->setTransientParent(parentBefore_);
        }
        barrier_.hide();
    }

    QPointer<QWidget> window_;
    Barrier barrier_;
    QPointer<QWindow> handle_;       ///< of the window
    QPointer<QWindow> parentBefore_; ///< what the window belonged to before the session
    QEventLoop loop_;
    X11FocusWatch focus_{[this](WId window) { takeFocusFrom(window); }};
    bool stopped_ = false;
};

} // namespace

void runModalForWindow(QWidget& window) {
    ModalSession(window).run();
}

void stopModal() {
    if (!ModalSession::sessions().empty()) {
        ModalSession::sessions().back()->stop();
    }
}

QWidget* modalWindow() {
    const std::vector<ModalSession*>& all = ModalSession::sessions();
    for (auto session = all.rbegin(); session != all.rend(); ++session) {
        if (!(*session)->isStopped()) {
            return (*session)->window();
        }
    }
    return nullptr;
}

} // namespace velmora
