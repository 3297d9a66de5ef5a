#include "MediaFacts.h"

#include "TestFiles.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace velmora::test {
namespace {

constexpr std::size_t kComparedPackets = 100;

std::string text(std::int64_t number) {
    return number == AV_NOPTS_VALUE ? "none" : std::to_string(number);
}

std::string text(AVRational number) {
    return std::to_string(number.num) + '/' + std::to_string(number.den);
}

std::string channelsOf(const AVCodecParameters& parameters) {
    std::array<char, 100> description{};
    av_channel_layout_describe(&parameters.ch_layout, description.data(), description.size());
    return description.data();
}

std::string extradataOf(const AVCodecParameters& parameters) {
    std::string bytes;
    for (int i = 0; i < parameters.extradata_size; ++i) {
        bytes += std::to_string(parameters.extradata[i]) + ' ';
    }
    return bytes;
}

Facts factsOf(const AVCodecParameters& parameters) {
    return {"type " + text(parameters.codec_type),
            "codec " + text(parameters.codec_id),
            "tag " + text(parameters.codec_tag),
            "extradata " + extradataOf(parameters),
            "format " + text(parameters.format),
            "bit rate " + text(parameters.bit_rate),
            "bits per coded sample " + text(parameters.bits_per_coded_sample),
            "bits per raw sample " + text(parameters.bits_per_raw_sample),
            "profile " + text(parameters.profile),
            "level " + text(parameters.level),
            "width " + text(parameters.width),
            "height " + text(parameters.height),
            "sample aspect ratio " + text(parameters.sample_aspect_ratio),
            "field order " + text(parameters.field_order),
            "colour range " + text(parameters.color_range),
            "colour primaries " + text(parameters.color_primaries),
            "colour transfer " + text(parameters.color_trc),
            "colour space " + text(parameters.color_space),
            "chroma location " + text(parameters.chroma_location),
            "video delay " + text(parameters.video_delay),
            "channels " + channelsOf(parameters),
            "sample rate " + text(parameters.sample_rate),
            "block align " + text(parameters.block_align),
            "frame size " + text(parameters.frame_size),
            "initial padding " + text(parameters.initial_padding),
            "trailing padding " + text(parameters.trailing_padding),
            "seek preroll " + text(parameters.seek_preroll)};
}

/// Matroska stores display times only; decoding times and what follows from them are guessed.
bool storesDecodingTimes(const AVFormatContext& container) {
    return std::string_view(container.iformat->name).find("matroska") == std::string_view::npos;
}

Facts factsOf(const AVFormatContext& container, const AVStream& stream) {
    Facts facts = factsOf(*stream.codecpar);
    facts.push_back("real frame rate " + text(stream.r_frame_rate));
    facts.push_back("average frame rate " + text(stream.avg_frame_rate));
    facts.push_back("time base " + text(stream.time_base));
    facts.push_back("stream sample aspect ratio " + text(stream.sample_aspect_ratio));
    facts.push_back("frames " + text(stream.nb_frames));
    facts.push_back("disposition " + text(stream.disposition));
    if (storesDecodingTimes(container)) {
        facts.push_back("start " + text(stream.start_time));
        facts.push_back("length " + text(stream.duration));
    }
    return facts;
}

Facts factsOf(const AVFormatContext& container) {
    return {"streams " + text(container.nb_streams), "start " + text(container.start_time),
            "duration " + text(container.duration), "bit rate " + text(container.bit_rate)};
}

struct PacketRead {
    int stream = 0;
    std::int64_t pts = 0;
    std::int64_t dts = 0;
    std::int64_t duration = 0;
    int flags = 0;
    Bytes bytes;
};

/// Reads on until there are enough packets of the two streams.
template <typename Read>
std::vector<PacketRead> packetsGivenBy(const InputMedia& media, Read read) {
    std::vector<PacketRead> packets;
    const PacketHandle packet(av_packet_alloc());
    while (packets.size() < kComparedPackets && read(*packet) >= 0) {
        if (packet->stream_index == media.videoStreamIndex() ||
            packet->stream_index == media.audioStreamIndex()) {
            packets.push_back({packet->stream_index, packet->pts, packet->dts, packet->duration,
                               packet->flags, Bytes(packet->data, packet->data + packet->size)});
        }
        av_packet_unref(packet.get());
    }
    return packets;
}

Facts factsOf(const AVFormatContext& container, const PacketRead& packet) {
    Facts facts{"stream " + text(packet.stream), "pts " + text(packet.pts),
                "duration " + text(packet.duration), "flags " + text(packet.flags),
                "size " + text(static_cast<std::int64_t>(packet.bytes.size()))};
    if (storesDecodingTimes(container)) {
        facts.push_back("dts " + text(packet.dts));
    }
    return facts;
}

/// Adds what is not the same.
void compare(const Facts& actual, const Facts& plain, const std::string& what, Facts& differences) {
    if (actual.size() != plain.size()) {
        differences.push_back(what + " has another number of facts");
        return;
    }
    for (std::size_t i = 0; i < actual.size(); ++i) {
        if (actual[i] != plain[i]) {
            differences.push_back(what + ": " + actual[i] + ", plainly: " + plain[i]);
        }
    }
}

} // namespace

InputContextHandle openPlainly(const std::string& path) {
    AVFormatContext* context = nullptr;
    const std::string address = "file:" + path;
    if (avformat_open_input(&context, address.c_str(), nullptr, nullptr) < 0 ||
        avformat_find_stream_info(context, nullptr) < 0) {
        avformat_close_input(&context);
    }
    return InputContextHandle(context);
}

Facts streamInfoDifferences(const InputMedia& media, const AVFormatContext& plain) {
    const AVFormatContext& actual = *media.container();
    Facts differences;
    compare(factsOf(actual), factsOf(plain), "container", differences);
    for (unsigned i = 0; i < std::min(actual.nb_streams, plain.nb_streams); ++i) {
        compare(factsOf(actual, *actual.streams[i]), factsOf(plain, *plain.streams[i]),
                "stream " + std::to_string(i), differences);
    }
    return differences;
}

Facts packetDifferences(InputMedia& media, AVFormatContext& plain) {
    const auto actual = packetsGivenBy(media, [&](AVPacket& packet) { return media.read(packet); });
    const auto expected =
        packetsGivenBy(media, [&](AVPacket& packet) { return av_read_frame(&plain, &packet); });
    if (actual.size() != expected.size()) {
        return {std::to_string(actual.size()) +
                " packets, plainly: " + std::to_string(expected.size())};
    }
    Facts differences;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        compare(factsOf(plain, actual[i]), factsOf(plain, expected[i]),
                "packet " + std::to_string(i), differences);
        if (actual[i].bytes != expected[i].bytes) {
            differences.push_back("packet " + std::to_string(i) + ": other bytes");
        }
    }
    return differences;
}

} // namespace velmora::test
