// What made a run fail or a file be refused, as values.

#include "ExactSupport.h"
#include "FileSizeLimit.h"
#include "MediaOperations.h"
#include "MediaReader.h"

#include <filesystem>
#include <ostream>
#include <string>

namespace velmora {

void PrintTo(FailureCause::Kind kind, std::ostream* out) {
    *out << "kind " << static_cast<int>(kind);
}

} // namespace velmora

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

using Kind = FailureCause::Kind;

class Cause : public Exact {
protected:
    /// Of a direct cut of two seconds.
    FailureCause ofCopy(const std::string& source, const std::string& output) {
        Job job;
        job.add(source, output, 0, 2);
        return ofRun(job);
    }
    /// Of re-encoding into 128 x 64 and AAC, but for what `change` makes of the job.
    template <typename Change>
    FailureCause ofEncoding(const std::string& output, const Change& change) {
        Job job;
        job.add(source_, output, 0, 1);
        job.reencodes = true;
        job.video = video_;
        job.audio = audio_;
        change(job);
        return ofRun(job);
    }
    FailureCause ofRun(const Job& job) {
        load(engine_, job);
        return engine_.run(job).cause;
    }
    FailureCause ofProbe(const std::string& path) {
        engine_.probePath = path;
        engine_.probe();
        return mediaOperations().causeOfRefusal();
    }

    const std::string source_ = exactSource("plain.mp4");
    const std::string output_ = folder_ / "out.mp4";
};

TEST_F(Cause, runThatSucceeds_hasNone) {
    EXPECT_EQ(ofCopy(source_, output_).kind, Kind::None);
}

TEST_F(Cause, inputIsGone_isToldByName) {
    const FailureCause cause = ofCopy(folder_ / "gone.mp4", output_);
    EXPECT_EQ(cause.kind, Kind::InputMissing);
    EXPECT_EQ(cause.path, folder_ / "gone.mp4");
    EXPECT_EQ(cause.library, "No such file or directory");
}

TEST_F(Cause, probedFile_isEmptyNoMediaOrCutOff) {
    const std::string path = folder_ / "file.mp4";
    writeFile(path, "");
    EXPECT_EQ(ofProbe(path).kind, Kind::InputIsEmpty);
    writeFile(path, "this is a letter to a friend, and no video at all");
    EXPECT_EQ(ofProbe(path).kind, Kind::InputIsNoMedia);
    Bytes content = readFile(source_);
    content.resize(content.size() / 2); // what tells of the pictures stands at its end
    writeFile(path, content);
    EXPECT_EQ(ofProbe(path).kind, Kind::InputIsCut);
    EXPECT_EQ(ofProbe(source_).kind, Kind::None);
}

TEST_F(Cause, soundAlone_hasNoPictures) {
    EXPECT_EQ(ofCopy(mediaPath("audio-only.m4a"), output_).kind, Kind::NoPictures);
}

TEST_F(Cause, unknownCodec_hasNoDecoder) {
    EXPECT_EQ(ofCopy(mediaPath("unknown-codec.avi"), folder_ / "out.avi").kind, Kind::NoDecoder);
}

TEST_F(Cause, exactWindowWithoutPicture_isTold) {
    cut(source_, 410, 430, output_);
    EXPECT_EQ(report_.cause.kind, Kind::NothingBetweenTimes);
}

TEST_F(Cause, folderIsGone_isTold) {
    const FailureCause cause = ofCopy(source_, folder_ / "gone/out.mp4");
    EXPECT_EQ(cause.kind, Kind::FolderMissing);
    EXPECT_EQ(cause.path, folder_ / "gone/out.mp4");
}

TEST_F(Cause, outputIsAFolder_isNotWritable) {
    fs::create_directory(folder_ / "folder.mp4");
    EXPECT_EQ(ofCopy(source_, folder_ / "folder.mp4").kind, Kind::NotWritable);
}

TEST_F(Cause, outputIsTheSource_isTold) {
    const std::string source = folder_ / "source.mp4";
    fs::copy_file(source_, source);
    EXPECT_EQ(ofCopy(source, source).kind, Kind::OutputIsInput);
}

TEST_F(Cause, endingsOfNoUse_areTold) {
    EXPECT_EQ(ofCopy(source_, folder_ / "out.unknown").kind, Kind::UnknownContainer);
    EXPECT_EQ(ofCopy(source_, folder_ / "out.m3u8").kind, Kind::ContainerNotUsable);
}

TEST_F(Cause, fileOutgrowsItsLimit_isTold) {
    const FileSizeLimit limit(20'000);
    EXPECT_EQ(ofCopy(source_, output_).kind, Kind::FileTooLarge);
}

TEST_F(Cause, codecAndContainerDoNotGoTogether_namesThoseThatDo) {
    const std::string vp9 = mediaMadeBy(
        "-f lavfi -i testsrc2=size=128x64:rate=25:duration=1 -c:v libvpx-vp9 -deadline realtime",
        "cause-vp9.webm");
    const FailureCause cause = ofCopy(vp9, folder_ / "out.flv");
    EXPECT_EQ(cause.kind, Kind::CodecNotTaken);
    EXPECT_EQ(cause.codec, "vp9");
    EXPECT_EQ(cause.choice.find("flv"), std::string::npos);
    EXPECT_EQ(cause.choice.rfind("mp4, mkv", 0), 0U) << cause.choice;
}

TEST_F(Cause, sizeIsRefused_namesTheNearest) {
    const FailureCause cause = ofEncoding(output_, [](Job& job) {
        job.video.width = 129;
        job.video.height = 65;
    });
    EXPECT_EQ(cause.kind, Kind::SizeRefused);
    EXPECT_EQ(cause.codec, "h264");
    EXPECT_EQ(cause.choice, "128x64");
}

TEST_F(Cause, soundIsRefused_namesTheNearest) {
    const FailureCause cause = ofEncoding(output_, [](Job& job) { job.audio.sampleRate = 44'000; });
    EXPECT_EQ(cause.kind, Kind::SoundRefused);
    EXPECT_EQ(cause.codec, "aac");
    EXPECT_EQ(cause.choice, "44100 Hz, 2 channels");
}

TEST_F(Cause, laterFileOfAJoin_isNamedAlthoughTheFirstIsDone) {
    Job job;
    job.joins = true;
    job.add(source_, output_, 0, 0.002);
    job.add(folder_ / "gone.mp4", output_, 0, 0.002);
    EXPECT_EQ(ofRun(job).path, folder_ / "gone.mp4");
    EXPECT_EQ(result().states, (std::vector<int>{1, 2}));
}

} // namespace
} // namespace velmora::test
