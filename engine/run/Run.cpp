#include "Run.h"

#include "DirectCopy.h"
#include "EngineLog.h"
#include "FrameRate.h"
#include "InputProgress.h"
#include "OutputMedia.h"
#include "PacketPump.h"
#include "Reencoding.h"
#include "StreamDescription.h"

#include <memory>
#include <optional>

namespace velmora {
namespace {

/// How the work on one input ended, or that it goes on.
enum class Step { Continue, InputFailed, RunEnds };

std::unique_ptr<Conversion> makeConversion(const Job& job, const StopFlag& stop) {
    if (!job.reencodes) {
        return std::make_unique<DirectCopy>();
    }
    const Timing timing = job.joins ? Timing::Join : Timing::Cut;
    return std::make_unique<Reencoding>(job.video, job.audio, timing, &stop);
}

/// Works through the inputs of one job. Owns what is open: the input in hand, until the next, and
/// the output, until the end.
class JobRun {
public:
    JobRun(const Job& job, RunProgress& progress, const StopFlag& stop)
        : job_(job), progress_(progress), stop_(stop), count_(job.inputPaths.size()),
          conversion_(makeConversion(job, stop)) {}

    void execute();

private:
    Step processInput(InputProgress& progress);
    Step setUp();
    Step openInput();
    Step createOutput();
    Step setUpStreams();
    Step beginOutput();

    void seekToStart();
    void handlePackets(InputProgress& progress);
    void finishHandlers(InputProgress& progress);

    bool isStopped() const { return isRaised(&stop_); }
    bool isFirst() const { return index_ == 0; }
    bool isLast() const { return index_ + 1 == count_; }

    const Job& job_;
    RunProgress& progress_;
    const StopFlag& stop_;
    const std::size_t count_;
    std::size_t index_ = 0;
    std::optional<OutputMedia> output_;
    std::unique_ptr<Conversion> conversion_;
    std::optional<RunInput> input_;
    InputHandlers handlers_;
};

void JobRun::execute() {
    for (index_ = 0; index_ < count_; ++index_) {
        progress_.inputIs(index_);
        InputProgress progress(progress_, index_, job_.spanOf(index_), job_.joins);
        const Step step = processInput(progress);
        if (step == Step::RunEnds || (step == Step::InputFailed && isStopped())) {
            return;
        }
        if (step == Step::InputFailed) {
            progress.fail();
        }
        if (isLast() && output_ && output_->hasBegun() && output_->finish() < 0) {
            progress.fail();
        }
        // Only now: who sees the last input done must find the file complete.
        if (!isStopped()) {
            progress.complete();
        }
    }
    progress_.inputIs(count_);
}

Step JobRun::processInput(InputProgress& progress) {
    handlers_ = {};
    input_.reset();
    if (isStopped()) {
        return Step::RunEnds;
    }
    if (const Step step = setUp(); step != Step::Continue) {
        return step;
    }
    seekToStart();
    handlePackets(progress);
    finishHandlers(progress);
    return Step::Continue;
}

Step JobRun::setUp() {
    // Without the first input there is no output for the later ones.
    if (!isFirst() && !(output_ && output_->hasBegun())) {
        return Step::InputFailed;
    }
    for (const auto step :
         {&JobRun::openInput, &JobRun::createOutput, &JobRun::setUpStreams, &JobRun::beginOutput}) {
        if (const Step result = (this->*step)(); result != Step::Continue) {
            return result;
        }
    }
    return Step::Continue;
}

Step JobRun::openInput() {
    input_.emplace(job_.inputPaths[index_], &stop_);
    InputMedia& media = input_->media;
    if (media.open() < 0 || media.readStreamInfo() < 0) {
        return Step::InputFailed;
    }
    const AVStream* video = media.videoStream();
    if (video != nullptr && input_->video.open(*video, media.path()) < 0) {
        return Step::InputFailed;
    }
    if (const AVStream* audio = media.audioStream(); audio != nullptr && job_.reencodes) {
        input_->audio.open(*audio, media.path()); // it may fail; a copy has no use for it
    }
    return Step::Continue;
}

Step JobRun::createOutput() {
    const std::string& path = job_.outputPaths[index_];
    const AVOutputFormat* format = av_guess_format(nullptr, path.c_str(), nullptr);
    if (format == nullptr) {
        logFailure(path, Operation::ChooseContainer, AVERROR_MUXER_NOT_FOUND);
        return Step::InputFailed;
    }
    if (!isFirst()) {
        return Step::Continue;
    }
    output_.emplace(path);
    if (output_->create(*format) < 0) {
        return Step::InputFailed;
    }
    if (input_->media.videoStream() == nullptr) {
        logRefusal(input_->media.path(), Operation::FindPictures, "no video stream");
        return Step::RunEnds;
    }
    return Step::Continue;
}

Step JobRun::setUpStreams() {
    if (isFirst() && job_.reencodes) {
        progress_.frameRateIs(encodedFrameRate(
            job_.video.frameRate, correctedFrameRate(input_->media.videoStream()->r_frame_rate)));
    }
    const int result = conversion_->setUp(*input_, *output_, isFirst(), handlers_);
    if (result < 0) {
        logFailure(input_->media.path(), Operation::SetUpStreams, result);
        return Step::InputFailed;
    }
    return Step::Continue;
}

Step JobRun::beginOutput() {
    if (!isFirst()) {
        return Step::Continue;
    }
    if (InputFiles::mayReach(job_.inputPaths, job_.outputPaths[0])) {
        logRefusal(job_.outputPaths[0], Operation::KeepInputs,
                   "is also an input, or may be part of one");
        return Step::InputFailed;
    }
    copyFileTags(*input_->media.container(), output_->tags());
    return output_->begin() < 0 ? Step::InputFailed : Step::Continue;
}

void JobRun::seekToStart() {
    double start = job_.startSeconds[index_];
    if (job_.joins || !(start > 0)) {
        return;
    }
    if (const int result = input_->media.seek(start); result < 0) {
        logFailure(input_->media.path(), Operation::Seek,
                   result); // the cut then starts where reading does
    }
    progress_.startIs(index_, start);
}

void JobRun::handlePackets(InputProgress& progress) {
    const PacketPump::Plan plan{.videoSeconds =
                                    job_.joins ? PacketPump::kWhole : job_.spanOf(index_),
                                // A cut ends by its pictures; what was read before them is its own.
                                .inTimeOrder = job_.joins && job_.reencodes,
                                .readAhead = conversion_->readAhead()};
    PacketPump(input_->media, *output_, handlers_, plan).run(progress, stop_);
}

void JobRun::finishHandlers(InputProgress& progress) {
    for (PacketHandler* handler : {handlers_.audio.get(), handlers_.video.get()}) {
        if (handler != nullptr) {
            progress.note(handler->finish());
        }
    }
}

} // namespace

void run(const Job& job, RunProgress& progress, const StopFlag& stop) {
    JobRun(job, progress, stop).execute();
}

} // namespace velmora
