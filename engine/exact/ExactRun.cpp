#include "ExactRun.h"

#include "EngineLog.h"
#include "ExactInput.h"
#include "ExactOutput.h"
#include "FrameRate.h"
#include "InputProgress.h"
#include "InputSound.h"
#include "PictureTiming.h"
#include "WrittenFile.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace velmora {
namespace {

// Sound that goes on for longer after the last picture belongs to the input; less is the rest of a
// packet.
constexpr double kSoundAfterPictures = 0.1;

/// Works through the inputs of one exact job. Owns what is open: the input in hand, and the output.
class ExactJob {
public:
    ExactJob(const Job& job, RunProgress& progress, const StopFlag& stop)
        : job_(job), progress_(progress), stop_(stop), output_(job, stop) {}

    RunReport execute();

private:
    void tellStates(InputState state);
    int tryInputs() const;
    int openInput(std::size_t index);
    bool wantsSound();
    bool soundIsThere();
    int writeInput(std::size_t index);
    int beginInput(std::size_t index);
    int writePictures(InputProgress& progress);
    int writePicture();
    int endInput();
    std::int64_t sourceEnd();
    int endSound(std::int64_t end);
    void noteDamage(std::size_t index);
    std::string damage() const;
    std::string check() const;

    std::int64_t timeOf(std::int64_t sourceTicks) const {
        return begins_ + timing_->at(sourceTicks);
    }
    bool isStopped() const { return isRaised(&stop_); }

