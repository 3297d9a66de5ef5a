#include "PictureFile.h"

#include "EngineLog.h"
#include "FileWriter.h"
#include "PictureFilter.h"
#include "PictureReader.h"

#include <utility>

namespace velmora {
namespace {

/// The picture, upright and in full size, as red, green and blue.
FrameHandle uprightPicture(PictureReader& reader, FrameHandle picture) {
    AVFormatContext& container = *reader.input().container();
    AVStream& stream = *container.streams[reader.stream().index];
    constexpr PictureFormat kColours{.pixels = AV_PIX_FMT_RGB24, .step = 1};
    PictureFilter filter(container, stream,
                         {.size = uprightSize(container, stream, kColours), .format = kColours});
    if (filter.send(std::move(picture)) < 0 || filter.sendEnd() < 0) {
        return nullptr;
    }
    return filter.receive();
}

PacketHandle encodedAsPng(const AVFrame& picture) {
    const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_PNG);
    CodecContextHandle encoder(avcodec_alloc_context3(codec));
    PacketHandle packet(av_packet_alloc());
    if (encoder == nullptr || packet == nullptr) {
        return nullptr;
    }
    encoder->width = picture.width;
    encoder->height = picture.height;
    encoder->pix_fmt = static_cast<AVPixelFormat>(picture.format);
    encoder->time_base = {1, 1};
    const bool encoded = avcodec_open2(encoder.get(), codec, nullptr) >= 0 &&
                         avcodec_send_frame(encoder.get(), &picture) >= 0 &&
                         avcodec_receive_packet(encoder.get(), packet.get()) >= 0;
    return encoded ? std::move(packet) : nullptr;
}

int writeWhole(const std::string& path, const AVPacket& content) {
    FileWriter file;
    const int result = file.open(path);
    if (result < 0) {
        return result;
    }
    avio_write(file.io(), content.data, content.size);
    return file.close();
}

} // namespace

std::int32_t writePicture(const std::string& path, std::int64_t timeMs,
                          const std::string& picturePath) {
    constexpr std::int64_t kUsPerMs = 1000;
    constexpr std::int64_t kHalfMsUs = 500;
    if (InputFiles::mayReach({path}, picturePath)) {
        logFailure(picturePath, Operation::WritePicture, AVERROR(EEXIST));
        return AVERROR(EEXIST);
    }
    PictureReader reader(path, nullptr);
    if (const int result = reader.open(); result < 0) {
        return result;
    }
    FrameHandle picture =
        reader.pictureAt(timeMs * kUsPerMs - kHalfMsUs + reader.input().startUs());
    if (picture != nullptr) {
        picture = uprightPicture(reader, std::move(picture));
    }
    const PacketHandle png = picture != nullptr ? encodedAsPng(*picture) : nullptr;
    const int result = png != nullptr ? writeWhole(picturePath, *png) : AVERROR_INVALIDDATA;
    if (result < 0) {
        logFailure(picturePath, Operation::WritePicture, result);
    }
    return result;
}

} // namespace velmora
