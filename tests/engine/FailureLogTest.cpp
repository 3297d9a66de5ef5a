// A failure is told once, in the log: which file, what was done with it, and why.

#include "FaultyMedia.h"
#include "ReencodeSupport.h"

#include <filesystem>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace velmora::test {
namespace {

class FailureLog : public Reencode {
protected:
    /// Expects that `work` writes the text once.
    template <typename Work> void expectLogged(const std::string& text, Work work) {
        const AtLogLine line(text, [](int) {});
        work();
        EXPECT_EQ(line.seen(), 1) << text;
    }

    void copy(const std::string& input, const std::string& output) {
        JobTest::cut(input, 0, 1000, output);
    }
    void encode() { cut(source_, 0, 1000, output_); }

    const std::string source_ = mediaPath("h264.mp4");
    const std::string output_ = folder_ / "out.mkv";
};

TEST_F(FailureLog, inputs_areNamedWithWhatFailed) {
    const std::string missing = folder_ / "missing.mp4";
    expectLogged(missing + ": open: No such file or directory", [&] { copy(missing, output_); });
    expectLogged(mediaPath("unknown-codec.avi") + ": open decoder: Decoder not found",
                 [&] { copy(mediaPath("unknown-codec.avi"), output_); });
    expectLogged(mediaPath("audio-only.m4a") + ": no video stream",
                 [&] { copy(mediaPath("audio-only.m4a"), output_); });
}

TEST_F(FailureLog, outputs_areNamedWithWhatFailed) {
    const std::string unknown = folder_ / "out.unknown";
    expectLogged(unknown + ": choose container: Muxer not found", [&] { copy(source_, unknown); });
    const std::string homeless = folder_ / "no/such/folder/out.mkv";
    expectLogged(homeless + ": begin output: No such file or directory",
                 [&] { copy(source_, homeless); });
    const std::string itself = folder_ / "itself.mp4";
    std::filesystem::copy_file(source_, itself);
    expectLogged(itself + ": is also an input, or may be part of one",
                 [&] { copy(itself, itself); });
}

TEST_F(FailureLog, packetThatCannotBeWritten_isTold) {
    int packets = 0;
    const FaultyMedia faults({.write = [&](const AVPacket& /*packet*/) { return ++packets == 5; }});
    expectLogged(output_ + ": write packet: Input/output error", [&] { copy(source_, output_); });
}

TEST_F(FailureLog, encodersThatRefuse_areToldBeforeTheInput) {
    engine_.videoWidth = 0;
    expectLogged(source_ + ": open video encoder: ", [&] { encode(); });
    expectLogged(source_ + ": set up streams: ", [&] { encode(); });
    engine_.videoWidth = 160;
    engine_.audioSampleRate = 1;
    expectLogged(source_ + ": open audio encoder: ", [&] { encode(); });
}

TEST_F(FailureLog, soundThatCannotBeEncoded_isTold) {
    bool isFirst = true;
    const auto once = [&isFirst] { return std::exchange(isFirst, false); };
    {
        const FaultyMedia faults(
            {.encode = [&](const AVCodecContext& encoder, const AVFrame* frame) {
                return encoder.codec_type == AVMEDIA_TYPE_AUDIO && frame != nullptr && once();
            }});
        expectLogged("sound: encode: Cannot allocate memory", [&] { encode(); });
    }
    isFirst = true;
    const FaultyMedia faults({.queue = [&](int /*samples*/) { return once(); }});
    expectLogged("sound: queue: Cannot allocate memory", [&] { encode(); });
}

// What the standard library throws ends the run; what was not done has failed.
TEST_F(FailureLog, runWithoutMemory_isToldAndFailsWhatIsLeft) {
    fillJoin({source_, source_, source_}, output_);
    int inputs = 0;
    const FaultyMedia faults({.describe = [&](AVFormatContext& /*input*/) {
        if (++inputs == 2) {
            throw std::bad_alloc();
        }
    }});
    expectLogged("the run cannot go on: std::bad_alloc", [&] { run(); });
    EXPECT_EQ(result().states, (std::vector{1, 2, 2}));
}

TEST_F(FailureLog, jobThatIsTooLarge_isTold) {
    fillPaths(std::vector(1000, source_), output_);
    expectLogged("a job of 1000 inputs is larger than 999", [&] { run(); });
}

} // namespace
} // namespace velmora::test
