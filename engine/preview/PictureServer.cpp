#include "PictureServer.h"

#include "EngineLog.h"
#include "KeyFrameReading.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace velmora {
namespace {

using Kind = PictureRequest::Kind;

constexpr std::int64_t kHalfMsUs = 500;

} // namespace

PictureServer::PictureServer(std::string path, Sink sink)
    : path_(std::move(path)), sink_(std::move(sink)), keyReader_([this] { readKeyFrames(); }),
      worker_([this] { work(); }) {}

/// Both threads look at the flags between two packets.
PictureServer::~PictureServer() {
    {
        const std::scoped_lock lock(mutex_);
        ending_ = true;
        stop_ = 1;
        giveUp_ = 1;
    }
    changed_.notify_all();
    worker_.join();
    keyReader_.join();
}

void PictureServer::ask(const PictureRequest& request) {
    {
        const std::scoped_lock lock(mutex_);
        wanted_ = request;
        giveUp_ = 1;
    }
    changed_.notify_all();
}

void PictureServer::readKeyFrames() {
    const ExpectedLogLines expected(ExpectedLogLines::Kind::Everything);
    {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] {
            return hasAnswered_ || ending_ || (wanted_ && wanted_->kind == Kind::KeyFrame);
        });
    }
    KeyFrames found = velmora::readKeyFrames(path_, &stop_);
    {
        const std::scoped_lock lock(mutex_);
        keyFrames_ = std::move(found);
    }
    changed_.notify_all();
}

void PictureServer::work() {
    const ExpectedLogLines expected(ExpectedLogLines::Kind::Everything);
    PictureSearch search(path_, stop_, giveUp_);
    const bool isOpen = search.open() >= 0;
    while (const auto request = nextRequest(search)) {
        if (isOpen) {
            serve(search, *request);
        } else {
            answer(search, *request, std::nullopt, true);
        }
        const std::scoped_lock lock(mutex_);
        hasAnswered_ = true;
        changed_.notify_all();
        mayFill_ = isOpen;
    }
}

/// Whether there is a request that can be served now.
bool PictureServer::isReady() const {
    return wanted_ && (wanted_->kind != Kind::KeyFrame || keyFrames_);
}

void PictureServer::takeKeyFrames(PictureSearch& search) {
    if (keyFrames_ && std::exchange(takesKeyFrames_, false)) {
        search.setKeyFrames(*keyFrames_);
        const auto groups = static_cast<std::int64_t>(keyFrames_->size()) - 1;
        groupUs_ = groups > 0 ? (keyFrames_->back() - keyFrames_->front()) / groups : 0;
    }
}

/// Fills while there is none; nothing at the end.
std::optional<PictureRequest> PictureServer::nextRequest(PictureSearch& search) {
    std::unique_lock lock(mutex_);
    while (!isReady() && !ending_) {
        takeKeyFrames(search);
        if (mayFill_ && !wanted_) {
            lock.unlock();
            mayFill_ = search.fill();
            lock.lock();
        } else {
            changed_.wait(lock);
        }
    }
    if (ending_) {
        return std::nullopt;
    }
    takeKeyFrames(search);
    giveUp_ = 0;
    return std::exchange(wanted_, std::nullopt);
}

void PictureServer::serve(PictureSearch& search, const PictureRequest& request) {
    search.setView(request.width, request.height);
    switch (request.kind) {
    case Kind::At:
        return servePosition(search, request, request.us);
    case Kind::KeyAt:
        if (const Found found = search.keyFrameAt(request.us)) {
            return answer(search, request, found,
                          std::llabs(search.positionOf(found->time) - request.us) <= kHalfMsUs);
        }
        return servePosition(search, request, request.us);
    case Kind::Step:
        if (const Found found = search.step(request.us, request.count); found || giveUp_ == 0) {
            answer(search, request, found, true);
        }
        return;
    case Kind::KeyFrame:
        return servePosition(search, request, keyFrameFrom(request, request.us));
    }
}

/// The nearest picture that is there, then the right one; if that cannot be had, the nearest stays.
void PictureServer::servePosition(PictureSearch& search, const PictureRequest& request,
                                  std::int64_t us) {
    Found nearest;
    if (!search.known(us)) {
        nearest = search.near(us);
        if (nearest && !search.known(us)) {
            answer(search, request, nearest, false);
        }
    }
    const Found found = search.at(us);
    if (found || giveUp_ == 0) {
        answer(search, request, found ? found : nearest, true);
    }
}

/// The position of the key frame so many after `us`; where there are not as many, of the last one,
/// and `us` itself where there is none.
std::int64_t PictureServer::keyFrameFrom(const PictureRequest& request, std::int64_t us) const {
    const KeyFrames& all = *keyFrames_; // there before such a request is served, and final
    const auto after = std::ranges::upper_bound(all, us + kHalfMsUs);
    const auto before = std::ranges::lower_bound(all, us - kHalfMsUs);
    if (request.count > 0) {
        const auto place = std::min<std::ptrdiff_t>(all.end() - after, request.count);
        return place > 0 ? after[place - 1] : us;
    }
    const auto place = std::min<std::ptrdiff_t>(before - all.begin(), -request.count);
    return place > 0 ? before[-place] : us;
}

void PictureServer::answer(PictureSearch& search, const PictureRequest& request, const Found& found,
                           bool exact) {
    PictureAnswer answer{.request = request, .us = request.us, .groupUs = groupUs_, .exact = exact};
    if (found) {
        answer.us = search.positionOf(found->time);
        search.scaler().paint(*found->picture, answer);
    }
    sink_(std::move(answer));
}

} // namespace velmora
