#include "Run.h"

#include "ConversionEngine.h"
#include "DirectCopy.h"
#include "EngineLog.h"
#include "FileIdentity.h"
#include "FrameRate.h"
#include "InputMedia.h"
#include "Job.h"
#include "OutputMedia.h"
#include "Reencoding.h"
#include "StreamCopier.h"
#include "TimeOrder.h"

#include <algorithm>
#include <deque>
#include <exception>
#include <memory>
#include <optional>

namespace velmora {
namespace {

// Units that may be written before those of the packets that are due: what an encoder still holds.
constexpr std::size_t kSpareUnits = 4;

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
    JobRun(const Job& job, ConversionEngine& engine)
        : engine_(engine), job_(job), count_(job.inputPaths.size()),
          conversion_(makeConversion(job, engine.stopRequested)) {}

    void execute();

private:
    Step processInput();
    Step setUp();
    Step openInput();
    Step createOutput();
    Step setUpStreams();
    Step beginOutput();
    bool outputIsAnInput() const;

    void seekToStart();
    void handlePackets();
    bool isSureToBeHandled() const;
    bool readPacket();
    void prepareLast();
    bool reachedEnd() const;
    void tellProgress();
    PacketHandler* handlerOf(const AVPacket& packet) const;
    void note(PacketOutcome outcome);
    void finishHandlers();

    void finishOutput();
    bool isStopped() const { return isRaised(&engine_.stopRequested); }
    bool isFirst() const { return index_ == 0; }
    bool isLast() const { return index_ + 1 == count_; }
    void setState(ConversionEngine::FileState state) { engine_.fileStates[index_] = state; }

