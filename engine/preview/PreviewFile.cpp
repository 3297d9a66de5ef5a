#include "PreviewFile.h"

#include "BmpFile.h"
#include "InputMedia.h"

namespace velmora {
namespace {

constexpr int kPictureWidth = 320;
constexpr int kPictureHeight = 240;

} // namespace

int PreviewFile::show(const std::string& path, double& startSeconds,
                      const std::string& picturePath) {
    if (const int result = snapshot_.open(path); result < 0) {
        return result;
    }
    av_log(nullptr, AV_LOG_INFO, "video index:%d\n", videoStreamIndex());
    if (videoStreamIndex() < 0) {
        return 0;
    }
    if (holds(startSeconds, picturePath)) {
        startSeconds = written_->foundSeconds;
        return 0;
    }
    written_.reset();
    const FoundPicture found = snapshot_.find(startSeconds);
    if (found.picture != nullptr) {
        write(found, startSeconds, picturePath);
    }
    startSeconds = found.seconds;
    return found.code == AVERROR_DECODER_NOT_FOUND ? 0 : found.code;
}

bool PreviewFile::holds(double askedSeconds, const std::string& picturePath) const {
    return written_ && written_->source == snapshot_.input()->identity() &&
           written_->askedSeconds == askedSeconds &&
           FileIdentity::ofPath(picturePath) == written_->picture;
}

void PreviewFile::write(const FoundPicture& found, double askedSeconds,
                        const std::string& picturePath) {
    scaleToBmp(picturePath, *found.picture, kPictureWidth, kPictureHeight);
    if (const auto written = FileIdentity::ofPath(picturePath)) {
        written_ = {snapshot_.input()->identity(), *written, askedSeconds, found.seconds};
    }
}

int PreviewFile::videoStreamIndex() const {
    return snapshot_.input() != nullptr ? snapshot_.input()->videoStreamIndex() : -1;
}

int PreviewFile::audioStreamIndex() const {
    return snapshot_.input() != nullptr ? snapshot_.input()->audioStreamIndex() : -1;
}

} // namespace velmora
