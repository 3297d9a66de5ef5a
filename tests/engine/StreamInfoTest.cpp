#include "StreamInfo.h"

#include "JobSupport.h"
#include "MediaFacts.h"

extern "C" {
#include <libavutil/log.h>
}

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

std::string pictures(const std::string& rate, const std::string& more = "") {
    return "-f lavfi -i testsrc2=size=64x48:rate=" + rate + more + " -frames:v 24";
}

const std::string kSound = " -f lavfi -i sine=sample_rate=44100";
const std::string kX264 = " -c:v libx264 -preset ultrafast -pix_fmt yuv420p";
const std::string kReordered = kX264 + " -bf 3 -x264-params b-adapt=0";
const std::string kInterlaced = kX264 + " -flags +ilme+ildct -x264-params tff=1";
const std::string kX265 = " -c:v libx265 -preset ultrafast -x265-params log-level=none";

/// In what the engine sees the file otherwise than the media libraries by themselves.
Facts differences(const std::string& path) {
    const InputContextHandle plain = openPlainly(path);
    InputMedia media(path, nullptr);
    if (plain == nullptr || media.open() < 0 || media.readStreamInfo() < 0) {
        return {"cannot be read"};
    }
    Facts all = streamInfoDifferences(media, *plain);
    std::ranges::copy(packetDifferences(media, *plain), std::back_inserter(all));
    return all;
}

/// Whether the file is read without its decoders.
bool isReadQuickly(const std::string& path) {
    AVFormatContext* context = nullptr;
    if (avformat_open_input(&context, ("file:" + path).c_str(), nullptr, nullptr) < 0) {
        return false;
    }
    const InputContextHandle container(context);
    QuickStreamInfo quick(*container);
    return quick.isPossible() && quick.read() >= 0 && quick.isSure();
}

void expectPlain(const std::string& command, const std::string& name) {
    EXPECT_EQ(differences(mediaMadeBy(command, name)), Facts()) << command << ' ' << name;
}

/// The libraries speak of what they cannot read.
class StreamInfo : public ::testing::Test {
protected:
    void SetUp() override { av_log_set_level(AV_LOG_QUIET); }
    void TearDown() override { av_log_set_level(AV_LOG_INFO); }
};

class StreamInfoAt : public StreamInfo, public ::testing::WithParamInterface<std::string> {};

TEST_P(StreamInfoAt, rate_isTheSameAsReadPlainly) {
    expectPlain(pictures(GetParam()) + kX264, "rate.mkv");
    for (const char* extension : {"mp4", "mov", "mkv", "ts", "avi", "flv", "mpg", "asf"}) {
        expectPlain(pictures(GetParam()) + kReordered, std::string("rate.") + extension);
    }
}

INSTANTIATE_TEST_SUITE_P(Rates, StreamInfoAt,
                         ::testing::Values("1", "2", "3", "4", "5", "12", "15", "24000/1001", "24",
                                           "25", "30000/1001", "30", "48", "50", "60000/1001", "60",
                                           "100", "120000/1001", "120"),
                         [](const auto& tested) { return asTestName(tested.param); });

TEST_P(StreamInfoAt, rateBesideSoundAndTexts_isTheSameAsReadPlainly) {
    const std::string texts =
        "-i @subtitles.mkv " + pictures(GetParam(), kSound) + " -map 1:v -map 2:a -map 0:s";
    expectPlain(texts + " -shortest -c:a aac" + kX264, "beside.mkv");
    expectPlain(texts + " -shortest -c:a aac -c:s mov_text" + kX264, "beside.mp4");
}

TEST_F(StreamInfo, fieldsAndHevc_sameAsReadPlainly) {
    for (const char* rate : {"2", "60000/1001"}) {
        for (const char* name : {"rate.mp4", "rate.mkv"}) {
            expectPlain(pictures(rate) + kInterlaced, name);
            expectPlain(pictures(rate) + kX265, name);
        }
    }
}

