#include "Snapshot.h"

#include "FileIdentity.h"
#include "InputMedia.h"
#include "KeyPackets.h"

#include <algorithm>

namespace velmora {
namespace {

/// The picture that the decoder gives after one more packet; null: none yet.
FrameHandle decode(Decoder& decoder, const AVPacket& packet) {
    decoder.send(packet); // a damaged packet gives no picture; the next one may
    return decoder.receive();
}

FrameHandle decodeRest(Decoder& decoder) {
    decoder.sendEnd();
    return decoder.receive();
}

/// The first picture that comes out when every packet is decoded.
FrameHandle firstPictureOfAll(InputMedia& input, Decoder& decoder) {
    while (const PacketHandle packet = input.readVideoPacket()) {
        if (FrameHandle picture = decode(decoder, *packet)) {
            return picture;
        }
    }
    return decodeRest(decoder);
}

/// Whether none of the pictures that may be shown before this one is.
bool isShownFirst(InputMedia& input, const AVPacket& key, int reorderDelay) {
    for (int i = 0; i <= reorderDelay; ++i) {
        const PacketHandle next = input.readVideoPacket();
        if (next == nullptr) {
            break;
        }
        if (next->pts == AV_NOPTS_VALUE || next->pts < key.pts) {
            return false;
        }
    }
    return key.pts != AV_NOPTS_VALUE;
}

/// The same picture of H.264, from the one packet that it needs. Its decoder shows nothing of the
/// pictures before a key picture whose own beginning it has not seen, so they need not be decoded.
/// Null when that cannot be known; some packets have been read then.
FrameHandle firstPictureOfKeyPacket(InputMedia& input, Decoder& decoder) {
    const PacketHandle key = readKeyPacket(input);
    if (key == nullptr || !isShownFirst(input, *key, decoder.context().has_b_frames)) {
        return nullptr;
    }
    FrameHandle picture = decode(decoder, *key);
    if (picture == nullptr) {
        picture = decodeRest(decoder);
    }
    // What is missing of a damaged picture is taken from those before it.
    const bool isWhole = picture != nullptr && picture->decode_error_flags == 0 &&
                         (picture->flags & AV_FRAME_FLAG_CORRUPT) == 0;
    return isWhole ? std::move(picture) : nullptr;
}

} // namespace

Snapshot::Snapshot() = default;
Snapshot::~Snapshot() = default;

int Snapshot::open(const std::string& path) {
    const auto current = FileIdentity::ofPath(path);
    if (input_ != nullptr && current && *current == input_->identity()) {
        return 0;
    }
    return reopen(path);
}

int Snapshot::reopen(const std::string& path) {
    input_ = std::make_unique<InputMedia>(path, nullptr);
    atStart_ = true;
    int result = input_->open();
    if (result >= 0) {
        result = input_->readStreamInfo();
    }
    if (result < 0) {
        input_.reset();
        return result;
    }
    placesAtStart_ = input_->knownPlaces();
    return 0;
}

FoundPicture Snapshot::find(double seconds) {
    FoundPicture found{.code = 0, .picture = nullptr, .seconds = seconds};
    // Each way has a decoder of its own: one that has seen other pictures may show others.
    if (input_->videoStream()->codecpar->codec_id == AV_CODEC_ID_H264) {
        Decoder decoder;
        found.code = goTo(found.seconds, decoder);
        found.picture = found.code >= 0 ? firstPictureOfKeyPacket(*input_, decoder) : nullptr;
    }
    if (found.code >= 0 && found.picture == nullptr) {
        Decoder decoder;
        found.seconds = seconds;
        found.code = goTo(found.seconds, decoder);
        found.picture = found.code >= 0 ? firstPictureOfAll(*input_, decoder) : nullptr;
    }
    return found;
}

int Snapshot::goTo(double& seconds, Decoder& decoder) {
    const double askedSeconds = seconds;
    const bool isAsOpened = input_->knownPlaces() == placesAtStart_;
    const bool isFound = askedSeconds > 0 && isAsOpened && input_->seek(seconds) >= 0;
    if (!isFound && !atStart_) { // reading begins where the file does
        if (const int result = reopen(std::string(input_->path())); result < 0) {
            return result;
        }
        if (askedSeconds > 0) {
            seconds = askedSeconds;
            input_->seek(seconds);
        }
    }
    atStart_ = false;
    return decoder.open(*input_->videoStream(), input_->path());
}

} // namespace velmora
