#include "Snapshot.h"

#include "BmpFile.h"
#include "InputMedia.h"

#include <algorithm>

namespace velmora {
namespace {

constexpr int kPictureWidth = 320;
constexpr int kPictureHeight = 240;
// Several groups of pictures of any usual length; beyond, the stream has no key pictures.
constexpr int kMaxPacketsBeforeKey = 600;

PacketHandle readVideoPacket(InputMedia& input) {
    PacketHandle packet(av_packet_alloc());
    while (packet != nullptr && input.read(*packet) >= 0) {
        if (packet->stream_index == input.videoStreamIndex()) {
            return packet;
        }
        av_packet_unref(packet.get());
    }
    return nullptr;
}

/// The picture that the decoder gives after one more packet; null: the end of the stream.
FrameHandle decode(AVCodecContext& decoder, const AVPacket* packet) {
    FrameHandle picture(av_frame_alloc());
    if (picture == nullptr) {
        return nullptr;
    }
    avcodec_send_packet(&decoder, packet); // a damaged packet gives no picture; the next one may
    return avcodec_receive_frame(&decoder, picture.get()) >= 0 ? std::move(picture) : nullptr;
}

/// The first picture that comes out when every packet is decoded.
FrameHandle firstPictureOfAll(InputMedia& input) {
    while (const PacketHandle packet = readVideoPacket(input)) {
        if (FrameHandle picture = decode(*input.videoDecoder(), packet.get())) {
            return picture;
        }
    }
    return decode(*input.videoDecoder(), nullptr);
}

PacketHandle readKeyPacket(InputMedia& input) {
    for (int i = 0; i < kMaxPacketsBeforeKey; ++i) {
        PacketHandle packet = readVideoPacket(input);
        if (packet == nullptr || (packet->flags & AV_PKT_FLAG_KEY) != 0) {
            return packet;
        }
    }
    return nullptr;
}

/// Whether none of the pictures that may be shown before this one is.
bool isShownFirst(InputMedia& input, const AVPacket& key) {
    const int reorderDelay = input.videoDecoder()->has_b_frames;
    for (int i = 0; i <= reorderDelay; ++i) {
        const PacketHandle next = readVideoPacket(input);
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
FrameHandle firstPictureOfKeyPacket(InputMedia& input) {
    if (input.videoStream()->codecpar->codec_id != AV_CODEC_ID_H264) {
        return nullptr;
    }
    const PacketHandle key = readKeyPacket(input);
    if (key == nullptr || !isShownFirst(input, *key)) {
        return nullptr;
    }
    FrameHandle picture = decode(*input.videoDecoder(), key.get());
    if (picture == nullptr) {
        picture = decode(*input.videoDecoder(), nullptr);
    }
    // What is missing of a damaged picture is taken from those before it.
    const bool isWhole = picture != nullptr && picture->decode_error_flags == 0 &&
                         (picture->flags & AV_FRAME_FLAG_CORRUPT) == 0;
    return isWhole ? std::move(picture) : nullptr;
}

} // namespace

Snapshot::Snapshot() = default;
Snapshot::~Snapshot() = default;

int Snapshot::take(const std::string& path, double& startSeconds, const std::string& picturePath) {
    if (const int result = keepOrOpen(path); result < 0) {
        return result;
    }
    av_log(nullptr, AV_LOG_INFO, "video index:%d\n", input_->videoStreamIndex());
    if (input_->videoStream() == nullptr) {
        return 0;
    }
    if (const auto foundSeconds = foundSecondsOfWritten(startSeconds, picturePath)) {
        startSeconds = *foundSeconds;
        return 0;
    }
    written_.reset();
    const double askedSeconds = startSeconds;
    FrameHandle picture;
    const int result = findPicture(startSeconds, picture);
    if (picture != nullptr) {
        scaleToBmp(picturePath, *input_->videoDecoder(), *picture, kPictureWidth, kPictureHeight);
        if (const auto written = FileIdentity::ofPath(picturePath)) {
            written_ = {input_->identity(), *written, askedSeconds, startSeconds};
        }
    }
    if (input_ != nullptr) { // it may have had to be opened again
        input_->closeDecoders();
    }
    return result == AVERROR_DECODER_NOT_FOUND ? 0 : result;
}

int Snapshot::videoStreamIndex() const {
    return input_ != nullptr ? input_->videoStreamIndex() : -1;
}

int Snapshot::audioStreamIndex() const {
    return input_ != nullptr ? input_->audioStreamIndex() : -1;
}

int Snapshot::keepOrOpen(const std::string& path) {
    const auto current = FileIdentity::ofPath(path);
    if (input_ != nullptr && current && *current == input_->identity()) {
        return 0;
    }
    return open(path);
}

int Snapshot::open(const std::string& path) {
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

/// Nothing when the picture at `askedSeconds` is not what `picturePath` holds.
std::optional<double> Snapshot::foundSecondsOfWritten(double askedSeconds,
                                                      const std::string& picturePath) const {
    const bool isWritten = written_ && written_->source == input_->identity() &&
                           written_->askedSeconds == askedSeconds &&
                           FileIdentity::ofPath(picturePath) == written_->picture;
    return isWritten ? std::optional(written_->foundSeconds) : std::nullopt;
}

int Snapshot::findPicture(double& startSeconds, FrameHandle& picture) {
    const double askedSeconds = startSeconds;
    int result = 0;
    if (input_->videoStream()->codecpar->codec_id == AV_CODEC_ID_H264) {
        result = goTo(startSeconds);
        picture = result >= 0 ? firstPictureOfKeyPacket(*input_) : nullptr;
    }
    if (result >= 0 && picture == nullptr) {
        startSeconds = askedSeconds;
        result = goTo(startSeconds);
        picture = result >= 0 ? firstPictureOfAll(*input_) : nullptr;
    }
    return result;
}

// Each picture gets a decoder of its own: one that has seen other pictures may show others.
int Snapshot::goTo(double& startSeconds) {
    const double askedSeconds = startSeconds;
    const bool isAsOpened = input_->knownPlaces() == placesAtStart_;
    const bool found = askedSeconds > 0 && isAsOpened && input_->seek(startSeconds) >= 0;
    if (!found && !atStart_) { // reading begins where the file does
        if (const int result = open(std::string(input_->path())); result < 0) {
            return result;
        }
        if (askedSeconds > 0) {
            startSeconds = askedSeconds;
            input_->seek(startSeconds);
        }
    }
    atStart_ = false;
    return input_->openVideoDecoder();
}

} // namespace velmora
