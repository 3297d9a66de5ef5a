#include "ExactOutput.h"

#include "Chapters.h"
#include "ColourConversion.h"
#include "EngineLog.h"
#include "FrameRate.h"
#include "StreamDescription.h"
#include "TimeBases.h"

extern "C" {
#include <libavutil/avstring.h>
}

namespace velmora {
namespace {

/// What players of this container make of pictures at varying intervals.
bool keepsIntervals(const AVOutputFormat& format) {
    return av_match_name(format.name, "mp4,mov,ipod,3gp,3g2,matroska,webm,mpegts") != 0;
}

PictureSize outputSize(const VideoSettings& settings, const InputMedia& media) {
    const AVCodecParameters& coded = *media.videoStream()->codecpar;
    const bool isSources = settings.width == coded.width && settings.height == coded.height;
    if (isSources || settings.width <= 0 || settings.height <= 0) {
        return uprightSize(*media.container(), *media.videoStream());
    }
    return {settings.width, settings.height};
}

/// The times of the source's pictures, and those of a constant rate, can be told in its time base.
PicturePace paceOf(const Job& job, const AVStream& source, AVRational duration, bool isConstant) {
    // One of the encoders counts with 16 bits.
    const int mostTicks = job.video.codec == AV_CODEC_ID_MPEG4 ? 65535 : 1'000'000;
    // What comes after the first input may count in other ticks.
    const int leastTicks = job.joins ? 90'000 : 1;
    const AVRational usual = usualRate(source.r_frame_rate, source.avg_frame_rate);
    const AVRational grid = isConstant ? av_inv_q(duration) : usual;
    return {.timeBase = commonTimeBase(source.time_base, grid, leastTicks, mostTicks),
            .constant = isConstant ? duration : AVRational{0, 1}};
}

} // namespace

int ExactOutput::begin(const ExactInput& first, bool hasSound) {
    const std::string& path = job_.outputPaths[0];
    const AVOutputFormat* format = av_guess_format(nullptr, path.c_str(), nullptr);
    if (format == nullptr) {
        logFailure(path, Operation::ChooseContainer, AVERROR_MUXER_NOT_FOUND);
        return AVERROR_MUXER_NOT_FOUND;
    }
    output_.emplace(path);
    int result = output_->create(*format);
    if (result >= 0) {
        result = addStreams(first, hasSound);
    }
    if (result >= 0 && InputFiles::mayReach(job_.inputPaths, path)) {
        logRefusal(path, Operation::KeepInputs, "is also an input, or may be part of one");
        result = AVERROR(EEXIST);
    }
    return result < 0 ? result : output_->begin();
}

int ExactOutput::addStreams(const ExactInput& first, bool hasSound) {
    int result = addPictures(first);
    if (result >= 0 && hasSound) {
        result = addSound(first);
    }
    copyFileTags(*first.media().container(), output_->tags());
    return result;
}

int ExactOutput::addPictures(const ExactInput& first) {
    const AVStream& source = first.pictureStream();
    const AVRational usual = usualRate(source.r_frame_rate, source.avg_frame_rate);
    const bool isConstant = job_.video.frameRate != 0.0 || !keepsIntervals(output_->format());
    const AVRational duration = encodedFrameDuration(
        job_.video.frameRate, usual.num > 0 ? usual : AVRational{25, 1}, job_.video.codec);
    pace_ = paceOf(job_, source, duration, isConstant);
    form_.size = outputSize(job_.video, first.media());
    if (const int result = openVideoEncoder(source, duration); result < 0) {
        logFailure(job_.inputPaths[0], Operation::OpenVideoEncoder, result);
        return result;
    }
    OutputStream* added = output_->addVideoStream(duration);
    if (added == nullptr) {
        return AVERROR(ENOMEM);
    }
    added->stream->time_base = pace_.encoderTimeBase();
    if (!isConstant && av_cmp_q(usual, source.avg_frame_rate) != 0) {
        added->stream->avg_frame_rate = {0, 1}; // it varies
    }
    const int result = videoEncoder_.describe(*added->stream->codecpar);
    copyStreamTags(source, *added->stream);
    added->stream->sample_aspect_ratio = {1, 1};
    added->stream->codecpar->sample_aspect_ratio = {1, 1};
    pictures_.emplace(*output_, *added, videoEncoder_, pace_, stop_);
    return result;
}

int ExactOutput::openVideoEncoder(const AVStream& source, AVRational duration) {
    VideoSettings settings = job_.video;
    settings.width = form_.size.width;
    settings.height = form_.size.height;
    AVCodecParameters colours{};
    colours.format = AV_PIX_FMT_YUV420P;
    const ColourDescription description = outputColours(*source.codecpar, form_.size.height);
    colours.color_primaries = description.primaries;
    colours.color_trc = description.transfer;
    colours.color_space = description.matrix;
    form_.matrix = description.matrix;
    const VideoEncoder::Timing timing{pace_.encoderTimeBase(), av_inv_q(duration)};
    return videoEncoder_.open(settings, timing, output_->format(), colours);
}

int ExactOutput::addSound(const ExactInput& first) {
    int result = audioEncoder_.open(job_.audio, output_->format());
    if (result < 0) {
        logFailure(job_.inputPaths[0], Operation::OpenAudioEncoder, result);
        return result;
    }
    OutputStream* added = output_->addAudioStream({1, job_.audio.sampleRate});
    if (added == nullptr) {
        return AVERROR(ENOMEM);
    }
    result = audioEncoder_.describe(*added->stream->codecpar);
    if (const AVStream* source = first.media().audioStream()) {
        copyStreamTags(*source, *added->stream);
    }
    sound_.emplace(*output_, *added, audioEncoder_, stop_);
    return result;
}

int ExactOutput::addChapters(const ExactInput& input, std::int64_t begin, std::int64_t end) {
    const std::int64_t beginUs = av_rescale_q(begin, pace_.timeBase, kMicrosecond);
    const std::int64_t endUs = av_rescale_q(end, pace_.timeBase, kMicrosecond);
    const std::int64_t startUs =
        av_rescale_q(input.origin(), input.pictureStream().time_base, kMicrosecond);
    return copyChapters(
        *input.media().container(),
        {.startUs = startUs, .endUs = startUs + endUs - beginUs, .outputUs = beginUs},
        output_->container());
}

double ExactOutput::soundSeconds() const {
    return sound_ ? static_cast<double>(sound_->samples()) / job_.audio.sampleRate : 0.0;
}

int ExactOutput::finish(std::int64_t end) {
    int result = pictures_->finish();
    if (result >= 0 && sound_ && job_.joins) {
        result = sound_->fillUntil(sampleAt(end));
    }
    if (result >= 0 && sound_) {
        result = sound_->finish();
    }
    const int finished = output_->finish();
    return result < 0 ? result : finished;
}

} // namespace velmora
