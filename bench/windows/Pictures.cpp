#include "Pictures.h"

#include "CustomSlider.h"
#include "ExactPictureView.h"
#include "MainController.h"
#include "MainWindow.h"
#include "MediaOperations.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QLineEdit>
#include <QThread>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

namespace velmora::bench {
namespace {

constexpr double kRate = 30;
constexpr qint64 kTooLongMs = 60'000;

/// The main window with a video, and what its exact preview has painted.
class Preview : public QObject {
public:
    explicit Preview(const QString& file) {
        controller_.awakeFromNib();
        controller_.mainWin().show();
        QApplication::processEvents();
        view_ = controller_.mainWin().findChild<ExactPictureView*>();
        bar_ = controller_.mainWin().findChild<CustomSlider*>("mCustomSlider");
        view_->installEventFilter(this);
        controller_.mouseDownListener(file);
        waitFor([this] { return !painted_.isEmpty(); });
    }

    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        if (event->type() == QEvent::Paint && !view_->picture().isNull()) {
            painted_ = view_->accessibleDescription();
            ++paintings_;
            if (tookMs_ < 0 && hasPainted(wanted_)) {
                tookMs_ = static_cast<double>(clock_.nsecsElapsed()) / 1e6;
            }
        }
        return false;
    }

    bool waitFor(const std::function<bool()>& condition) {
        QElapsedTimer timer;
        timer.start();
        while (!condition() && timer.elapsed() < kTooLongMs) {
            QApplication::processEvents(QEventLoop::AllEvents, 1);
            if (!condition()) {
                QThread::usleep(100);
            }
        }
        QApplication::processEvents(); // the painting itself
        return condition();
    }
    void rest(qint64 ms) {
        QElapsedTimer timer;
        timer.start();
        waitFor([&] { return timer.elapsed() >= ms; });
    }
    void moveTo(int picture) {
        bar_->moveByUser(picture / kRate / static_cast<double>(controller_.duration()) * 100);
    }
    /// Files with times in whole milliseconds may have them rounded up.
    bool hasPainted(int picture) const {
        const auto ms = static_cast<int>(picture * 1000 / kRate);
        return painted_ == descriptionOf(ms) || painted_ == descriptionOf(ms + 1);
    }
    /// Milliseconds until `picture` has been painted after `action`.
    double timeOf(const std::function<void()>& action, int picture) {
        wanted_ = picture;
        tookMs_ = -1;
        clock_.start();
        action();
        complete_ = waitFor([&] { return tookMs_ >= 0; }) && complete_;
        return tookMs_;
    }
    double timeToMove(int picture) {
        return timeOf([&] { moveTo(picture); }, picture);
    }
    void trigger(const char* action) {
        controller_.mainWin().findChild<QAction*>(action)->trigger();
    }
    CustomSlider& bar() { return *bar_; }
    int paintings() const { return paintings_; }
    int print(const std::vector<double>& times) const {
        std::cout << '[';
        for (std::size_t i = 0; i < times.size(); ++i) {
            std::cout << (i > 0 ? ", " : "") << times[i];
        }
        std::cout << "]\n";
        return complete_ ? 0 : 1;
    }

private:
    static QString descriptionOf(int ms) {
        return QString::asprintf("The picture at %02d:%02d:%02d.%03d", ms / 3'600'000,
                                 ms / 60'000 % 60, ms / 1000 % 60, ms % 1000);
    }

    MainController controller_;
    ExactPictureView* view_ = nullptr;
    CustomSlider* bar_ = nullptr;
    QString painted_;
    int paintings_ = 0;
    QElapsedTimer clock_;
    int wanted_ = -1;    ///< the picture that is waited for
    double tookMs_ = -1; ///< until it was painted; below 0: not yet
    bool complete_ = true;
};

/// The numbers of the pictures of key frames.
std::vector<int> keyPictures(const QString& file) {
    const StopFlag stop{0};
    std::vector<int> numbers;
    for (const std::int64_t us : mediaOperations().readKeyFrames(file.toStdString(), stop)) {
        numbers.push_back(qRound(static_cast<double>(us) * kRate / 1e6));
    }
    return numbers;
}

/// `count` of them, to and fro; first not the one that is on show from the beginning.
std::vector<int> spread(const std::vector<int>& numbers, int count) {
    std::vector<int> chosen;
    for (int i = 0; i < count; ++i) {
        chosen.push_back(numbers[(static_cast<std::size_t>(i) * 37 + 1) % numbers.size()]);
    }
    return chosen;
}

} // namespace

int steps(const QString& file, int first, int count) {
    constexpr qint64 kRestMs = 4000;
    Preview preview(file);
    preview.timeToMove(first);
    preview.rest(kRestMs);
    std::vector<double> times;
    for (int i = 0; i < count; ++i) {
        const bool on = i < count / 2;
        const int place = first + (on ? i + 1 : count - 1 - i - count % 2);
        times.push_back(preview.timeOf(
            [&] { preview.trigger(on ? "actionNextPicture" : "actionPreviousPicture"); }, place));
    }
    return preview.print(times);
}

int keyFrames(const QString& file, int count) {
    Preview preview(file);
    std::vector<double> times;
    for (const int picture : spread(keyPictures(file), count)) {
        times.push_back(preview.timeToMove(picture));
    }
    return preview.print(times);
}

int coldPictures(const QString& file, int after, int count) {
    Preview preview(file);
    std::vector<double> times;
    for (const int picture : spread(keyPictures(file), count)) {
        times.push_back(preview.timeToMove(picture + after));
    }
    return preview.print(times);
}

int drag(const QString& file) {
    constexpr qint64 kLengthMs = 2000;
    Preview preview(file);
    preview.rest(1000);
    std::vector<double> times;
    QElapsedTimer timer;
    QElapsedTimer since;
    timer.start();
    since.start();
    while (timer.elapsed() < kLengthMs) {
        const int before = preview.paintings();
        preview.bar().moveByUser(100.0 * static_cast<double>(timer.elapsed()) / kLengthMs);
        QApplication::processEvents(QEventLoop::AllEvents, 8); // as often as a mouse tells
        if (preview.paintings() != before) {
            times.push_back(static_cast<double>(since.nsecsElapsed()) / 1e6);
            since.start();
        }
    }
    return preview.print(times);
}

int scrubbedMemory(const QString& file) {
    constexpr qint64 kRestMs = 3000;
    Preview preview(file);
    for (const int percent : {10, 30, 50, 51, 70, 90}) {
        preview.bar().moveByUser(percent);
        preview.rest(kRestMs);
    }
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmRSS:") || line.starts_with("VmHWM:")) {
            std::cout << line << '\n';
        }
    }
    return 0;
}

} // namespace velmora::bench