    ConversionEngine& engine_;
    const Job& job_;
    const std::size_t count_;
    std::size_t index_ = 0;
    std::optional<OutputMedia> output_;
    std::unique_ptr<Conversion> conversion_;
    std::optional<InputMedia> input_;
    std::optional<TimeOrder> packets_; ///< of the input in hand
    /// Packets that have been read and not been handled, in order.
    struct DuePacket {
        PacketHandle packet;
        PacketHandler* handler; ///< null: the packet is dropped
    };
    std::deque<DuePacket> due_;
    bool inputEnded_ = false;
    InputHandlers handlers_;
};

void JobRun::execute() {
    for (index_ = 0; index_ < count_; ++index_) {
        engine_.currentIndex = static_cast<std::int32_t>(index_);
        const Step step = processInput();
        switch (isStopped() && step == Step::InputFailed ? Step::RunEnds : step) {
        case Step::Continue:
            break;
        case Step::InputFailed:
            setState(ConversionEngine::Failed);
            break;
        case Step::RunEnds:
            return;
        }
        if (isLast() && output_ && output_->hasBegun()) {
            finishOutput();
        }
        // Only now: who sees the last input done must find the file complete.
        if (!isStopped() && engine_.fileStates[index_] != ConversionEngine::Failed) {
            setState(ConversionEngine::Done);
        }
    }
    engine_.currentIndex = static_cast<std::int32_t>(count_);
}

Step JobRun::processInput() {
    handlers_ = {};
    packets_.reset();
    input_.reset();
    if (isStopped()) {
        return Step::RunEnds;
    }
    if (const Step step = setUp(); step != Step::Continue) {
        return step;
    }
    seekToStart();
    handlePackets();
    finishHandlers();
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
    input_.emplace(job_.inputPaths[index_], &engine_.stopRequested);
    if (input_->open() < 0 || input_->readStreamInfo() < 0 || input_->openVideoDecoder() < 0) {
        return Step::InputFailed;
    }
    if (job_.reencodes) {
        input_->openAudioDecoder(); // it may fail; a copy has no use for it
    }
    return Step::Continue;
}

Step JobRun::createOutput() {
    const std::string& path = job_.outputPaths[index_];
    const AVOutputFormat* format = av_guess_format(nullptr, path.c_str(), nullptr);
    if (format == nullptr) {
        logFailure(path, "choose container", AVERROR_MUXER_NOT_FOUND);
        return Step::InputFailed;
    }
    if (!isFirst()) {
        return Step::Continue;
    }
    output_.emplace(path);
    if (output_->create(*format) < 0) {
        return Step::InputFailed;
    }
    if (input_->videoStream() == nullptr) {
        av_log(nullptr, AV_LOG_ERROR, "%s: no video stream\n", input_->path().c_str());
        return Step::RunEnds;
    }
    return Step::Continue;
}

Step JobRun::setUpStreams() {
    if (isFirst() && job_.reencodes) {
        engine_.videoFrameRate = encodedFrameRate(
            job_.video.frameRate, correctedFrameRate(input_->videoStream()->r_frame_rate));
    }
    const int result = conversion_->setUp(*input_, *output_, isFirst(), handlers_);
    if (result < 0) {
        logFailure(input_->path(), "set up streams", result);
        return Step::InputFailed;
    }
    return Step::Continue;
}

Step JobRun::beginOutput() {
    if (!isFirst()) {
        return Step::Continue;
    }
    if (outputIsAnInput()) {
        av_log(nullptr, AV_LOG_ERROR, "%s: is also an input\n", job_.outputPaths[0].c_str());
        return Step::InputFailed;
    }
    copyFileTags(*input_->container(), output_->tags());
    return output_->begin() < 0 ? Step::InputFailed : Step::Continue;
}

bool JobRun::outputIsAnInput() const {
    const auto output = FileIdentity::ofPath(job_.outputPaths[0]);
    return output && std::ranges::any_of(job_.inputPaths, [&](const std::string& path) {
               const auto input = FileIdentity::ofPath(path);
               return input && input->isSameFile(*output);
           });
}

void JobRun::seekToStart() {
    double start = job_.startSeconds[index_];
    if (job_.joins || !(start > 0)) {
        return;
    }
    if (const int result = input_->seek(start); result < 0) {
        logFailure(input_->path(), "seek", result); // the cut then starts where reading does
    }
    engine_.startTimes[index_] = start;
}

void JobRun::handlePackets() {
    due_.clear();
    inputEnded_ = false;
    // A cut ends by its pictures; what was read before them is its own.
    packets_.emplace(*input_, job_.joins && job_.reencodes);
    for (;;) {
        while (due_.size() < conversion_->readAhead() && isSureToBeHandled() && readPacket()) {
            prepareLast();
        }
        const bool prepared = !due_.empty();
        if ((!prepared && !readPacket()) || isStopped() || reachedEnd()) {
            return;
        }
        tellProgress();
        if (!prepared) {
            prepareLast();
        }
        PacketHandler* handler = due_.front().handler;
        due_.pop_front();
        if (handler != nullptr) {
            const PacketOutcome outcome = handler->handle();
            note(outcome);
            if (outcome == PacketOutcome::FailedEnd) {
                return;
            }
        }
    }
}

/// Whether the packet after those that are due will be handled, however many pictures come of them:
/// a cut may end before. What is prepared in vain would leave the decoder in another state.
bool JobRun::isSureToBeHandled() const {
    if (job_.joins) {
        return true;
    }
    const auto mostPictures = static_cast<std::int64_t>(2 * due_.size() + kSpareUnits);
    return output_->videoSecondsAfter(mostPictures) < job_.spanSeconds[index_];
}

bool JobRun::readPacket() {
    PacketHandle packet = inputEnded_ ? nullptr : packets_->next();
    if (packet == nullptr) {
        inputEnded_ = true;
        return false;
    }
    PacketHandler* handler = handlerOf(*packet);
    due_.push_back({std::move(packet), handler});
    return true;
}

void JobRun::prepareLast() {
    DuePacket& last = due_.back();
    if (last.handler != nullptr) {
        last.handler->prepare(std::move(last.packet));
    }
}

bool JobRun::reachedEnd() const {
    return !job_.joins && output_->videoSeconds() >= job_.spanSeconds[index_];
}

void JobRun::tellProgress() {
    const double span = job_.spanSeconds[index_];
    if (job_.joins) {
        engine_.spans[index_] = span;
    }
    const double written = std::max(output_->audioSeconds(), output_->videoSeconds());
    // Whatever has been written of a job of no length is all of it; nothing written is nothing.
    const double percent = written > 0 ? written * 100.0 / span : 0.0;
    engine_.currentPercent = percent < 100.0 ? static_cast<int>(std::max(percent, 0.0)) : 100;
}

PacketHandler* JobRun::handlerOf(const AVPacket& packet) const {
    if (packet.stream_index == input_->videoStreamIndex()) {
        return handlers_.video.get();
    }
    return packet.stream_index == input_->audioStreamIndex() ? handlers_.audio.get() : nullptr;
}

void JobRun::note(PacketOutcome outcome) {
    if (outcome != PacketOutcome::Done) {
        setState(ConversionEngine::Failed);
    }
}

void JobRun::finishHandlers() {
    for (PacketHandler* handler : {handlers_.audio.get(), handlers_.video.get()}) {
        if (handler != nullptr) {
            note(handler->finish());
        }
    }
}

void JobRun::finishOutput() {
    if (output_->finish() < 0) {
        setState(ConversionEngine::Failed);
    }
}

void refuse(const Job& job, ConversionEngine& engine) {
    av_log(nullptr, AV_LOG_ERROR, "a job of %d inputs is larger than %zu\n", job.inputCount,
           ConversionEngine::kMaxInputs);
    for (auto& state : engine.fileStates) {
        state = ConversionEngine::Failed;
    }
    engine.currentIndex = job.inputCount;
}

// Without memory or threads there is nothing to go on with.
void execute(const Job& job, ConversionEngine& engine) {
    try {
        JobRun(job, engine).execute();
    } catch (const std::exception& failure) {
        av_log(nullptr, AV_LOG_ERROR, "the run cannot go on: %s\n", failure.what());
        for (std::int32_t i = 0; i < job.inputCount; ++i) {
            std::uint8_t pending = ConversionEngine::Pending;
            engine.fileStates[static_cast<std::size_t>(i)].compare_exchange_strong(
                pending, ConversionEngine::Failed);
        }
        engine.currentIndex = job.inputCount;
    }
}

} // namespace

void run(const Job& job, ConversionEngine& engine) {
    engine.currentPercent = 0;
    engine.currentIndex = 0;
    if (job.inputCount > static_cast<std::int32_t>(ConversionEngine::kMaxInputs)) {
        refuse(job, engine);
        return;
    }
    for (std::int32_t i = 0; i < job.inputCount; ++i) {
        engine.fileStates[static_cast<std::size_t>(i)] = ConversionEngine::Pending;
    }
    if (job.inputCount > 0) {
        execute(job, engine);
    }
}

} // namespace velmora
