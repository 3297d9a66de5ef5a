#include "ConverterThread.h"
#include "ConversionEngine.h"
#include "Job.h"
#include "JobsSupport.h"
#include "MediaReader.h"

extern "C" {
#include <libavcodec/codec_id.h>
}

#include <cmath>
#include <limits>
#include <stdexcept>

namespace velmora::test {
namespace {

/// Items whose files do not exist fail at once, and what the driver has filled in stays.
class ConverterThreadTest : public SharedStateTest {
protected:
    void fillFrom(float start, float end) { addItem("/nowhere/in.mp4", start, end); }
    void run(int isCutter, int isDirectly = 1) {
        ConverterThread::beginConverter({.fullPath = output("out.mp4"),
                                         .isDirectly = isDirectly,
                                         .isCutter = isCutter,
                                         .width = 1,
                                         .height = 2});
    }

    ConversionEngine& engine_ = ConversionEngine::instance();
    NodeSetting& setting_ = *currentSetting;
};

TEST_F(ConverterThreadTest, cut_times_areSecondsWithTheirSpan) {
    fillFrom(1500, 4000);
    run(1);
    EXPECT_EQ(engine_.startTimes[0], 1.5);
    EXPECT_EQ(engine_.endTimes[0], 4.0);
    EXPECT_EQ(engine_.spans[0], 2.5);
    EXPECT_EQ(engine_.joinTotalMs, 0);
}

TEST_F(ConverterThreadTest, exactCut_windowKeepsItsMilliseconds) {
    addItem("/nowhere/in.mp4", 36e6F, 36e6F); // floats cannot tell the two apart
    ConverterInfo asked{.fullPath = output("out.mp4"), .isDirectly = 0, .isCutter = 1};
    asked.exact = true;
    asked.startMs = 36'000'001;
    asked.endMs = 36'000'003;
    Job job;
    ConverterThread::addExactPart(RunRequest::of(asked), job);
    EXPECT_TRUE(job.exact);
    ASSERT_EQ(job.windows.size(), 1U);
    EXPECT_EQ(job.windows[0].startMs, 36'000'001);
    EXPECT_EQ(job.windows[0].endMs, 36'000'003);
}

TEST_F(ConverterThreadTest, exactJoin_leavesEachFileItsOwnRate) {
    Job job;
    job.joins = true;
    job.video.frameRate = 30.0;
    ConverterThread::addExactPart(RunRequest::of({.fullPath = output("out.mp4"), .exact = true}),
                                  job);
    EXPECT_EQ(job.video.frameRate, 0.0);
}

TEST_F(ConverterThreadTest, plainCut_isNotExact) {
    addItem("/nowhere/in.mp4", 1000, 2000);
    Job job;
    ConverterThread::addExactPart(RunRequest::of({.fullPath = output("out.mp4"), .isCutter = 1}),
                                  job);
    EXPECT_FALSE(job.exact);
    EXPECT_TRUE(job.windows.empty());
}

TEST_F(ConverterThreadTest, cut_oddTime_isDividedAsFloat) {
    fillFrom(0, 1234.5F);
    run(1);
    EXPECT_EQ(engine_.endTimes[0], static_cast<double>(1234.5F / 1000.0F));
    EXPECT_NE(engine_.endTimes[0], 1.2345);
}

TEST_F(ConverterThreadTest, join_lengths_addUpTruncatedEachTime) {
    fillFrom(0, 10.7F);
    run(0);
    EXPECT_EQ(engine_.joinTotalMs, 10);
    fillFrom(0, 20.6F);
    run(0);
    EXPECT_EQ(engine_.joinTotalMs, 30);
    EXPECT_EQ(engine_.endTimes[1], static_cast<double>(20.6F / 1000.0F));
}

TEST_F(ConverterThreadTest, join_impossibleLengths_stayWithin32Bits) {
    fillFrom(0, std::numeric_limits<float>::infinity());
    run(0);
    EXPECT_EQ(engine_.joinTotalMs, std::numeric_limits<std::int32_t>::max());
    sharedFileList->front()->endTime = std::numeric_limits<float>::quiet_NaN();
    run(0);
    EXPECT_EQ(engine_.joinTotalMs, 0);
}

TEST_F(ConverterThreadTest, tables_haveTheItemsPathsAndTheOneOutput) {
    const std::string longPath = "/nowhere/" + std::string(400, 'x') + "é.mp4";
    fillFrom(0, 1);
    addItem(longPath, 0, 1);
    run(0);
    EXPECT_EQ(engine_.jobCount, 2);
    EXPECT_EQ(engine_.inputCount, 2);
    EXPECT_EQ(engine_.inputPaths, (StringTable{"/nowhere/in.mp4", longPath}));
    EXPECT_EQ(engine_.outputPaths, StringTable(2, folder_ / "out.mp4"));
    EXPECT_EQ(engine_.fileStates[0], ConversionEngine::Failed);
    EXPECT_EQ(engine_.fileStates[1], ConversionEngine::Failed);
    EXPECT_EQ(engine_.currentIndex, 2);
}

TEST_F(ConverterThreadTest, emptyOrMissingState_givesARunWithoutItems) {
    run(1);
    EXPECT_EQ(engine_.jobCount, 0);
    EXPECT_EQ(engine_.inputCount, 0);
    sharedFileList.reset();
    currentSetting.reset();
    run(1);
    EXPECT_EQ(engine_.inputCount, 0);
    EXPECT_EQ(engine_.currentIndex, 0);
}

TEST_F(ConverterThreadTest, moreItemsThanTheEngineTakes_allFail) {
    for (int i = 0; i < 1001; ++i) {
        fillFrom(0, 1);
    }
    run(0);
    EXPECT_EQ(engine_.inputCount, 1001);
    EXPECT_EQ(engine_.currentIndex, 1001);
    EXPECT_EQ(engine_.fileStates[0], ConversionEngine::Failed);
    EXPECT_EQ(engine_.fileStates[999], ConversionEngine::Failed);
}

TEST_F(ConverterThreadTest, settings_areConvertedToTheEnginesUnits) {
    setting_.aBitrate = "128 kbps";
    setting_.aChannels = "2 (Stereo)";
    setting_.aSamplerate = " 44100 Hz";
    setting_.aEncoder = "WMA8";
    setting_.vBitrate = "2500 kbps";
    setting_.vFrameRate = "29.97 fps";
    setting_.vEncoder = "MPEG4";
    setting_.vResolution = "1x1"; // the parsed size counts
    setting_.width = 640;
    setting_.height = 480;
    fillFrom(0, 1000);
    run(1);
    EXPECT_EQ(engine_.audioBitRate, 128000);
    EXPECT_EQ(engine_.audioChannels, 2);
    EXPECT_EQ(engine_.audioSampleRate, 44100);
    EXPECT_EQ(engine_.audioCodecId, AV_CODEC_ID_WMAV2);
    EXPECT_EQ(engine_.videoBitRate, 2500000);
    EXPECT_EQ(engine_.videoFrameRate, 29.97);
    EXPECT_EQ(engine_.videoCodecId, AV_CODEC_ID_MPEG4);
    EXPECT_EQ(engine_.videoCodecChosen, 1);
    EXPECT_EQ(engine_.videoWidth, 640);
    EXPECT_EQ(engine_.videoHeight, 480);
}

TEST_F(ConverterThreadTest, settings_textsWithoutNumbers_give0) {
    setting_.aBitrate = "letters";
    setting_.aChannels = "x2";
    setting_.vBitrate = "";
    setting_.vFrameRate = "fps 30";
    engine_.audioBitRate = engine_.audioSampleRate = engine_.audioChannels = 7;
    engine_.videoFrameRate = 7;
    fillFrom(0, 1000);
    run(1);
    EXPECT_EQ(engine_.audioBitRate, 0);
    EXPECT_EQ(engine_.audioChannels, 0);
    EXPECT_EQ(engine_.audioSampleRate, 0);
    EXPECT_EQ(engine_.videoBitRate, 0);
    EXPECT_EQ(engine_.videoFrameRate, 0.0);
}

TEST_F(ConverterThreadTest, settings_hugeNumbers_stayWithin32Bits) {
    setting_.aBitrate = "4000000";
    setting_.vBitrate = "99999999999999999999";
    setting_.aSamplerate = "-99999999999999999999";
    fillFrom(0, 1000);
    run(1);
    EXPECT_EQ(engine_.audioBitRate, std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(engine_.videoBitRate, std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(engine_.audioSampleRate, std::numeric_limits<std::int32_t>::min());
}

struct Encoder {
    const char* name;
    AVCodecID codec;
};
constexpr auto kOther = AV_CODEC_ID_FLAC; // stays when a name selects nothing

class VideoEncoderName : public ConverterThreadTest, public testing::WithParamInterface<Encoder> {};

TEST_P(VideoEncoderName, name_selectsItsCodec) {
    engine_.videoCodecId = kOther;
    engine_.videoCodecChosen = 1;
    setting_.vEncoder = GetParam().name;
    fillFrom(0, 1000);
    run(1);
    EXPECT_EQ(engine_.videoCodecId, GetParam().codec);
    EXPECT_EQ(engine_.videoCodecChosen, GetParam().codec == kOther ? 0 : 1);
}

INSTANTIATE_TEST_SUITE_P(All, VideoEncoderName,
                         testing::Values(Encoder{"MPEG4", AV_CODEC_ID_MPEG4},
                                         Encoder{"H264", AV_CODEC_ID_H264},
                                         Encoder{"WMV2", AV_CODEC_ID_WMV2},
                                         Encoder{"FLV", AV_CODEC_ID_FLV1}, Encoder{"h264", kOther},
                                         Encoder{"", kOther}));

class AudioEncoderName : public ConverterThreadTest, public testing::WithParamInterface<Encoder> {};

TEST_P(AudioEncoderName, name_selectsItsCodec) {
    engine_.audioCodecId = kOther;
    setting_.aEncoder = GetParam().name;
    fillFrom(0, 1000);
    run(1);
    EXPECT_EQ(engine_.audioCodecId, GetParam().codec);
}

INSTANTIATE_TEST_SUITE_P(All, AudioEncoderName,
                         testing::Values(Encoder{"MP3", AV_CODEC_ID_MP3},
                                         Encoder{"WMA8", AV_CODEC_ID_WMAV2},
                                         Encoder{"AAC", AV_CODEC_ID_AAC},
                                         Encoder{"VORBIS", AV_CODEC_ID_VORBIS},
                                         Encoder{"aac", kOther}, Encoder{"", kOther}));

TEST_F(ConverterThreadTest, jobFlags_selectTheEnginesModes) {
    fillFrom(0, 1000);
    run(1, 1);
    EXPECT_EQ(engine_.joinMode, 0);
    EXPECT_EQ(engine_.reencode, 0);
    run(0, 0);
    EXPECT_EQ(engine_.joinMode, 1);
    EXPECT_EQ(engine_.reencode, 1);
}

TEST_F(ConverterThreadTest, countersOfTheRunBefore_areReset) {
    engine_.stopRequested = 1;
    engine_.currentPercent = 77;
    engine_.currentIndex = 5;
    run(1); // a run without items leaves the counters as the driver and its first moments set them
    EXPECT_EQ(engine_.stopRequested, 0);
    EXPECT_EQ(engine_.currentPercent, 0);
    EXPECT_EQ(engine_.currentIndex, 0);
}

TEST_F(ConverterThreadTest, logLines_areWrittenInOrder) {
    setting_.aBitrate = "128";
    setting_.aChannels = "2";
    setting_.aSamplerate = "44100";
    setting_.aEncoder = "AAC";
    setting_.vBitrate = "800";
    setting_.vFrameRate = "25";
    setting_.width = 320;
    setting_.height = 240;
    fillFrom(1.5F, 2000);
    fillFrom(0, 1);
    const LogLines log;
    run(0, 0);
    const QString audio = "bitrate:128, ch:2, sample:44100 encoder:AAC";
    const QString video = "vbitrate:800000, framerate:25.000000, width:320 height:240";
    EXPECT_EQ(log.all(),
              (QStringList{"uuuuuuuuu(path:" + output("out.mp4") + " 0)", "len:2",
                           "curNode.start:1.500000, curNode.end:2000.000000", audio, video,
                           "curNode.start:0.000000, curNode.end:1.000000", audio, video}));
}

TEST_F(ConverterThreadTest, cutOfARealFile_isWritten) {
    addItem(mediaPath("h264.mp4"), 1000, 2000);
    run(1, 1);
    EXPECT_EQ(engine_.fileStates[0], ConversionEngine::Done);
    EXPECT_EQ(packetsOf(folder_ / "out.mp4", "v:0").size(), 30U);
}

TEST_F(ConverterThreadTest, request_laterChangesOfTheState_doNotReachIt) {
    fillFrom(1, 2);
    setting_.aEncoder = "AAC";
    const RunRequest request = RunRequest::of({});
    sharedFileList->front()->inputFile = "other";
    sharedFileList->clear();
    setting_.aEncoder = "MP3";
    ASSERT_EQ(request.items.size(), 1U);
    EXPECT_EQ(request.items[0].inputFile, "/nowhere/in.mp4");
    EXPECT_EQ(request.setting.aEncoder, "AAC");
}

TEST_F(ConverterThreadTest, copyProbeToSetting_putsTheProbedValuesAndTellsThem) {
    engine_.probePath = mediaPath("h264.mp4");
    ASSERT_EQ(engine_.probe(), 0);
    const LogLines log;
    ConverterThread::copyProbeToSetting();
    EXPECT_EQ(setting_.width, 320);
    EXPECT_EQ(setting_.height, 180);
    EXPECT_EQ(setting_.vEncoder, "h264");
    EXPECT_EQ(setting_.vBitrate, QString::number(engine_.videoBitRate));
    EXPECT_EQ(setting_.vFrameRate, "30.000000");
    EXPECT_EQ(setting_.aEncoder, "aac");
    EXPECT_EQ(setting_.aBitrate, QString::number(engine_.audioBitRate));
    EXPECT_EQ(setting_.aSamplerate, "44100");
    EXPECT_EQ(setting_.aChannels, "2");
    EXPECT_EQ(
        log.all(),
        QStringList{"\n************************\nVideo:\nenc:h264   bitrate:" + setting_.vBitrate +
                    "  framerate:30.000000\nAudio:\nenc:aac   bitrate:" + setting_.aBitrate +
                    "\n************************\n"});
}

TEST_F(ConverterThreadTest, copyProbeToSetting_noSetting_doesNothing) {
    currentSetting.reset();
    ConverterThread::copyProbeToSetting();
    EXPECT_EQ(currentSetting, nullptr);
}

} // namespace
} // namespace velmora::test
