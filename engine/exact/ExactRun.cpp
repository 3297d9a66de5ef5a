#include "ExactRun.h"

#include "Chapters.h"
#include "ColourConversion.h"
#include "EngineLog.h"
#include "ExactInput.h"
#include "FrameRate.h"
#include "InputProgress.h"
#include "PictureWriter.h"
#include "StreamDescription.h"
#include "TimeBases.h"
#include "TimedSoundWriter.h"
#include "WrittenFile.h"

extern "C" {
#include <libavutil/avstring.h>
}

#include <algorithm>
#include <cmath>
#include <optional>

namespace velmora {
namespace {

// Sound that goes on for longer after the last picture belongs to the input; less is the rest of a
// packet.
constexpr double kSoundAfterPictures = 0.1;

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

/// Works through the inputs of one exact job. Owns what is open: the input in hand, and the output.
class ExactJob {
public:
    ExactJob(const Job& job, RunProgress& progress, const StopFlag& stop)
        : job_(job), progress_(progress), stop_(stop) {}

    RunReport execute();

private:
    void tellStates(InputState state);
    int openInput();
    int begin();
    int addPictures();
    int addSound();
    int addChapters();
    bool wantsSound();
    bool soundIsThere();
    int writeInput(InputProgress& progress);
    int writePicture();
    int writeSound();
    int endInput();
    int finish();
    std::string check() const;

    std::int64_t timeOf(std::int64_t sourceTicks) const {
        return begins_ + timing_->at(sourceTicks);
    }
    std::int64_t sampleAt(std::int64_t time) const {
        return av_rescale_q(time, pace_.timeBase, {1, job_.audio.sampleRate});
    }
    double secondsAt(std::int64_t time) const {
        return static_cast<double>(time) * av_q2d(pace_.timeBase);
    }
    bool isStopped() const { return isRaised(&stop_); }

