#include "SnapshotReference.h"

#include "MediaFacts.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace velmora::test {
namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 240;

InputContextHandle opened(const std::string& path) {
    InputContextHandle container = openPlainly(path);
    if (container == nullptr) {
        throw std::runtime_error(path + " cannot be read");
    }
    return container;
}

/// The one that is shown. As in a cut, what is neither it nor the last sound is not read, and so
/// plays no part in seeking either.
const AVStream* lastVideoStream(const AVFormatContext& container) {
    AVStream* video = nullptr;
    AVStream* audio = nullptr;
    for (AVStream* stream : std::span(container.streams, container.nb_streams)) {
        stream->discard = AVDISCARD_ALL;
        const bool isAttached = (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
        if (stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !isAttached) {
            video = stream;
        } else if (stream->codecpar->codec_type == AVMEDIA_TYPE_AUDIO) {
            audio = stream;
        }
    }
    for (AVStream* read : {video, audio}) {
        if (read != nullptr) {
            read->discard = AVDISCARD_DEFAULT;
        }
    }
    return video;
}

CodecContextHandle openDecoder(const AVStream& stream) {
    const AVCodec* codec = avcodec_find_decoder(stream.codecpar->codec_id);
    CodecContextHandle decoder(avcodec_alloc_context3(codec));
    if (codec == nullptr || decoder == nullptr ||
        avcodec_parameters_to_context(decoder.get(), stream.codecpar) < 0 ||
        avcodec_open2(decoder.get(), codec, nullptr) < 0) {
        throw std::runtime_error("the decoder cannot be opened");
    }
    return decoder;
}

/// Returns the time on the container's time line.
double seek(AVFormatContext& container, double seconds) {
    const bool timesMayJump = (container.iformat->flags & AVFMT_TS_DISCONT) != 0;
    const std::int64_t size = avio_size(container.pb);
    if (timesMayJump && size > 0 && container.duration > 0) {
        const double position = static_cast<double>(size) * seconds * 1'000'000.0 /
                                static_cast<double>(container.duration);
        const auto byte = std::clamp(static_cast<std::int64_t>(position), INT64_C(0), size);
        av_seek_frame(&container, -1, byte, AVSEEK_FLAG_BYTE);
        return seconds;
    }
    if (container.start_time != AV_NOPTS_VALUE) {
        seconds += static_cast<double>(container.start_time) / 1'000'000.0;
    }
    av_seek_frame(&container, -1, static_cast<std::int64_t>(seconds * 1'000'000.0),
                  AVSEEK_FLAG_BACKWARD);
    return seconds;
}

FrameHandle firstPicture(AVFormatContext& container, const AVStream& stream) {
    const CodecContextHandle decoder = openDecoder(stream);
    const PacketHandle packet(av_packet_alloc());
    FrameHandle picture(av_frame_alloc());
    while (av_read_frame(&container, packet.get()) >= 0) {
        if (packet->stream_index == stream.index) {
            avcodec_send_packet(decoder.get(), packet.get());
            if (avcodec_receive_frame(decoder.get(), picture.get()) >= 0) {
                return picture;
            }
        }
        av_packet_unref(packet.get());
    }
    avcodec_send_packet(decoder.get(), nullptr); // pictures that wait for later ones
    return avcodec_receive_frame(decoder.get(), picture.get()) >= 0 ? std::move(picture) : nullptr;
}

Bytes scaled(const AVFrame& picture) {
    const ScalerHandle scaler(sws_getContext(
        picture.width, picture.height, static_cast<AVPixelFormat>(picture.format), kWidth, kHeight,
        AV_PIX_FMT_BGR24, SWS_FAST_BILINEAR, nullptr, nullptr, nullptr));
    Bytes pixels(std::size_t{3} * kWidth * kHeight);
    const std::array<std::uint8_t*, 4> planes{pixels.data()};
    const std::array<int, 4> strides{3 * kWidth};
    sws_scale(scaler.get(), picture.data, picture.linesize, 0, picture.height, planes.data(),
              strides.data());
    return pixels;
}

void append(Bytes& bytes, std::uint32_t number, int count) {
    for (int i = 0; i < count; ++i) {
        bytes.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
    }
}

} // namespace

ReferenceSnapshot referenceSnapshot(const std::string& path, double seconds) {
    const InputContextHandle container = opened(path);
    const AVStream* stream = lastVideoStream(*container);
    if (stream == nullptr) {
        return {std::nullopt, seconds};
    }
    if (seconds > 0) {
        seconds = seek(*container, seconds);
    }
    const FrameHandle picture = firstPicture(*container, *stream);
    if (picture == nullptr) {
        return {std::nullopt, seconds};
    }
    return {bmpFileOf(scaled(*picture), kWidth, kHeight), seconds};
}

std::optional<double> durationOf(const std::string& path) {
    const InputContextHandle container = opened(path);
    if (container->duration == AV_NOPTS_VALUE) {
        return std::nullopt;
    }
    return static_cast<double>(container->duration) / AV_TIME_BASE;
}

Bytes bmpFileOf(std::span<const std::uint8_t> pixels, std::uint32_t width, std::uint32_t height) {
    const std::uint32_t imageBytes = (width * 3 + 3) / 4 * height * 4;
    Bytes file{'B', 'M'};
    append(file, imageBytes + 54, 4);
    append(file, 0, 4);
    append(file, 54, 4); // where the pixels begin
    append(file, 40, 4); // the size of the rest of the header
    append(file, width, 4);
    append(file, height, 4);
    append(file, 1, 2);  // planes
    append(file, 24, 2); // bits of a pixel
    append(file, 0, 4);  // not compressed
    append(file, imageBytes, 4);
    file.insert(file.end(), 16, 0);
    for (std::uint32_t row = height; row-- > 0;) {
        const auto bytes = pixels.subspan(std::size_t{row} * width * 3, std::size_t{width} * 3);
        file.insert(file.end(), bytes.begin(), bytes.end());
    }
    return file;
}

} // namespace velmora::test
