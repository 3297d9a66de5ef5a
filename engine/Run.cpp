#include "Run.h"

#include "ConversionEngine.h"
#include "EngineLog.h"
#include "FileIdentity.h"
#include "FrameRate.h"
#include "InputMedia.h"
#include "Job.h"
#include "OutputMedia.h"
#include "StreamCopier.h"

#include <algorithm>
#include <memory>
#include <optional>

namespace velmora {
namespace {

/// How the work on one input ended, or that it goes on.
enum class Step { Continue, InputFailed, RunEnds };

/// Works through the inputs of one job. Owns what is open: the input in hand, until the next, and
/// the output, until the end.
class JobRun {
public:
    explicit JobRun(ConversionEngine& engine)
        : engine_(engine), job_(engine), count_(job_.inputPaths.size()) {}

    void execute();

private:
    Step processInput();
    Step setUp();
    Step openInput();
    Step createOutput();
    Step setUpVideo();
    Step setUpAudio();
    Step beginOutput();
    int copyParameters(AVStream& source, OutputStream& target);
    bool outputIsAnInput() const;

    void seekToStart();
    void handlePackets();
    bool reachedEnd();
    void updatePercent();
    PacketHandler* handlerOf(const AVPacket& packet) const;
    bool goesOn(PacketOutcome outcome);
    void finishHandlers();

    void finishOutput();
    bool isStopped() const { return isRaised(&engine_.stopRequested); }
    bool isFirst() const { return index_ == 0; }
    bool isLast() const { return index_ + 1 == count_; }
    void setState(ConversionEngine::FileState state) { engine_.fileStates[index_] = state; }

