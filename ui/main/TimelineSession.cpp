#include "TimelineSession.h"

#include "ConversionEngine.h"
#include "CutterSession.h"
#include "MediaOperations.h"
#include "TimelineStrip.h"
#include "ui_MainWindow.h"

#include <chrono>
#include <cmath>
#include <vector>

namespace velmora {
namespace {

using std::chrono::milliseconds;

// Loading goes on in this thread meanwhile, and its picture comes first.
constexpr milliseconds kBeforeBegin(150);
constexpr milliseconds kRest(100);
constexpr double kUsPerSecond = 1'000'000.0;

std::int64_t probedPictureUs() {
    constexpr double kUsualRate = 25.0;
    const double rate = ConversionEngine::instance().sourceFrameRate;
    return std::llround(kUsPerSecond / (rate > 0 ? rate : kUsualRate));
}

} // namespace

TimelineSession::TimelineSession(const Ui::MainWindow& ui, CutterSession& cutter)
    : strip_(*ui.mTimeline), cutter_(cutter) {
    begin_.setSingleShot(true);
    begin_.setInterval(kBeforeBegin);
    rest_.setSingleShot(true);
    rest_.setInterval(kRest);
    connect(&begin_, &QTimer::timeout, this, &TimelineSession::findOut);
    connect(&rest_, &QTimer::timeout, this, &TimelineSession::readPictures);
    connect(&sound_, &SoundPeaksReader::changed, this,
            [this] { strip_.setPeaks(&sound_.peaks()); });
    connect(&strip_, &TimelineStrip::viewChanged, this, &TimelineSession::followView);
    connect(&strip_, &TimelineStrip::positionChosen, this, [this](qint64 us) { cutter_.goTo(us); });
    connectCutter();
    connectActions(ui);
}

void TimelineSession::connectCutter() {
    const CutEvents& events = cutter_.events();
    connect(&events, &CutEvents::loaded, this, &TimelineSession::showVideo);
    connect(&events, &CutEvents::unloaded, this, &TimelineSession::showNone);
    connect(&events, &CutEvents::positionMoved, &strip_, &TimelineStrip::setPosition);
    connect(&events, &CutEvents::marksMoved, this, [this](qint64 startMs, qint64 endMs) {
        strip_.setMarks(startMs * 1000, endMs * 1000);
    });
    connect(&events, &CutEvents::directCutChanged, this,
            [this] { strip_.setDirect(cutter_.directCut()); });
}

void TimelineSession::connectActions(const Ui::MainWindow& ui) {
    connect(ui.actionTimeline, &QAction::toggled, this, &TimelineSession::setShown);
    ui.actionZoomIn->setShortcuts({Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal});
    ui.actionZoomOut->setShortcut(Qt::CTRL | Qt::Key_Minus);
    connect(ui.actionZoomIn, &QAction::triggered, this, [this] {
        if (strip_.isVisible()) {
            strip_.zoomIn();
        }
    });
    connect(ui.actionZoomOut, &QAction::triggered, this, [this] {
        if (strip_.isVisible()) {
            strip_.zoomOut();
        }
    });
}

void TimelineSession::showVideo(const QString& path) {
    forget();
    path_ = path;
    strip_.setVideo(std::llround(static_cast<double>(cutter_.duration()) * kUsPerSecond),
                    probedPictureUs());
    if (!strip_.isHidden()) {
        begin_.start();
    }
}

void TimelineSession::showNone() {
    forget();
    path_.clear();
    strip_.setVideo(0, probedPictureUs());
}

void TimelineSession::setShown(bool shown) {
    strip_.setVisible(shown);
    forget();
    if (shown && !path_.isEmpty()) {
        findOut();
    }
}

void TimelineSession::forget() {
    begin_.stop();
    rest_.stop();
    keyFrames_.forget();
    pictures_.forget();
    sound_.clear();
}

void TimelineSession::findOut() {
    readKeyFrames();
    sound_.read(path_, strip_.model().lengthUs());
    followView(strip_.model().viewBeginUs(), strip_.model().viewEndUs());
}

void TimelineSession::readKeyFrames() {
    keyFrames_.ask(
        [path = path_.toStdString()](const StopFlag& stop) {
            return mediaOperations().readKeyFrames(path, stop);
        },
        [this](const KeyFrames& found) { strip_.setKeyFrames(found); });
}

void TimelineSession::followView(std::int64_t beginUs, std::int64_t endUs) {
    sound_.setVisible(beginUs, endUs);
    if (strip_.model().showsPictures() && !path_.isEmpty()) {
        rest_.start();
    }
}

void TimelineSession::readPictures() {
    const TimelineModel& model = strip_.model();
    const std::int64_t around = model.viewEndUs() - model.viewBeginUs();
    pictures_.ask(
        [path = path_.toStdString(), begin = model.viewBeginUs() - around,
         end = model.viewEndUs() + around](const StopFlag& stop) {
            return mediaOperations().readShownTimes(path, begin, end, stop);
        },
        [this](const std::vector<std::int64_t>& times) { strip_.setPictures(times); });
}

} // namespace velmora
