#include "Probe.h"

#include "FrameRate.h"
#include "InputMedia.h"

#include <algorithm>
#include <limits>

namespace velmora {
namespace {

std::int32_t fitting(std::int64_t value) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(
        value, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
}

SampleAspectRatio sampleAspectRatioOf(const InputMedia& input) {
    // What the container says goes before what the coded pictures say.
    const AVRational told =
        av_guess_sample_aspect_ratio(input.container(), input.videoStream(), nullptr);
    return told.num > 0 && told.den > 0 ? SampleAspectRatio{told.num, told.den}
                                        : SampleAspectRatio();
}

ProbeResults::Video videoOf(const InputMedia& input) {
    const AVStream& stream = *input.videoStream();
    const AVCodecContext& decoder = *input.videoDecoder();
    return {.codecId = stream.codecpar->codec_id,
            .width = decoder.width,
            .height = decoder.height,
            .bitRate = fitting(decoder.bit_rate),
            .frameRate = correctedFrameRate(stream.r_frame_rate),
            .aspect = sampleAspectRatioOf(input)};
}

ProbeResults::Audio audioOf(const InputMedia& input) {
    const AVStream* stream = input.audioStream();
    const AVCodecParameters none{};
    // Without a decoder, what the container says is all there is.
    const AVCodecParameters& told = stream != nullptr ? *stream->codecpar : none;
    ProbeResults::Audio audio{.codecId = told.codec_id,
                              .channels = told.ch_layout.nb_channels,
                              .sampleRate = told.sample_rate,
                              .bitRate = fitting(told.bit_rate)};
    if (const AVCodecContext* decoder = input.audioDecoder(); decoder != nullptr) {
        audio.channels = decoder->ch_layout.nb_channels;
        audio.sampleRate = decoder->sample_rate;
        audio.bitRate = fitting(decoder->bit_rate);
    }
    return audio;
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
    if (const int opened = input.openVideoDecoder(); opened < 0) {
        results.code = opened == AVERROR_DECODER_NOT_FOUND ? ProbeResults::NoVideoDecoder
                                                           : ProbeResults::VideoDecoderFails;
        return results;
    }
    input.openAudioDecoder(); // sound that cannot be decoded can still be copied
    if (input.videoStream() != nullptr) {
        results.video = videoOf(input);
    }
    results.audio = audioOf(input);
    results.durationUs = input.container()->duration;
    return results;
}

} // namespace velmora
