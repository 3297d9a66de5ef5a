// What an exact cut writes, and when it refuses. Windows of many sources: scripts/exact-matrix.

#include "ExactSupport.h"
#include "MediaReader.h"
#include "ReencodeSupport.h"

#include <filesystem>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

std::vector<int> done(std::size_t count) {
    return std::vector<int>(count, ConversionEngine::Done);
}

TEST_F(Exact, cut_windowOfHalfOpenTimes_hasItsPicturesAtAConstantRate) {
    const std::string output = folder_ / "out.mp4";

    EXPECT_EQ(cut(exactSource("plain.mp4"), 400, 1200, output).states, done(1));

    const auto times = pictureTimes(output);
    ASSERT_EQ(times.size(), 20U); // 0.40 to 1.16
    EXPECT_EQ(times.front(), 0);
    for (std::size_t i = 1; i < times.size(); ++i) {
        EXPECT_EQ(times[i] - times[i - 1], times[1] - times[0]) << i;
    }
    EXPECT_EQ(fieldsOf(output, "v:0").at("duration"), "0.800000");
    EXPECT_EQ(report_.finding, "");
}

TEST_F(Exact, cut_halfAMillisecondBesideAPicture_takesAndLeavesIt) {
    const std::string source = exactSource("plain.mp4");
    const std::string output = folder_ / "out.mp4";

    cut(source, 400, 1201, output); // the picture at 1.200 is before 1.2005
    EXPECT_EQ(pictureTimes(output).size(), 21U);
    cut(source, 401, 1200, output); // that at 0.400 is before 0.4005
    EXPECT_EQ(pictureTimes(output).size(), 19U);
}

