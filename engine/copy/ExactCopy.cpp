#include "ExactCopy.h"

#include "CopyOutput.h"
#include "CopyPlan.h"
#include "CopyRules.h"
#include "EngineLog.h"
#include "H264Packets.h"
#include "InputProgress.h"
#include "SeamEncoder.h"
#include "SeamSource.h"
#include "StagedFile.h"
#include "TimeBases.h"
#include "WrittenFile.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace velmora {
namespace {

constexpr const char* kNotVerified = "The exact cut could not be verified; nothing was kept.";
constexpr const char* kNotAsPlanned =
    "This video cannot be cut exactly without encoding it again: it is damaged, or its pictures "
    "change their order on the way.";

/// One exact copy. Owns what is open.
class CopyJob {
public:
    CopyJob(const Job& job, RunProgress& progress, const StopFlag& stop)
        : job_(job), percent_(progress, 0, job.spanOf(0), false), stop_(stop),
          source_(job.inputPaths[0], &stop), sound_(job.inputPaths[0], &stop),
          seams_(job.inputPaths[0], &stop), staged_(job.outputPaths[0]), output_(staged_.path()) {}

    /// 0 or a negative libav error code; `finding` may say more.
    int execute(std::string& finding);

private:
    int plan();
    int begin();
    bool openSound();
    int openEncoder(std::optional<SeamEncoder>& encoder) const;
    Bytes record() const;
    int writeSeam(const std::vector<std::int64_t>& times, SeamEncoder& encoder);
    int writeCopied();
    int writeCopied(AVPacket& packet);
    int writeTail();
    int write(AVPacket& packet, std::int64_t time);
    int check();
    bool isStopped() const { return isRaised(&stop_); }
    int fail(const std::string& why) {
        finding_ = why;
        return AVERROR_INVALIDDATA;
    }

