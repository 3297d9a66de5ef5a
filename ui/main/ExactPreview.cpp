#include "ExactPreview.h"

#include "CustomSlider.h"
#include "CutterSession.h"
#include "ExactPictureView.h"
#include "MainWindow.h"
#include "MediaOperations.h"
#include "PreviewStage.h"
#include "TimeText.h"
#include "customImageView.h"
#include "ui_MainWindow.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace velmora {
namespace {

using Kind = PictureRequest::Kind;

constexpr std::chrono::milliseconds kRest(120); // after which a drag has come to a stop
constexpr const char* kNoPicture = "No picture of this file can be shown.";

QImage imageOf(const PictureAnswer& answer) {
    // The picture outlives the answer.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the constructor wants bytes
    const auto* const bytes = reinterpret_cast<const uchar*>(answer.pixels.data());
    return QImage(bytes, answer.width, answer.height, QImage::Format_RGB32).copy();
}

} // namespace

ExactPreview::ExactPreview(MainWindow& window, CutterSession& session)
    : window_(window), session_(session),
      view_(*new ExactPictureView(*window.outlets().mCustomImage)) { // NOLINT: the preview's
    for (QTimer* const timer : {&rest_, &resized_}) {
        timer->setSingleShot(true);
        connect(timer, &QTimer::timeout, this, [this] {
            if (!isMoving_) {
                ask({.kind = Kind::At, .us = session_.positionUs()});
            }
        });
    }
    connect(&session.events(), &CutEvents::loaded, this, &ExactPreview::load);
    connect(&session.events(), &CutEvents::unloaded, this, &ExactPreview::unload);
    connect(&session.events(), &CutEvents::positionMoved, this, &ExactPreview::showPosition);
    connect(&view_, &ExactPictureView::resized, this, [this] { resized_.start(0); });
}

ExactPreview::~ExactPreview() = default;

/// The load goes first: the service would take processor time from it.
void ExactPreview::load(const QString& path) {
    liesOnItsSide_ = mediaOperations().liesOnItsSide();
    const std::uint64_t load = ++loads_;
    QTimer::singleShot(0, this, [this, path, load] {
        if (load == loads_) {
            begin(path);
        }
    });
}

void ExactPreview::begin(const QString& path) {
    const auto take = [this, load = loads_](PictureAnswer answer) {
        QMetaObject::invokeMethod(
            this,
            [this, load, answer = std::move(answer)] {
                if (load == loads_) {
                    this->take(answer);
                }
            },
            Qt::QueuedConnection);
    };
    service_ = mediaOperations().openPictures(path.toStdString(), take);
    ask({.kind = Kind::At, .us = session_.positionUs()});
}

void ExactPreview::unload() {
    ++loads_;
    service_.reset();
    rest_.stop();
    isMoving_ = false;
    shownUs_ = -1;
    groupUs_ = 0;
    view_.clear();
    window_.outlets().previewStage->setTurned(false);
}

void ExactPreview::setShown(bool shown) {
    shown_ = shown;
    view_.setVisible(shown);
    const bool hasPicture = !view_.picture().isNull();
    window_.outlets().previewStage->setTurned(shown && hasPicture && liesOnItsSide_);
    if (shown && !isMoving_) {
        ask({.kind = Kind::At, .us = session_.positionUs()});
    }
}

/// Each move comes here several times.
void ExactPreview::showPosition(std::int64_t us) {
    const bool isAsked = asked_.us == us && (asked_.kind == Kind::At || asked_.kind == Kind::KeyAt);
    if (shownUs_ == us || (isAsked && !isMoving_ && shownUs_ < 0)) {
        return;
    }
    isMoving_ = false;
    shownUs_ = -1;
    const bool coarse = isCoarse();
    ask({.kind = coarse ? Kind::KeyAt : Kind::At, .us = us});
    if (coarse) {
        rest_.start(kRest);
    }
}

/// Whether the user drags the bar, and each of its pixels is more than a group of pictures.
bool ExactPreview::isCoarse() {
    const bool isFast = sinceMove_.isValid() && sinceMove_.elapsed() < kRest.count();
    sinceMove_.start();
    const int width = std::max(window_.outlets().mCustomSlider->width(), 1);
    const double pixelUs = static_cast<double>(session_.duration()) * 1e6 / width;
    return isFast && groupUs_ > 0 && pixelUs > static_cast<double>(groupUs_);
}

void ExactPreview::stepPictures(int count) {
    move(Kind::Step, count);
}

void ExactPreview::stepKeyFrames(int count) {
    move(Kind::KeyFrame, count);
}

void ExactPreview::stepSeconds(int count) {
    constexpr std::int64_t kSecondUs = 1'000'000;
    if (session_.isLoaded()) {
        session_.goTo(session_.positionUs() + count * kSecondUs);
    }
}

void ExactPreview::move(Kind kind, int count) {
    const bool isMore = isMoving_ && asked_.kind == kind;
    const int sum = count + (isMore ? asked_.count : 0);
    isMoving_ = service_ != nullptr;
    ask({.kind = kind, .us = session_.positionUs(), .count = sum});
}

void ExactPreview::ask(PictureRequest request) {
    if (!service_ || (!shown_ && !isMoving_)) {
        return;
    }
    constexpr int kLargest = 8192;
    const QSize size = view_.deviceSize().boundedTo({kLargest, kLargest});
    request.number = asked_.number + 1;
    request.width = size.width();
    request.height = size.height();
    asked_ = request;
    rest_.stop();
    service_->ask(request);
}

void ExactPreview::take(const PictureAnswer& answer) {
    groupUs_ = answer.groupUs;
    const bool isNewest = answer.request.number == asked_.number;
    show(answer);
    if (!isNewest || !answer.exact) {
        return;
    }
    const bool hasMoved = std::exchange(isMoving_, false) && !answer.pixels.empty();
    shownUs_ = hasMoved ? answer.us : answer.request.us;
    if (hasMoved) {
        view_.repaint(); // what follows the bar takes the small picture first
        session_.goTo(answer.us);
    }
}

void ExactPreview::show(const PictureAnswer& answer) {
    if (!answer.pixels.empty()) {
        const QString time = millisecondsText(std::max<std::int64_t>(answer.us, 0) / 1000);
        view_.setPicture(imageOf(answer), "The picture at " + time);
        window_.outlets().previewStage->setTurned(shown_ && liesOnItsSide_);
    } else if (answer.exact) {
        view_.setSentence(kNoPicture);
    }
}

} // namespace velmora