TEST_F(Exact, cut_endIsTheSources_leavesNothingOut) {
    const std::string output = folder_ / "out.mp4";

    cut(exactSource("plain.mp4"), 1000, 1999, output);

    EXPECT_EQ(pictureTimes(output).size(), 25U);
    cut(exactSource("plain.mp4"), 1000, 1960, output);
    EXPECT_EQ(pictureTimes(output).size(), 24U);
    cut(exactSource("plain.mp4"), 1000, 900'000'000'000, output);
    EXPECT_EQ(pictureTimes(output).size(), 25U);
}

TEST_F(Exact, cut_noPictureBetweenBothTimes_failsAndWritesNothing) {
    const std::string output = folder_ / "out.mp4";

    const JobResult result = cut(exactSource("plain.mp4"), 410, 430, output);

    EXPECT_EQ(result.states, std::vector<int>{ConversionEngine::Failed});
    EXPECT_EQ(result.index, 1);
    EXPECT_FALSE(fs::exists(output));
}

TEST_F(Exact, cut_outputIsTheSource_failsAndLeavesIt) {
    const std::string source = folder_ / "source.mp4";
    fs::copy_file(exactSource("plain.mp4"), source);
    const Bytes before = readFile(source);

    EXPECT_EQ(cut(source, 0, 1000, source).states, std::vector<int>{ConversionEngine::Failed});

    EXPECT_EQ(readFile(source), before);
}

TEST_F(Exact, cut_sourceWithoutPictures_failsAndWritesNothing) {
    const std::string sound =
        mediaMadeBy("-f lavfi -i sine=duration=1 -c:a aac", "exact-sound.m4a");
    const std::string output = folder_ / "out.mp4";

    EXPECT_EQ(cut(sound, 0, 500, output).states, std::vector<int>{ConversionEngine::Failed});

    EXPECT_FALSE(fs::exists(output));
}

TEST_F(Exact, cut_intervalsVary_staySoAndTheLastPictureLastsUntilTheEnd) {
    const std::string source =
        exactSource("gaps.mp4", "testsrc2",
                    "-vf setpts=(N/25+0.6*floor(N/10))/TB -vsync vfr -c:v libx264 -g 25 -bf 0 "
                    "-pix_fmt yuv420p -video_track_timescale 12800");
    const std::string output = folder_ / "out.mp4";

    EXPECT_EQ(cut(source, 200, 1600, output).states, done(1));

    // 0.20 to 0.36, then 1.00 to 1.36: the next one comes at 2.00.
    const auto packets = packetsOf(output, "v:0");
    ASSERT_EQ(packets.size(), 15U);
    EXPECT_EQ(packets[5].pts.value() - packets[4].pts.value(), 12800 * 64 / 100);
    EXPECT_EQ(packets.back().pts.value() + packets.back().duration, 12800 * 14 / 10);
}

TEST_F(Exact, cut_containerOfConstantRate_hasThePictureOnScreenAtEachTick) {
    const std::string source =
        exactSource("gaps.mp4", "testsrc2",
                    "-vf setpts=(N/25+0.6*floor(N/10))/TB -vsync vfr -c:v libx264 -g 25 -bf 0 "
                    "-pix_fmt yuv420p -video_track_timescale 12800");
    const std::string output = folder_ / "out.avi";
    video_.codec = AV_CODEC_ID_MPEG4;

    EXPECT_EQ(cut(source, 200, 1600, output).states, done(1));

    EXPECT_NEAR(endOf(output, "v:0"), 1.4, 0.045);
    EXPECT_EQ(fieldsOf(output, "v:0").at("r_frame_rate"), "25/1");
}

TEST_F(Exact, cut_otherRate_keepsTheLength) {
    const std::string output = folder_ / "out.mp4";
    video_.frameRate = 15.0;

    EXPECT_EQ(cut(exactSource("plain.mp4"), 0, 1000, output).states, done(1));

    EXPECT_EQ(pictureTimes(output).size(), 15U);
    EXPECT_NEAR(endOf(output, "v:0"), 1.0, 0.001);
}

TEST_F(Exact, cut_soundLasts_asLongAsMarkedToTheSample) {
    const std::string output = folder_ / "out.mp4";

    cut(exactSource("pcm.mkv", "testsrc2", "-c:v libx264 -g 25 -pix_fmt yuv420p -c:a pcm_s16le"),
        400, 1400, output);

    const std::string samples = runProgram({"ffmpeg", "-v", "error", "-nostdin", "-i", output,
                                            "-map", "0:a", "-f", "s16le", "-ac", "1", "-"})
                                    .output;
    // The last packet of AAC is whole.
    EXPECT_GE(samples.size(), 2U * 48'000);
    EXPECT_LT(samples.size(), 2U * (48'000 + 1024));
}

TEST_F(Exact, cut_languageAndTitle_areCarried) {
    const std::string source = exactSource(
        "tags.mkv", "testsrc2",
        "-c:v libx264 -g 25 -pix_fmt yuv420p -metadata title=Holiday -metadata:s:a language=ita");
    const std::string output = folder_ / "out.mkv";

    cut(source, 0, 1000, output);

    EXPECT_EQ(fieldsOf(output, "a:0").at("tags").at("language"), "ita");
    EXPECT_EQ(ffprobeJson(output, {"-show_format"}).at("format").at("tags").at("title"), "Holiday");
}

/// Two seconds with chapters that begin at 0, 0.5 and 1.2.
std::string sourceWithChapters(const TemporaryFolder& folder) {
    const std::string list = folder / "chapters";
    writeFile(list, ";FFMETADATA1\n"
                    "[CHAPTER]\nTIMEBASE=1/1000\nSTART=0\nEND=500\ntitle=first\n"
                    "[CHAPTER]\nTIMEBASE=1/1000\nSTART=500\nEND=1200\ntitle=second\n"
                    "[CHAPTER]\nTIMEBASE=1/1000\nSTART=1200\nEND=2000\ntitle=third\n");
    std::string source = folder / "source.mkv";
    runProgram({"ffmpeg", "-v", "error", "-nostdin", "-i", exactSource("plain.mp4"), "-i", list,
                "-map", "0:v", "-map_chapters", "1", "-c", "copy", source});
    return source;
}

/// "title begin end" of each chapter.
std::vector<std::string> chaptersOf(const std::string& path) {
    std::vector<std::string> told;
    const auto probed = ffprobeJson(path, {"-show_chapters"});
    for (const auto& chapter : probed.at("chapters")) {
        told.push_back(chapter.at("tags").at("title").get<std::string>() + " " +
                       chapter.at("start_time").get<std::string>() + " " +
                       chapter.at("end_time").get<std::string>());
    }
    return told;
}

TEST_F(Exact, cut_chapters_areShiftedAndClipped) {
    const std::string source = sourceWithChapters(folder_);
    for (const char* const name : {"out.mkv", "out.mp4"}) {
        const std::string output = folder_ / name;

        cut(source, 800, 1600, output);

        EXPECT_EQ(chaptersOf(output),
                  (std::vector<std::string>{"second 0.000000 0.400000", "third 0.400000 0.800000"}))
            << name;
    }
}

TEST_F(Exact, join_chapters_areAtTheirInputsPlaces) {
    const std::string source = sourceWithChapters(folder_);
    const std::string output = folder_ / "out.mkv";

    join({exactSource("plain.mp4"), source}, output);

    EXPECT_EQ(chaptersOf(output),
              (std::vector<std::string>{"first 2.000000 2.500000", "second 2.500000 3.200000",
                                        "third 3.200000 4.000000"}));
}

TEST_F(Exact, cut_damagedInTheMiddle_keepsTimesAndSaysHowMuch) {
    const std::string source = folder_ / "source.mkv";
    Bytes content = readFile(exactSource("intra.mkv", "testsrc2", "-c:v mjpeg -q:v 3 -an"));
    for (std::size_t i = content.size() * 2 / 5; i < content.size() / 2; ++i) {
        content[i] = 0xff;
    }
    writeFile(source, content);
    const std::string output = folder_ / "out.mkv";

    cut(source, 0, 2000, output);

    const auto times = pictureTimes(output);
    ASSERT_GT(times.size(), 30U);
    EXPECT_LT(times.size(), 50U);
    for (const std::int64_t time : times) {
        EXPECT_EQ(time % 40, 0) << time;
    }
    EXPECT_NEAR(endOf(output, "v:0"), 2.0, 0.001);
}

TEST_F(Exact, cut_everyIntervalIsAnother_fitsEncodersThatCountCoarsely) {
    const std::string source =
        exactSource("phone.mp4", "testsrc2",
                    "-vf settb=1/90000,setpts=N*3003+floor(random(0)*1500) -vsync passthrough "
                    "-enc_time_base 1/90000 -video_track_timescale 90000 -c:v libx264 -bf 0 "
                    "-pix_fmt yuv420p");
    const std::string output = folder_ / "out.avi";
    video_.codec = AV_CODEC_ID_MPEG4;
    audio_.codec = AV_CODEC_ID_MP3;

    EXPECT_EQ(cut(source, 0, 1000, output).states, done(1));

    EXPECT_NEAR(static_cast<double>(packetsOf(output, "v:0").size()), 30.0, 1.0);
}

TEST_F(Exact, cut_sourceEndsBeforeItTells_endsThere) {
    const std::string source =
        mediaMadeBy("-i " + exactSource("plain.mp4") + " -c copy -an -bsf:v h264_mp4toannexb",
                    "exact-raw.h264");
    const std::string output = folder_ / "out.mp4";

    cut(source, 0, 60'000, output);

    EXPECT_EQ(fieldsOf(output, "v:0").at("duration"), "2.000000");
}

TEST_F(Exact, cut_endIsDamaged_keepsItsTimeAndSaysSo) {
    const std::string source = folder_ / "source.mkv";
    Bytes content = readFile(exactSource("ends-damaged.mkv", "testsrc2", "-c:v mjpeg -q:v 3 -an"));
    const auto middle = content.begin() + static_cast<std::ptrdiff_t>(content.size() * 3 / 4);
    for (auto byte = middle; byte < content.end() - 2'000; byte += 20) {
        *byte ^= 0xFFU;
    }
    writeFile(source, content);
    const std::string output = folder_ / "out.mp4";

    EXPECT_EQ(cut(source, 0, 900'000, output).states, done(1));

    EXPECT_EQ(fieldsOf(output, "v:0").at("duration").get<std::string>().substr(0, 4), "2.00");
    EXPECT_NE(report_.finding.find("could not be decoded, or not wholly"), std::string::npos);
}

TEST_F(Exact, cut_soundPausesInATransportStream_staysAtItsPlace) {
    const std::string source =
        mediaMadeBy("-f lavfi -i testsrc2=size=128x64:rate=5:duration=20 -f lavfi -i "
                    "sine=frequency=440:duration=20,aselect='lt(t\\,2)+gt(t\\,17)' "
                    "-c:v libx264 -g 10 -pix_fmt yuv420p -c:a mp2",
                    "exact-pause.ts");
    const std::string output = folder_ / "out.mp4";

    EXPECT_EQ(cut(source, 16'000, 20'000, output).states, done(1));

    EXPECT_EQ(pictureTimes(output).size(), 20U);
    EXPECT_FALSE(packetsOf(output, "a:0").empty());
}

TEST_F(Exact, join_otherMatrix_keepsItsColours) {
    const auto red = [](const char* matrix, const char* name) {
        return mediaMadeBy("-f lavfi -i color=red:size=128x64:rate=25:duration=1 -vf "
                           "scale=out_color_matrix=" +
                               std::string(matrix) + ",format=yuv420p -c:v libx264 -colorspace " +
                               std::string(matrix),
                           name);
    };
    const std::string output = folder_ / "out.mp4";

    join({red("bt709", "exact-red-709.mp4"), red("smpte170m", "exact-red-601.mp4")}, output);

    const std::string last = folder_ / "last.mkv";
    runProgram({"ffmpeg", "-v", "error", "-nostdin", "-sseof", "-0.2", "-i", output, "-frames:v",
                "1", "-c:v", "ffv1", last});
    const std::vector<int> pixel = pixelOf(last, 64, 32);
    EXPECT_NEAR(pixel[0], 254, 3);
    EXPECT_NEAR(pixel[1], 0, 6);
    EXPECT_NEAR(pixel[2], 0, 6);
}

TEST_F(Exact, cut_timesBelowZero_picturesThatLackThemAreThere) {
    const std::string source = mediaMadeBy(
        "-i " + exactSource("plain.mp4") +
            " -map 0 -c copy -avoid_negative_ts disabled -output_ts_offset -0.2 -f matroska",
        "exact-below-zero.mkv");
    const std::string output = folder_ / "out.mp4";

    cut(source, 0, 500, output);

    EXPECT_EQ(pictureTimes(output).size(), 12U); // from 0.02 to 0.46
}

TEST_F(Exact, cut_stopped_endsWithoutAState) {
    const AtRunPoint stop(RunPoint::Packet, [this](int) { engine_.stopRequested = 1; });

    const JobResult result = cut(exactSource("plain.mp4"), 0, 2000, folder_ / "out.mp4");

    EXPECT_EQ(result.states, std::vector<int>{ConversionEngine::Pending});
}

TEST_F(Exact, join_otherSizesRatesAndNoSound_eachKeepsItsLength) {
    const std::string mute = mediaMadeBy(
        "-f lavfi -i testsrc2=size=64x128:rate=30:duration=1 -c:v libx264 -pix_fmt yuv420p",
        "exact-mute.mp4");
    const std::string output = folder_ / "out.mp4";

    EXPECT_EQ(join({exactSource("plain.mp4"), mute, exactSource("plain.mp4")}, output).states,
              done(3));

    EXPECT_EQ(pictureTimes(output).size(), 50U + 30U + 50U);
    EXPECT_NEAR(endOf(output, "v:0"), 5.0, 0.001);
    EXPECT_NEAR(endOf(output, "a:0"), 5.0, 0.022);
}

TEST_F(Exact, join_onlyTheSecondHasSound_isHeardAtItsPlace) {
    const std::string mute = mediaMadeBy(
        "-f lavfi -i testsrc2=size=128x64:rate=25:duration=1 -c:v libx264 -pix_fmt yuv420p",
        "exact-mute-25.mp4");
    const std::string output = folder_ / "out.mp4";

    join({mute, exactSource("plain.mp4")}, output);

    const std::string silences =
        runProgram({"ffmpeg", "-v", "info", "-nostdin", "-i", output, "-af",
                    "silencedetect=noise=-50dB:duration=0.5", "-vn", "-f", "null", "-"})
            .errors;
    const std::string mark = "silence_end: ";
    const std::size_t at = silences.find(mark);
    ASSERT_NE(at, std::string::npos) << silences;
    EXPECT_NEAR(std::stod(silences.substr(at + mark.size())), 1.0, 0.005);
}

TEST_F(Exact, join_oneCannotBeOpened_failsAsAWhole) {
    const JobResult result = join({exactSource("plain.mp4"), "/nowhere.mp4"}, folder_ / "out.mp4");

    EXPECT_EQ(result.states,
              (std::vector<int>{ConversionEngine::Failed, ConversionEngine::Failed}));
    EXPECT_EQ(result.index, 2);
}

TEST_F(Exact, join_laterInputHasNoPictures_writesNothing) {
    const std::string output = folder_ / "out.mp4";

    join({exactSource("plain.mp4"), mediaPath("audio-only.m4a")}, output);

    EXPECT_FALSE(fs::exists(output));
    EXPECT_EQ(report_.cause.kind, FailureCause::Kind::NoPictures);
}

TEST_F(Exact, join_twoHundredInputs_drift_not) {
    const std::string odd = mediaMadeBy(
        "-f lavfi -i testsrc2=size=128x64:rate=30000/1001:duration=0.2 -f lavfi -i "
        "sine=sample_rate=44100:duration=0.2 -c:v libx264 -preset ultrafast -pix_fmt yuv420p",
        "exact-short.mp4");
    const std::string output = folder_ / "out.mp4";

    EXPECT_EQ(join(std::vector<std::string>(200, odd), output).states, done(200));

    const double pictures = 200.0 * 6 * 1001 / 30000;
    EXPECT_NEAR(endOf(output, "v:0"), pictures, 0.001);
    EXPECT_NEAR(endOf(output, "a:0"), pictures, 0.022);
}

} // namespace
} // namespace velmora::test
