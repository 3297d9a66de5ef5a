#include "Probe.h"

#include "Decoder.h"
#include "DisplayMatrix.h"
#include "FrameRate.h"
#include "InputMedia.h"
#include "Saturated.h"

namespace velmora {
namespace {

SampleAspectRatio sampleAspectRatioOf(const InputMedia& input) {
    // What the container says goes before what the coded pictures say.
    const AVRational told =
        av_guess_sample_aspect_ratio(input.container(), input.videoStream(), nullptr);
    return told.num > 0 && told.den > 0 ? SampleAspectRatio{told.num, told.den}
                                        : SampleAspectRatio();
}

ProbeResults::Video videoOf(const InputMedia& input, const AVCodecContext& decoder) {
    const AVStream& stream = *input.videoStream();
    return {.codecId = stream.codecpar->codec_id,
            .width = decoder.width,
            .height = decoder.height,
            .bitRate = saturated(decoder.bit_rate),
            .frameRate = correctedFrameRate(stream.r_frame_rate),
            .aspect = sampleAspectRatioOf(input),
            .liesOnItsSide = displayTurnOf(stream).swapsSides};
}

/// Without a decoder, what the container says is all there is.
ProbeResults::Audio audioOf(const AVStream& stream, const Decoder& decoder) {
    const AVCodecParameters& told = *stream.codecpar;
    ProbeResults::Audio audio{.codecId = told.codec_id,
                              .channels = told.ch_layout.nb_channels,
                              .sampleRate = told.sample_rate,
                              .bitRate = saturated(told.bit_rate)};
    if (decoder.isOpen()) {
        audio.channels = decoder.context().ch_layout.nb_channels;
        audio.sampleRate = decoder.context().sample_rate;
        audio.bitRate = saturated(decoder.context().bit_rate);
    }
    return audio;
}

/// Success, or what the probe fails with. Without a video stream nothing is to be opened.
ProbeResults::Code openVideo(const InputMedia& input, Decoder& decoder) {
    const AVStream* stream = input.videoStream();
    switch (stream != nullptr ? decoder.open(*stream, input.path()) : 0) {
    case 0:
        return ProbeResults::Success;
    case AVERROR_DECODER_NOT_FOUND:
        return ProbeResults::NoVideoDecoder;
    default:
        return ProbeResults::VideoDecoderFails;
    }
}

} // namespace

ProbeResults probe(const std::string& path) {
    ProbeResults results;
    InputMedia input(path, nullptr);
    if (input.open() < 0) {
        results.code = ProbeResults::CannotOpen;
        return results;
    }
    if (input.readStreamInfo() < 0) {
        results.code = ProbeResults::NoStreamInfo;
        return results;
    }
    results.streams = {.count = static_cast<std::int32_t>(input.container()->nb_streams),
                       .videoIndex = input.videoStreamIndex(),
                       .audioIndex = input.audioStreamIndex()};
    Decoder video;
    results.code = openVideo(input, video);
    if (results.code != ProbeResults::Success) {
        return results;
    }
    if (video.isOpen()) {
        results.video = videoOf(input, video.context());
    }
    if (const AVStream* stream = input.audioStream()) {
        Decoder audio;
        audio.open(*stream, path); // sound that cannot be decoded can still be copied
        results.audio = audioOf(*stream, audio);
    }
    results.durationUs = input.container()->duration;
    return results;
}

} // namespace velmora
