#include "RefusedSettings.h"

#include "AudioEncoder.h"
#include "InputMedia.h"
#include "VideoEncoder.h"

extern "C" {
#include <libavformat/avformat.h>
}

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

namespace velmora {
namespace {

using Kind = FailureCause::Kind;

// What there is to choose from, most useful first.
constexpr std::array kContainers{"mp4", "mkv", "mov", "avi", "ts", "flv", "wmv", "mpg"};

const AVOutputFormat* formatOf(const Job& job) {
    return av_guess_format(nullptr, job.outputPaths.front().c_str(), nullptr);
}

bool takesPictures(const Job& job, int width, int height, AVRational rate) {
    VideoSettings settings = job.video;
    settings.width = width;
    settings.height = height;
    AVCodecParameters colours{};
    colours.format = AV_PIX_FMT_YUV420P;
    VideoEncoder encoder;
    return encoder.open(settings, av_inv_q(rate), *formatOf(job), colours) >= 0;
}

/// "640x360": the nearest that the encoder takes, by whole steps of its blocks, then ever smaller.
std::optional<std::string> nearestSize(const Job& job, AVRational rate) {
    constexpr std::array kSteps{2, 4, 16};
    int width = std::max(job.video.width, 2);
    int height = std::max(job.video.height, 2);
    while (width >= kSteps.back() && height >= kSteps.back()) {
        for (const int step : kSteps) {
            const int roundWidth = width / step * step;
            const int roundHeight = height / step * step;
            if (takesPictures(job, roundWidth, roundHeight, rate)) {
                return std::to_string(roundWidth) + "x" + std::to_string(roundHeight);
            }
        }
        width = width * 3 / 4;
        height = height * 3 / 4;
    }
    return std::nullopt;
}

bool takesSound(const Job& job, const AudioSettings& settings) {
    AudioEncoder encoder;
    return encoder.open(settings, *formatOf(job)) >= 0;
}

/// "44100 Hz, 2 channels".
std::optional<std::string> nearestSound(const Job& job) {
    constexpr std::array kRates{8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000};
    std::vector<int> rates(kRates.begin(), kRates.end());
    std::ranges::sort(rates, {},
                      [&job](int rate) { return std::abs(rate - job.audio.sampleRate); });
    for (const int channels : {job.audio.channels, 2, 1}) {
        for (const int rate : rates) {
            AudioSettings settings = job.audio;
            settings.sampleRate = rate;
            settings.channels = channels;
            if (channels > 0 && takesSound(job, settings)) {
                return std::to_string(rate) + " Hz, " + std::to_string(channels) +
                       (channels == 1 ? " channel" : " channels");
            }
        }
    }
    return std::nullopt;
}

/// Of the pictures and the sound that the output is to have.
std::vector<AVCodecID> codecsOf(const Job& job) {
    if (job.reencodes) {
        return {job.video.codec, job.audio.codec};
    }
    std::vector<AVCodecID> codecs;
    InputMedia media(job.inputPaths.front(), nullptr);
    if (media.open() >= 0 && media.readStreamInfo() >= 0) {
        for (const AVStream* const stream : {media.videoStream(), media.audioStream()}) {
            if (stream != nullptr) {
                codecs.push_back(stream->codecpar->codec_id);
            }
        }
    }
    return codecs;
}

/// What the library does not know of a muxer, it says no to nothing.
bool takes(const AVOutputFormat& format, AVCodecID codec) {
    return avformat_query_codec(&format, codec, FF_COMPLIANCE_NORMAL) == 1;
}

bool takesAll(const char* name, const std::vector<AVCodecID>& codecs) {
    const std::string file = std::string("file.") + name;
    const AVOutputFormat* const format = av_guess_format(nullptr, file.c_str(), nullptr);
    return format != nullptr && std::ranges::all_of(codecs, [format](AVCodecID codec) {
               return codec == AV_CODEC_ID_NONE || takes(*format, codec);
           });
}

std::string containersFor(const std::vector<AVCodecID>& codecs) {
    std::string names;
    for (const char* const name : kContainers) {
        if (takesAll(name, codecs)) {
            names += (names.empty() ? "" : ", ") + std::string(name);
        }
    }
    return names;
}

} // namespace

FailureCause causeOfRefusedPictures(const Job& job) {
    FailureCause cause;
    cause.path = job.outputPaths.front();
    cause.codec = avcodec_get_name(job.video.codec);
    const AVRational rate = av_d2q(job.video.frameRate > 0 ? job.video.frameRate : 25.0, 1'000'000);
    if (avcodec_find_encoder(job.video.codec) == nullptr) {
        cause.kind = Kind::EncoderMissing;
    } else if (takesPictures(job, job.video.width, job.video.height, {25, 1})) {
        cause.kind = Kind::RateRefused;
        cause.choice = "25";
    } else if (const auto size = nearestSize(job, {25, 1})) {
        cause.kind = Kind::SizeRefused;
        cause.choice = *size;
    } else {
        cause.kind = takesPictures(job, 640, 360, rate) ? Kind::SizeRefused : Kind::EncoderMissing;
    }
    return cause;
}

FailureCause causeOfRefusedSound(const Job& job) {
    FailureCause cause;
    cause.path = job.outputPaths.front();
    cause.codec = avcodec_get_name(job.audio.codec);
    const auto nearest = nearestSound(job);
    cause.kind = nearest ? Kind::SoundRefused : Kind::EncoderMissing;
    cause.choice = nearest.value_or("");
    return cause;
}

FailureCause causeOfRefusedStreams(const Job& job) {
    FailureCause cause;
    cause.path = job.outputPaths.front();
    const AVOutputFormat* const format = formatOf(job);
    const std::vector<AVCodecID> codecs = codecsOf(job);
    const auto refused = std::ranges::find_if(codecs, [format](AVCodecID codec) {
        return codec != AV_CODEC_ID_NONE && !takes(*format, codec);
    });
    cause.kind = Kind::CodecNotTaken;
    cause.codec = refused != codecs.end() ? avcodec_get_name(*refused) : "";
    cause.choice = containersFor(codecs);
    return cause;
}

} // namespace velmora