    const Job& job_;
    RunProgress& progress_;
    const StopFlag& stop_;
    ExactOutput output_;
    // Of the input in hand.
    std::optional<ExactInput> input_;
    std::optional<InputSound> sound_;
    std::optional<PictureTiming> timing_;
    std::int64_t begins_ = 0;      ///< in the output, ticks of the pace
    std::int64_t lastPicture_ = 0; ///< in the output, likewise
    bool isFirstPicture_ = true;
    std::int64_t damagedPictures_ = 0; ///< of all inputs
};

RunReport ExactJob::execute() {
    int result = job_.joins ? tryInputs() : 0;
    for (std::size_t i = 0; i < job_.inputPaths.size() && result >= 0 && !isStopped(); ++i) {
        result = writeInput(i);
    }
    if (result >= 0 && !isStopped()) {
        result = output_.finish(begins_);
    }
    RunReport report;
    if (result >= 0 && !isStopped()) {
        report.finding = check();
    }
    if (!isStopped()) {
        const bool isRight = result >= 0 && report.finding.empty();
        tellStates(isRight ? InputState::Done : InputState::Failed);
        report.finding = isRight ? damage() : report.finding;
    }
    return report;
}

/// One that cannot be used is found before the others have been encoded for nothing.
int ExactJob::tryInputs() const {
    for (const std::string& path : job_.inputPaths) {
        const int result = PictureReader(path, &stop_).open();
        if (result < 0) {
            logFailure(path, Operation::OpenPictures, result);
            return result;
        }
    }
    return 0;
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
    return differenceOf(job_.outputPaths[0],
                        {.hasSound = output_.hasSound(),
                         .pictures = output_.pictures().count(),
                         .seconds = std::max(output_.secondsAt(begins_), output_.soundSeconds()),
                         .lastPictureSeconds = output_.secondsAt(lastPicture_),
                         .isExact = true},
                        &stop_);
}

/// Of the sources, for which the output cannot help.
std::string ExactJob::damage() const {
    if (damagedPictures_ == 0) {
        return {};
    }
    return damagedPictures_ == 1
               ? "1 picture could not be decoded, or not wholly: the source is damaged there."
               : std::to_string(damagedPictures_) +
                     " pictures could not be decoded, or not wholly: the source is damaged there.";
}

int ExactJob::openInput(std::size_t index) {
    const std::string& path = job_.inputPaths[index];
    const std::optional<Window> window =
        index < job_.windows.size() ? std::optional(job_.windows[index]) : std::nullopt;
    sound_.reset();
    input_.emplace(path, window, &stop_);
    const int result = input_->open();
    if (result == AVERROR(ERANGE)) {
        logRefusal(path, Operation::FindWindow, "no picture between both times");
    } else if (result < 0) {
        logFailure(path, Operation::OpenPictures, result);
    }
    return result;
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

int ExactJob::writeInput(std::size_t index) {
    progress_.inputIs(index);
    InputProgress progress(progress_, index, job_.spanOf(index), job_.joins);
    int result = beginInput(index);
    if (result >= 0) {
        result = writePictures(progress);
    }
    if (result >= 0 && !isStopped()) {
        result = endInput();
        noteDamage(index);
    }
    return result;
}

int ExactJob::beginInput(std::size_t index) {
    int result = openInput(index);
    if (result >= 0 && index == 0) {
        result = output_.begin(*input_, wantsSound());
    }
    if (result < 0) {
        return result;
    }
    const AVStream& source = input_->pictureStream();
    timing_.emplace(TimingRule{.sourceTimeBase = source.time_base,
                               .sourceRate = usualRate(source.r_frame_rate, source.avg_frame_rate),
                               .outputTimeBase = output_.pace().timeBase});
    lastPicture_ = begins_;
    isFirstPicture_ = true;
    if (TimedSoundWriter* sound = output_.sound()) {
        sound_.emplace(*input_, *sound, stop_);
        result = sound->fillUntil(output_.sampleAt(begins_));
    }
    return result;
}

/// Each with the sound up to it.
int ExactJob::writePictures(InputProgress& progress) {
    int result = 0;
    bool picturesEnd = false;
    while (result >= 0 && !picturesEnd && !isStopped()) {
        progress.packetIsDue(output_.secondsAt(lastPicture_));
        result = writePicture();
        if (result == AVERROR_EOF) {
            picturesEnd = true;
            result = 0;
        }
        if (result >= 0 && sound_) {
            result = sound_->writeUntil(output_.sampleAt(lastPicture_));
        }
    }
    return result;
}

/// AVERROR_EOF: there was none.
int ExactJob::writePicture() {
    ExactInput::Shown shown = input_->nextPicture(output_.form());
    if (shown.picture == nullptr) {
        return input_->failure() < 0 ? input_->failure() : AVERROR_EOF;
    }
    // Some files have pictures a tick apart, which are not to become one.
    lastPicture_ = std::max(timeOf(shown.time), isFirstPicture_ ? begins_ : lastPicture_ + 1);
    isFirstPicture_ = false;
    return output_.pictures().write(std::move(shown.picture), lastPicture_);
}

/// The pictures' end is known now, and so is that of the sound.
int ExactJob::endInput() {
    const std::optional<double> cutEnd = input_->endSeconds();
    std::int64_t end = cutEnd ? begins_ + std::llround(*cutEnd / av_q2d(output_.pace().timeBase))
                              : timeOf(input_->picturesEnd());
    end = std::max(end, lastPicture_ + 1);
    int result = 0;
    if (sound_) {
        result = endSound(end);
        const std::int64_t samples = output_.sound()->samples();
        if (job_.joins && samples > output_.sampleAt(end)) {
            end = output_.timeAfter(samples);
        }
    }
    if (cutEnd && !input_->isEndSure()) {
        end = std::min(end, std::max(sourceEnd(), lastPicture_ + 1));
    }
    if (result >= 0) {
        result = output_.pictures().endAt(end);
    }
    if (result >= 0) {
        result = output_.addChapters(*input_, begins_, end);
    }
    begins_ = end;
    return result;
}

/// Of pictures and sound, as far as they have been read.
std::int64_t ExactJob::sourceEnd() {
    const std::int64_t pictures = timeOf(input_->picturesEnd());
    return sound_ ? std::max(pictures, output_.timeAfter(output_.sound()->samples())) : pictures;
}

int ExactJob::endSound(std::int64_t end) {
    const std::int64_t endSample = output_.sampleAt(end);
    if (job_.joins) {
        return sound_->endNear(endSample,
                               std::llround(kSoundAfterPictures * job_.audio.sampleRate));
    }
    return input_->endSeconds() ? sound_->endAt(endSample) : sound_->writeAll();
}

void ExactJob::noteDamage(std::size_t index) {
    const char* const path = job_.inputPaths[index].c_str();
    if (const std::int64_t pictures = input_->damagedPictures(); pictures > 0) {
        av_log(nullptr, AV_LOG_WARNING, "%s: %lld pictures could not be decoded, or not wholly\n",
               path, static_cast<long long>(pictures));
        damagedPictures_ += pictures;
    }
    if (const std::int64_t sounds = input_->damagedSounds(); sounds > 0) {
        av_log(nullptr, AV_LOG_WARNING, "%s: %lld packets of sound could not be decoded\n", path,
               static_cast<long long>(sounds));
    }
}

} // namespace

RunReport runExactly(const Job& job, RunProgress& progress, const StopFlag& stop) {
    return ExactJob(job, progress, stop).execute();
}

} // namespace velmora