TEST_F(StreamInfo, soundAndSubtitles_sameAsReadPlainly) {
    const std::string sound = pictures("60", kSound) + " -shortest -c:a aac" + kReordered;
    const std::string texts = "-i @subtitles.mkv " + pictures("60") + " -map 1:v -map 0:s";
    for (const char* name : {"more.mp4", "more.mkv"}) {
        expectPlain(sound, name);
    }
    expectPlain(texts + kReordered, "more.mkv");
    expectPlain(texts + kReordered + " -c:s mov_text", "more.mp4");
}

TEST_F(StreamInfo, picturesThatStartLater_startIsTheSame) {
    for (const char* name : {"later.mkv", "later.mp4"}) {
        expectPlain("-itsoffset 2 " + pictures("25") + kReordered, name);
        expectPlain("-itsoffset 2 " + pictures("25") + kX264, name);
        expectPlain(pictures("25", " -itsoffset 0.2" + kSound) + " -shortest -c:a aac" + kX264,
                    name);
    }
}

TEST_F(StreamInfo, picturesWithoutAPattern_sameAsReadPlainly) {
    for (const char* times :
         {"N*N/400/TB", "N/1000/TB+random(0)/TB", "(N/30+gt(N\\,9)*0.013)/TB"}) {
        for (const char* name : {"variable.mp4", "variable.mkv"}) {
            expectPlain(pictures("30") + " -vf settb=1/90000,setpts='" + times +
                            "' -vsync vfr -enc_time_base " +
                            "1:90000 -video_track_timescale 90000" + kX264,
                        name);
        }
    }
}

// Decoding times without a pattern leave the rate to what the headers say.
TEST_F(StreamInfo, rateOfTheHeaders_sameAsReadPlainly) {
    const std::string irregular =
        mediaMadeBy(pictures("30") +
                        " -vf settb=1/90000,setpts='(N+0.4*sin(N*N))/30/TB' -vsync vfr "
                        "-enc_time_base 1:90000 -video_track_timescale 90000" +
                        kX264,
                    "irregular.mp4");
    for (const char* rate : {"20", "50", "120"}) {
        for (const char* name : {"told.mp4", "told.mov", "told.mkv"}) {
            expectPlain("-i " + irregular +
                            " -c copy -video_track_timescale 90000 "
                            "-bsf:v h264_metadata=tick_rate=" +
                            rate,
                        name);
        }
    }
}

TEST_F(StreamInfo, textLongBeforeThePictures_startIsTheSame) {
    expectPlain("-i @subtitles.mkv -itsoffset 3 " + pictures("25") + " -map 1:v -map 0:s" + kX264,
                "text.mkv");
}

TEST_F(StreamInfo, soundOfVaryingBitRate_sameAsReadPlainly) {
    const std::string noise = " -f lavfi -i anoisesrc=a=0.1,volume='min(t,1)':eval=frame";
    expectPlain(pictures("25", noise) + " -shortest -c:a libmp3lame -q:a 3" + kX264, "varying.mkv");
}

TEST_F(StreamInfo, fewPictures_sameAsReadPlainly) {
    for (const char* count : {"1", "2", "7", "8", "19", "20"}) {
        expectPlain(pictures("25") + " -frames:v " + count + kReordered, "few.mkv");
        expectPlain(pictures("25") + " -frames:v " + count + kX264, "few.mkv");
    }
}

TEST_F(StreamInfo, whatCamerasWrite_isReadWithoutDecoders) {
    const std::string sound = pictures("30000/1001", kSound) + " -shortest -c:a aac";
    for (const std::string& codec : {kX264, kReordered, kX265}) {
        for (const char* name : {"camera.mp4", "camera.mov", "camera.mkv"}) {
            EXPECT_TRUE(isReadQuickly(mediaMadeBy(sound + codec, name))) << codec << ' ' << name;
        }
    }
    // Phones make pictures when there is light enough.
    EXPECT_TRUE(isReadQuickly(mediaMadeBy(
        pictures("30") +
            " -vf settb=1/90000,setpts='(N/30+gt(N\\,9)*0.013)/TB' -vsync vfr -enc_time_base " +
            "1:90000 -video_track_timescale 90000" + kX264,
        "variable.mp4")));
}

} // namespace
} // namespace velmora::test