    const Job& job_;
    RunProgress& progress_;
    const StopFlag& stop_;
    std::size_t index_ = 0;
    std::optional<OutputMedia> output_;
    VideoEncoder videoEncoder_;
    AudioEncoder audioEncoder_;
    PicturePace pace_;
    PictureSize size_;
    std::optional<PictureWriter> pictures_;
    std::optional<TimedSoundWriter> sound_;
    // Of the input in hand.
    std::optional<ExactInput> input_;
    std::optional<PictureTiming> timing_;
    std::int64_t begins_ = 0;      ///< in the output, ticks of the pace
    std::int64_t lastPicture_ = 0; ///< in the output, likewise
    FrameHandle nextSound_;
    bool soundEnds_ = false;
    bool isFirstPicture_ = true;
};

RunReport ExactJob::execute() {
    int result = 0;
    for (index_ = 0; index_ < job_.inputPaths.size() && result >= 0 && !isStopped(); ++index_) {
        progress_.inputIs(index_);
        InputProgress progress(progress_, index_, job_.spanOf(index_), job_.joins);
        result = writeInput(progress);
    }
    if (result >= 0 && !isStopped()) {
        result = finish();
    }
    RunReport report;
    if (result >= 0 && !isStopped()) {
        report.finding = check();
    }
    if (!isStopped()) {
        tellStates(result >= 0 && report.finding.empty() ? InputState::Done : InputState::Failed);
    }
    return report;
}

/// Without one of its inputs the output is not what was asked for: they end as one.
void ExactJob::tellStates(InputState state) {
    const std::size_t count = job_.inputPaths.size();
    for (std::size_t i = 0; i < count; ++i) {
        progress_.stateIs(i, state);
    }
    progress_.inputIs(count);
}

/// Sound may go on behind the last picture.
std::string ExactJob::check() const {
    const double soundSeconds =
        sound_ ? static_cast<double>(sound_->samples()) / job_.audio.sampleRate : 0.0;
    return differenceOf(job_.outputPaths[0], {.hasSound = sound_.has_value(),
                                              .pictures = pictures_->count(),
                                              .seconds = std::max(secondsAt(begins_), soundSeconds),
                                              .lastPictureSeconds = secondsAt(lastPicture_),
                                              .isExact = true});
}

int ExactJob::openInput() {
    const std::optional<Window> window =
        index_ < job_.windows.size() ? std::optional(job_.windows[index_]) : std::nullopt;
    input_.emplace(job_.inputPaths[index_], window, &stop_);
    const int result = input_->open();
    if (result == AVERROR(ERANGE)) {
        av_log(nullptr, AV_LOG_ERROR, "%s: no picture between both times\n",
               job_.inputPaths[index_].c_str());
    } else if (result < 0) {
        logFailure(job_.inputPaths[index_], "open pictures", result);
    }
    return result;
}

int ExactJob::begin() {
    const std::string& path = job_.outputPaths[0];
    const AVOutputFormat* format = av_guess_format(nullptr, path.c_str(), nullptr);
    if (format == nullptr) {
        logFailure(path, "choose container", AVERROR_MUXER_NOT_FOUND);
        return AVERROR_MUXER_NOT_FOUND;
    }
    output_.emplace(path);
    int result = output_->create(*format);
    if (result >= 0) {
        result = addPictures();
    }
    if (result >= 0 && wantsSound()) {
        result = addSound();
    }
    if (result >= 0 && InputFiles::mayReach(job_.inputPaths, path)) {
        av_log(nullptr, AV_LOG_ERROR, "%s: is also an input, or may be part of one\n",
               path.c_str());
        result = AVERROR(EEXIST);
    }
    if (result >= 0) {
        copyFileTags(*input_->media().container(), output_->tags());
        result = job_.joins ? 0 : addChapters();
    }
    if (result >= 0) {
        result = output_->begin();
    }
    return result;
}

int ExactJob::addPictures() {
    const AVStream& source = input_->pictureStream();
    const AVRational usual = usualRate(source.r_frame_rate, source.avg_frame_rate);
    const bool isConstant = job_.video.frameRate != 0.0 || !keepsIntervals(output_->format());
    const AVRational duration = encodedFrameDuration(
        job_.video.frameRate, usual.num > 0 ? usual : AVRational{25, 1}, job_.video.codec);
    // One of the encoders counts with 16 bits.
    const int mostTicks = job_.video.codec == AV_CODEC_ID_MPEG4 ? 65535 : 1'000'000;
    // What comes after the first input may count in other ticks.
    const int leastTicks = job_.joins ? 90'000 : 1;
    const AVRational grid = isConstant ? av_inv_q(duration) : usual;
    pace_ = {.timeBase = commonTimeBase(source.time_base, grid, leastTicks, mostTicks),
             .constant = isConstant ? duration : AVRational{0, 1}};
    size_ = outputSize(job_.video, input_->media());

    VideoSettings settings = job_.video;
    settings.width = size_.width;
    settings.height = size_.height;
    AVCodecParameters colours{};
    colours.format = AV_PIX_FMT_YUV420P;
    const ColourDescription description = outputColours(*source.codecpar, size_.height);
    colours.color_primaries = description.primaries;
    colours.color_trc = description.transfer;
    colours.color_space = description.matrix;
    const VideoEncoder::Timing timing{pace_.encoderTimeBase(), av_inv_q(duration)};
    int result = videoEncoder_.open(settings, timing, output_->format(), colours);
    if (result < 0) {
        logFailure(job_.inputPaths[index_], "open video encoder", result);
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
    result = videoEncoder_.describe(*added->stream->codecpar);
    copyStreamTags(source, *added->stream);
    added->stream->sample_aspect_ratio = {1, 1};
    added->stream->codecpar->sample_aspect_ratio = {1, 1};
    pictures_.emplace(*output_, *added, videoEncoder_, pace_, stop_);
    return result;
}

/// A join's chapters would have to be told before the lengths of its parts are known.
int ExactJob::addChapters() {
    const std::int64_t start =
        av_rescale_q(input_->origin(), input_->pictureStream().time_base, kMicrosecond);
    return copyChapters(*input_->media().container(), start, input_->endUs(), output_->container());
}

/// A join has sound when one of its inputs has; a cut, when there is some between both times or
/// after them.
bool ExactJob::wantsSound() {
    if (input_->media().audioStream() != nullptr) {
        return job_.joins || soundIsThere();
    }
    return std::any_of(job_.inputPaths.begin() + 1, job_.inputPaths.end(),
                       [this](const std::string& path) {
                           InputMedia media(path, &stop_);
                           return media.open() >= 0 && media.readStreamInfo() >= 0 &&
                                  media.audioStream() != nullptr;
                       });
}

bool ExactJob::soundIsThere() {
    AudioFormat format;
    format.rate = job_.audio.sampleRate;
    av_channel_layout_default(format.layout.get(), std::max(job_.audio.channels, 1));
    SoundReader sound(job_.inputPaths[0], &stop_);
    return sound.open(format) >= 0 &&
           sound.goTo(input_->origin(), input_->pictureStream().time_base) >= 0 &&
           sound.next() != nullptr;
}

int ExactJob::addSound() {
    int result = audioEncoder_.open(job_.audio, output_->format());
    if (result < 0) {
        logFailure(job_.inputPaths[index_], "open audio encoder", result);
        return result;
    }
    OutputStream* added = output_->addAudioStream({1, job_.audio.sampleRate});
    if (added == nullptr) {
        return AVERROR(ENOMEM);
    }
    result = audioEncoder_.describe(*added->stream->codecpar);
    if (const AVStream* source = input_->media().audioStream()) {
        copyStreamTags(*source, *added->stream);
    }
    sound_.emplace(*output_, *added, audioEncoder_, stop_);
    return result;
}

int ExactJob::writeInput(InputProgress& progress) {
    int result = openInput();
    if (result >= 0 && index_ == 0) {
        result = begin();
    }
    if (result < 0) {
        return result;
    }
    const AVStream& source = input_->pictureStream();
    timing_.emplace(TimingRule{.sourceTimeBase = source.time_base,
                               .sourceRate = usualRate(source.r_frame_rate, source.avg_frame_rate),
                               .outputTimeBase = pace_.timeBase});
    nextSound_.reset();
    lastPicture_ = begins_;
    isFirstPicture_ = true;
    soundEnds_ = !sound_ || !input_->openSound(sound_->format());
    if (sound_) {
        result = sound_->fillUntil(sampleAt(begins_));
    }
    bool picturesEnd = false;
    while (result >= 0 && !picturesEnd && !isStopped()) {
        progress.packetIsDue(secondsAt(lastPicture_));
        result = writePicture();
        picturesEnd = result == AVERROR_EOF;
        if (picturesEnd || result >= 0) {
            result = writeSound();
        }
    }
    return result < 0 || isStopped() ? result : endInput();
}

/// AVERROR_EOF: there was none.
int ExactJob::writePicture() {
    ExactInput::Shown shown = input_->nextPicture(size_);
    if (shown.picture == nullptr) {
        return input_->failure() < 0 ? input_->failure() : AVERROR_EOF;
    }
    // Some files have pictures a tick apart, which are not to become one.
    lastPicture_ = std::max(timeOf(shown.time), isFirstPicture_ ? begins_ : lastPicture_ + 1);
    isFirstPicture_ = false;
    return pictures_->write(std::move(shown.picture), lastPicture_);
}

/// Up to the picture that was written last.
int ExactJob::writeSound() {
    int result = 0;
    while (!soundEnds_ && result >= 0) {
        if (nextSound_ == nullptr) {
            nextSound_ = input_->nextSound();
        }
        if (nextSound_ == nullptr) {
            soundEnds_ = true;
        } else if (sound_->samples() + nextSound_->nb_samples > sampleAt(lastPicture_)) {
            break;
        } else {
            result = sound_->write(*nextSound_, nextSound_->nb_samples);
            nextSound_.reset();
        }
    }
    return result;
}

/// The pictures' end is known now, and so is that of the sound.
int ExactJob::endInput() {
    const std::optional<double> cutEnd = input_->endSeconds();
    std::int64_t end = cutEnd ? begins_ + std::llround(*cutEnd / av_q2d(pace_.timeBase))
                              : timeOf(input_->picturesEnd());
    end = std::max(end, lastPicture_ + 1);
    int result = 0;
    if (sound_) {
        const std::int64_t endSample = sampleAt(end);
        std::vector<FrameHandle> after;
        std::int64_t last = sound_->samples();
        const std::int64_t enough =
            endSample + static_cast<std::int64_t>(kSoundAfterPictures * job_.audio.sampleRate);
        bool goesOn = false;
        while (!soundEnds_ && !goesOn && !isStopped()) {
            FrameHandle sound = nextSound_ != nullptr ? std::move(nextSound_) : input_->nextSound();
            soundEnds_ = sound == nullptr;
            if (sound != nullptr) {
                last += sound->nb_samples;
                after.push_back(std::move(sound));
                goesOn = last > enough || (cutEnd && last >= endSample);
            }
        }
        const bool soundIsLonger = goesOn && !cutEnd;
        for (const FrameHandle& sound : after) {
            if (result >= 0) {
                const std::int64_t room = soundIsLonger || (!job_.joins && !cutEnd)
                                              ? sound->nb_samples
                                              : endSample - sound_->samples();
                result = sound_->write(*sound, room);
            }
        }
        while (result >= 0 && soundIsLonger && !isStopped()) {
            const FrameHandle sound = input_->nextSound();
            if (sound == nullptr) {
                break;
            }
            result = sound_->write(*sound, sound->nb_samples);
        }
        if (soundIsLonger && job_.joins) {
            end = std::max(end, av_rescale_q_rnd(sound_->samples(), {1, job_.audio.sampleRate},
                                                 pace_.timeBase, AV_ROUND_UP));
        }
    }
    if (const std::int64_t damaged = input_->damagedPackets(); damaged > 0) {
        av_log(nullptr, AV_LOG_WARNING, "%s: %lld packets could not be decoded and are left out\n",
               job_.inputPaths[index_].c_str(), static_cast<long long>(damaged));
    }
    const int ended = pictures_->endAt(end);
    begins_ = end;
    return result < 0 ? result : ended;
}

int ExactJob::finish() {
    int result = pictures_->finish();
    if (result >= 0 && sound_) {
        if (job_.joins) {
            result = sound_->fillUntil(sampleAt(begins_));
        }
        if (result >= 0) {
            result = sound_->finish();
        }
    }
    const int finished = output_->finish();
    return result < 0 ? result : finished;
}

} // namespace

RunReport runExactly(const Job& job, RunProgress& progress, const StopFlag& stop) {
    return ExactJob(job, progress, stop).execute();
}

} // namespace velmora
