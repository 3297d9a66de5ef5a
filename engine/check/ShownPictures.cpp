#include "ShownPictures.h"

#include "Decoder.h"
#include "EngineLog.h"
#include "InputMedia.h"
#include "TimeBases.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace velmora {
namespace {

// More than any decoder holds back at one thread, few enough to cost next to nothing.
constexpr int kPicturesDecoded = 20;

/// A key frame needs nothing but itself, which costs one picture's time and memory.
FrameHandle shownAlone(const InputMedia& input, const AVPacket& packet) {
    Decoder decoder;
    if (decoder.open(*input.videoStream(), input.path()) < 0) {
        return nullptr;
    }
    decoder.send(packet);
    decoder.sendEnd();
    return decoder.receive();
}

/// Decodes this packet and, where that is not enough, those behind it until a picture is shown;
/// null: none of the first is.
FrameHandle shownFrom(InputMedia& input, PacketHandle packet) {
    const ExpectedLogLines quiet(ExpectedLogLines::Kind::Everything);
    if (FrameHandle picture = shownAlone(input, *packet)) {
        return picture;
    }
    Decoder decoder;
    if (decoder.open(*input.videoStream(), input.path()) < 0) {
        return nullptr;
    }
    for (int i = 0; i < kPicturesDecoded && packet != nullptr; ++i) {
        decoder.send(*packet);
        if (FrameHandle picture = decoder.receive()) {
            return picture;
        }
        packet = input.readVideoPacket();
    }
    decoder.sendEnd();
    return decoder.receive();
}

/// The packets from this one to the end, if there are few enough to be decoded for a look at the
/// last; else none.
std::vector<PacketHandle> shortRest(InputMedia& input, PacketHandle packet) {
    constexpr std::int64_t kMostPixels = INT64_C(64) * 1024 * 1024;
    const AVCodecParameters& coded = *input.videoStream()->codecpar;
    const std::int64_t pixels = std::max(INT64_C(1) * coded.width * coded.height, INT64_C(1));
    std::vector<PacketHandle> packets;
    for (; packet != nullptr; packet = input.readVideoPacket()) {
        packets.push_back(std::move(packet));
        if (static_cast<std::int64_t>(packets.size()) * pixels > kMostPixels) {
            return {};
        }
    }
    return packets;
}

/// The time of the last picture that comes out whole; `packets` begin with a key frame.
std::int64_t lastShownOf(const InputMedia& input, const std::vector<PacketHandle>& packets) {
    const ExpectedLogLines quiet(ExpectedLogLines::Kind::Everything);
    Decoder decoder;
    std::int64_t last = INT64_MIN;
    if (decoder.open(*input.videoStream(), input.path()) < 0) {
        return last;
    }
    const auto receive = [&] {
        while (const FrameHandle picture = decoder.receive()) {
            const bool isWhole =
                (picture->flags & AV_FRAME_FLAG_CORRUPT) == 0 && picture->decode_error_flags == 0;
            last = isWhole ? std::max(last, picture->best_effort_timestamp) : last;
        }
    };
    for (const PacketHandle& packet : packets) {
        decoder.send(*packet);
        receive();
    }
    decoder.sendEnd();
    for (std::size_t i = 0; i <= packets.size() && !decoder.hasEnded(); ++i) {
        receive(); // which ends at damage, too
    }
    return last;
}

/// Some codecs have packets of pictures that are never shown, also at their end.
bool mayEndHidden(AVCodecID codec) {
    return codec == AV_CODEC_ID_VP8 || codec == AV_CODEC_ID_VP9 || codec == AV_CODEC_ID_AV1;
}

/// Whether the last of the packets is shown. All of a long group would take too long: then it is
/// its key frame that is looked at.
bool showsLastOf(InputMedia& input, PacketHandle key) {
    PacketHandle first(av_packet_clone(key.get()));
    const std::vector<PacketHandle> packets = shortRest(input, std::move(key));
    if (packets.empty() || first == nullptr) {
        return first != nullptr && shownAlone(input, *first) != nullptr;
    }
    const auto shown = lastShownOf(input, packets);
    const bool tellsTimes = std::ranges::none_of(
        packets, [](const auto& packet) { return packet->pts == AV_NOPTS_VALUE; });
    if (!tellsTimes || mayEndHidden(input.videoStream()->codecpar->codec_id)) {
        return shown != INT64_MIN;
    }
    const auto& last =
        *std::ranges::max_element(packets, {}, [](const auto& packet) { return packet->pts; });
    return shown >= last->pts;
}

} // namespace

bool showsFirstPicture(InputMedia& input) {
    PacketHandle first = input.readVideoPacket();
    if (first == nullptr) {
        return false;
    }
    const std::int64_t time = first->pts;
    const FrameHandle picture = shownFrom(input, std::move(first));
    return picture != nullptr &&
           (time == AV_NOPTS_VALUE || picture->pts == AV_NOPTS_VALUE || picture->pts <= time);
}

bool showsLastPicture(InputMedia& input) {
    const AVStream& pictures = *input.videoStream();
    if (input.container()->duration <= 0) {
        return true;
    }
    // Elsewhere what is found is a key frame, also one so damaged that it no longer looks like one.
    const bool landsAnywhere = (input.container()->iformat->flags & AVFMT_TS_DISCONT) != 0;
    const std::int64_t endUs = input.startUs() + input.container()->duration;
    for (const std::int64_t backUs : {INT64_C(0), INT64_C(2'000'000), INT64_C(10'000'000)}) {
        const std::int64_t from = av_rescale_q(std::max(endUs - backUs, input.startUs()),
                                               kMicrosecond, pictures.time_base);
        if (input.seekStream(pictures.index, from) < 0) {
            return true;
        }
        PacketHandle packet = input.readVideoPacket();
        while (packet != nullptr && landsAnywhere && (packet->flags & AV_PKT_FLAG_KEY) == 0) {
            packet = input.readVideoPacket();
        }
        if (packet != nullptr) {
            return showsLastOf(input, std::move(packet));
        }
    }
    return true;
}

} // namespace velmora