    ConversionEngine& engine_;
    const Job job_;
    const std::size_t count_;
    std::size_t index_ = 0;
    std::optional<OutputMedia> output_;
    std::optional<InputMedia> input_;
    int decoderDelay_ = 0; ///< pictures, of the input in hand
    std::unique_ptr<PacketHandler> video_;
    std::unique_ptr<PacketHandler> audio_;
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
    video_.reset();
    audio_.reset();
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
    for (const auto step : {&JobRun::openInput, &JobRun::createOutput, &JobRun::setUpVideo,
                            &JobRun::setUpAudio, &JobRun::beginOutput}) {
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
    input_->openAudioDecoder(); // sound that cannot be decoded can still be copied
    if (input_->videoDecoder() != nullptr) {
        decoderDelay_ = input_->videoDecoder()->has_b_frames;
    }
    if (!job_.reencodes) {
        input_->closeDecoders(); // a copy only has to know that they open
    }
    return Step::Continue;
}

Step JobRun::createOutput() {
    if (!isFirst()) {
        return Step::Continue;
    }
    output_.emplace(job_.outputPath);
    if (output_->create() < 0) {
        return Step::InputFailed;
    }
    if (input_->videoStream() == nullptr) {
        av_log(nullptr, AV_LOG_ERROR, "%s: no video stream\n", input_->path().c_str());
        return Step::RunEnds;
    }
    return Step::Continue;
}

Step JobRun::setUpVideo() {
    AVStream* source = input_->videoStream();
    if (source == nullptr) {
        return Step::Continue;
    }
    const int delay = displayDelay(*input_->container(), *source, decoderDelay_, output_->format());
    if (isFirst()) {
        const AVRational rate = correctedFrameRate(source->r_frame_rate);
        if (rate.num <= 0 || rate.den <= 0) {
            av_log(nullptr, AV_LOG_ERROR, "%s: no frame rate\n", input_->path().c_str());
            return Step::InputFailed;
        }
        OutputStream* added = output_->addVideoStream(av_inv_q(rate));
        if (added == nullptr || copyParameters(*source, *added) < 0) {
            return Step::InputFailed;
        }
        added->displayDelay = delay;
    }
    OutputStream* target = output_->videoStream();
    if (target == nullptr) {
        return Step::InputFailed;
    }
    auto copier = std::make_unique<VideoCopier>(*output_, *target);
    const int opened = copier->open(*source, delay);
    video_ = std::move(copier);
    return opened < 0 ? Step::InputFailed : Step::Continue;
}

Step JobRun::setUpAudio() {
    AVStream* source = input_->audioStream();
    if (source == nullptr) {
        return Step::Continue;
    }
    if (isFirst()) {
        OutputStream* added = output_->addAudioStream({1, source->codecpar->sample_rate});
        if (added == nullptr || copyParameters(*source, *added) < 0) {
            return Step::InputFailed;
        }
    }
    OutputStream* target = output_->audioStream();
    if (target == nullptr) {
        return Step::InputFailed;
    }
    audio_ = std::make_unique<AudioCopier>(*output_, *target, *source);
    return Step::Continue;
}

int JobRun::copyParameters(AVStream& source, OutputStream& target) {
    const int result =
        copyStreamParameters(*input_->container(), source, output_->format(), *target.stream);
    if (result < 0) {
        logFailure(input_->path(), "copy stream parameters", result);
    }
    return result;
}

Step JobRun::beginOutput() {
    if (!isFirst()) {
        return Step::Continue;
    }
    if (outputIsAnInput()) {
        av_log(nullptr, AV_LOG_ERROR, "%s: is also an input\n", job_.outputPath.c_str());
        return Step::InputFailed;
    }
    copyFileTags(*input_->container(), output_->tags());
    return output_->begin() < 0 ? Step::InputFailed : Step::Continue;
}

bool JobRun::outputIsAnInput() const {
    const auto output = FileIdentity::ofPath(job_.outputPath);
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
    for (;;) {
        PacketHandle packet(av_packet_alloc());
        if (packet == nullptr) {
            goesOn(PacketOutcome::FailedEnd);
            return;
        }
        if (input_->read(*packet) < 0 || isStopped() || reachedEnd()) {
            return;
        }
        updatePercent();
        PacketHandler* handler = handlerOf(*packet);
        if (handler != nullptr && !goesOn(handler->handle(std::move(packet)))) {
            return;
        }
    }
}

bool JobRun::reachedEnd() {
    const double span = job_.spanSeconds[index_];
    if (job_.joins) {
        engine_.spans[index_] = span;
        return false;
    }
    return output_->videoSeconds() >= span;
}

void JobRun::updatePercent() {
    const double written = std::max(output_->audioSeconds(), output_->videoSeconds());
    // Whatever has been written of a job of no length is all of it; nothing written is nothing.
    const double percent = written > 0 ? written * 100.0 / job_.spanSeconds[index_] : 0.0;
    engine_.currentPercent = percent < 100.0 ? static_cast<int>(std::max(percent, 0.0)) : 100;
}

PacketHandler* JobRun::handlerOf(const AVPacket& packet) const {
    if (packet.stream_index == input_->videoStreamIndex()) {
        return video_.get();
    }
    return packet.stream_index == input_->audioStreamIndex() ? audio_.get() : nullptr;
}

bool JobRun::goesOn(PacketOutcome outcome) {
    if (outcome == PacketOutcome::FailedGoOn || outcome == PacketOutcome::FailedEnd) {
        setState(ConversionEngine::Failed);
    }
    return outcome == PacketOutcome::Done || outcome == PacketOutcome::FailedGoOn;
}

void JobRun::finishHandlers() {
    for (const auto& handler : {video_.get(), audio_.get()}) {
        if (handler != nullptr) {
            goesOn(handler->finish());
        }
    }
}

void JobRun::finishOutput() {
    if (output_->finish() < 0) {
        setState(ConversionEngine::Failed);
    }
}

void refuse(ConversionEngine& engine) {
    av_log(nullptr, AV_LOG_ERROR, "a job of %d inputs is larger than %zu\n", engine.inputCount,
           ConversionEngine::kMaxInputs);
    for (auto& state : engine.fileStates) {
        state = ConversionEngine::Failed;
    }
    engine.currentIndex = engine.inputCount;
}

} // namespace

void run(ConversionEngine& engine) {
    engine.currentPercent = 0;
    engine.currentIndex = 0;
    if (engine.inputCount > static_cast<std::int32_t>(ConversionEngine::kMaxInputs)) {
        refuse(engine);
        return;
    }
    for (std::int32_t i = 0; i < engine.inputCount; ++i) {
        engine.fileStates[static_cast<std::size_t>(i)] = ConversionEngine::Pending;
    }
    if (engine.inputCount > 0) {
        JobRun(engine).execute();
    }
}

} // namespace velmora