    const Job& job_;
    InputProgress percent_;
    const StopFlag& stop_;
    const AVOutputFormat* format_ = nullptr;
    CodedPictures source_;
    SoundPackets sound_;
    SeamSource seams_;
    StagedFile staged_; ///< outlives the output, which writes there
    CopyOutput output_;
    CopyPlan plan_;
    std::optional<SeamEncoder> encoder_; ///< of either end; their parameter sets are the same
    std::string finding_;
};

int CopyJob::execute(std::string& finding) {
    int result = plan();
    if (result >= 0) {
        result = begin();
    }
    if (result >= 0 && !plan_.cut.head.empty()) {
        result = writeSeam(plan_.cut.head, *encoder_);
    }
    if (result >= 0 && plan_.cut.copied) {
        result = writeCopied();
    }
    if (result >= 0) {
        result = writeTail();
    }
    if (result >= 0) {
        result = output_.finish();
    }
    if (result >= 0 && !isStopped()) {
        result = check();
    }
    if (result >= 0 && !isStopped()) {
        result = staged_.commit();
    }
    finding = finding_;
    return isStopped() ? AVERROR_EXIT : result;
}

int CopyJob::plan() {
    const std::string& path = job_.outputPaths[0];
    format_ = av_guess_format(nullptr, path.c_str(), nullptr);
    if (format_ == nullptr) {
        logFailure(path, Operation::ChooseContainer, AVERROR_MUXER_NOT_FOUND);
        return AVERROR_MUXER_NOT_FOUND;
    }
    if (InputFiles::mayReach(job_.inputPaths, path)) {
        logRefusal(path, Operation::KeepInputs, "is also an input, or may be part of one");
        return AVERROR(EEXIST);
    }
    const int result = source_.open();
    if (result < 0) {
        logFailure(job_.inputPaths[0], Operation::OpenPictures, result);
        return result;
    }
    plan_ = planCopy(source_, job_.windows[0], *format_);
    return plan_.isPossible() ? 0 : fail(plan_.forecast.refusal);
}

int CopyJob::openEncoder(std::optional<SeamEncoder>& encoder) const {
    encoder.emplace();
    const int result = encoder->open(source_.stream(), *source_.sets(), plan_.depth);
    if (result < 0) {
        logFailure(job_.inputPaths[0], Operation::OpenVideoEncoder, result);
    }
    return result;
}

Bytes CopyJob::record() const {
    if (!source_.isH264()) {
        return {};
    }
    H264Sets sets = *source_.sets();
    if (encoder_) {
        sets.add(encoder_->sets());
    }
    return sets.record();
}

bool CopyJob::openSound() {
    if (source_.input().audioStream() == nullptr || sound_.open() < 0) {
        return false;
    }
    const AVRational timeBase = source_.stream().time_base;
    const std::int64_t originUs = av_rescale_q(plan_.origin(), timeBase, kMicrosecond);
    const std::int64_t endUs =
        plan_.window.endUs ? *plan_.window.endUs - originUs : SoundCut::kToTheEnd;
    return sound_.goTo(plan_.origin(), timeBase, endUs, *format_) >= 0 && sound_.peek() != nullptr;
}

/// The parameter sets of what is encoded have to be in the header, also those of a tail alone.
int CopyJob::begin() {
    const bool hasSeams = !plan_.cut.head.empty() || !plan_.cut.tail.empty();
    int result = hasSeams ? openEncoder(encoder_) : 0;
    if (result < 0) {
        return result;
    }
    result = staged_.prepare();
    if (result < 0) {
        logFailure(job_.outputPaths[0], Operation::BeginOutput, result);
        return result;
    }
    return output_.begin(*format_, source_, plan_, record(), openSound() ? &sound_ : nullptr);
}

int CopyJob::writeSeam(const std::vector<std::int64_t>& times, SeamEncoder& encoder) {
    return seams_.encode(times, encoder, [this](AVPacket& packet, std::int64_t time) {
        return write(packet, time);
    });
}

int CopyJob::write(AVPacket& packet, std::int64_t time) {
    percent_.packetIsDue(output_.seconds());
    const int result = output_.write(packet, time);
    return result == AVERROR_INVALIDDATA ? fail(kNotAsPlanned) : result;
}

int CopyJob::writeCopied() {
    const CutPlan::Run& run = *plan_.cut.copied;
    int result = source_.goTo(run.first);
    PacketHandle packet = source_.next();
    while (packet != nullptr && packet->pts != run.first) {
        packet = source_.next();
    }
    if (packet == nullptr) {
        return fail(kNotAsPlanned);
    }
    const auto isRunning = [&] { return packet != nullptr && packet->pts != run.stop; };
    for (; result >= 0 && isRunning() && !isStopped(); packet = source_.next()) {
        if (packet->pts >= run.first || packet->pts == AV_NOPTS_VALUE) {
            result = writeCopied(*packet);
        }
    }
    if (result >= 0 && packet == nullptr && run.stop && !isStopped()) {
        return fail(kNotAsPlanned);
    }
    return result;
}

int CopyJob::writeCopied(AVPacket& packet) {
    std::string trouble = source_.troubleWith(packet);
    if (trouble.empty() && (packet.flags & AV_PKT_FLAG_DISCARD) != 0) {
        trouble = "its container hides some of its pictures.";
    }
    if (!trouble.empty()) {
        return fail("This video cannot be cut exactly without encoding it again: " + trouble);
    }
    if (packet.pts >= plan_.end) {
        return fail(kNotAsPlanned);
    }
    const int result = source_.isH264()
                           ? convertH264(packet, source_.sets()->lengthSize(), H264Kept::AllButSets)
                           : 0;
    return result < 0 ? result : write(packet, packet.pts);
}

int CopyJob::writeTail() {
    if (plan_.cut.tail.empty() || isStopped()) {
        return 0;
    }
    std::optional<SeamEncoder> encoder;
    int result = openEncoder(encoder);
    if (result >= 0 && encoder->sets().record() != encoder_->sets().record()) {
        return fail(kNotVerified);
    }
    return result < 0 ? result : writeSeam(plan_.cut.tail, *encoder);
}

/// What was written, with the eyes of a reader.
int CopyJob::check() {
    WrittenPictures written = output_.written();
    written.head = plan_.cut.head.size();
    written.tail = plan_.cut.tail.size();
    const bool isCounted = !plan_.forecast.isEstimate;
    const bool isComplete = !isCounted || output_.count() == plan_.forecast.pictures;
    if (!isComplete || !hasSoundSeams(staged_.path(), written)) {
        return fail(kNotVerified);
    }
    const double lastPicture = static_cast<double>(written.times.back()) * av_q2d(written.timeBase);
    const std::string difference = differenceOf(staged_.path(),
                                                {.hasSound = output_.hasSound(),
                                                 .pictures = output_.count(),
                                                 .seconds = output_.length(),
                                                 .lastPictureSeconds = lastPicture,
                                                 .isExact = true},
                                                &stop_);
    if (!difference.empty()) {
        av_log(nullptr, AV_LOG_ERROR, "%s: %s\n", job_.outputPaths[0].c_str(), difference.c_str());
        return fail(kNotVerified);
    }
    return 0;
}

} // namespace

RunReport copyExactly(const Job& job, RunProgress& progress, const StopFlag& stop) {
    progress.inputIs(0);
    RunReport report;
    int result = AVERROR(ENOSYS);
    if (job.joins || job.inputPaths.size() != 1 || job.windows.empty()) {
        report.finding = "Videos cannot be joined exactly without encoding them again.";
    } else { // closes what is open, and removes what is not to stay
        CopyJob copy(job, progress, stop);
        result = copy.execute(report.finding);
    }
    const std::size_t count = job.inputPaths.size();
    for (std::size_t i = 0; i < count && !isRaised(&stop); ++i) {
        progress.stateIs(i, result >= 0 ? InputState::Done : InputState::Failed);
    }
    progress.inputIs(count);
    return report;
}

} // namespace velmora
