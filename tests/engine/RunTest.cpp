#include "CopySupport.h"

#include <filesystem>
#include <limits>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

using nlohmann::json;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// Also holds every test to leaving nothing open or running.
class Run : public JobTest {
protected:
    void TearDown() override { expectNothingLeftSince(before_); }

    static std::size_t videoPackets(const std::string& path) {
        return packetsOf(path, "v:0").size();
    }
    static std::size_t audioPackets(const std::string& path) {
        return packetsOf(path, "a:0").size();
    }

    /// Two seconds of pictures and sound.
    const std::string source_ =
        mediaMadeBy("-f lavfi -i testsrc2=size=64x36:rate=25:duration=2 -f lavfi -i "
                    "sine=frequency=440:sample_rate=44100:duration=2 -c:v mpeg4 -g 25 -c:a aac",
                    "run.mp4");
    const std::size_t sourceVideoPackets_ = 50;
    const std::string missing_ = folder_ / "missing.mp4";
    const std::string output_ = folder_ / "out.mp4";
    const Resources before_ = Resources::now();
};

// The job as a whole.

TEST_F(Run, EmptyJob_ends_at_once) {
    engine_.inputCount = 0;
    engine_.outputPaths = {output_};
    engine_.currentIndex = 7;
    engine_.currentPercent = 55;
    engine_.fileStates[0] = 9;

    const JobResult result = run();

    EXPECT_EQ(result.index, 0);
    EXPECT_EQ(result.percent, 0);
    EXPECT_EQ(engine_.fileStates[0], 9);
    EXPECT_FALSE(fs::exists(output_));
}

TEST_F(Run, NegativeCount_is_an_empty_job) {
    engine_.inputCount = -1;
    engine_.fileStates[0] = 9;

    EXPECT_EQ(run().index, 0);
    EXPECT_EQ(engine_.fileStates[0], 9);
}

TEST_F(Run, StopBeforeStart_leaves_all_inputs_pending_and_writes_nothing) {
    writeFile(output_, "earlier");
    fillJoin({source_, source_}, output_);
    engine_.fileStates[0] = 1;
    engine_.fileStates[1] = 2;
    engine_.fileStates[2] = 9;
    engine_.currentPercent = 55;
    engine_.stopRequested = 1;

    const JobResult result = run();

    EXPECT_EQ(result.states, (std::vector{255, 255}));
    EXPECT_EQ(engine_.fileStates[2], 9); // not of the job
    EXPECT_EQ(result.index, 0);
    EXPECT_EQ(result.percent, 0);
    EXPECT_EQ(fs::file_size(output_), 7U);
}

TEST_F(Run, CompleteJob_counts_to_the_number_of_inputs) {
    const JobResult result = join({source_, source_, source_}, output_);

    EXPECT_EQ(result.states, (std::vector{1, 1, 1}));
    EXPECT_EQ(result.index, 3);
    EXPECT_EQ(videoPackets(output_), 3 * sourceVideoPackets_);
    EXPECT_EQ(decode(output_).complaints, "");
}

TEST_F(Run, ExistingOutput_is_replaced_as_a_whole) {
    writeFile(output_, Bytes(3'000'000, 'x'));

    EXPECT_EQ(cut(source_, 0, 1000, output_).states, std::vector{1});

    const std::string fresh = folder_ / "fresh.mp4";
    cut(source_, 0, 1000, fresh);
    EXPECT_EQ(readFile(output_), readFile(fresh));
}

TEST_F(Run, AfterRun_of_any_outcome_the_next_is_as_the_first) {
    const std::string first = folder_ / "first.mp4";
    const std::string later = folder_ / "later.mp4";
    join({source_, source_}, first);

    join({missing_, source_}, output_);
    EXPECT_EQ(join({source_, source_}, later).states, (std::vector{1, 1}));
    EXPECT_EQ(readFile(later), readFile(first));

    fillJoin({source_, source_}, output_);
    engine_.stopRequested = 1;
    run();
    EXPECT_EQ(join({source_, source_}, later).states, (std::vector{1, 1}));
    EXPECT_EQ(readFile(later), readFile(first));

    join({mediaPath("audio-only.m4a"), source_}, output_);
    EXPECT_EQ(join({source_, source_}, later).states, (std::vector{1, 1}));
    EXPECT_EQ(readFile(later), readFile(first));
}

TEST_F(Run, LargestJob_is_carried_out) {
    const std::string one = mediaMadeBy("-f lavfi -i testsrc2=size=32x32:rate=25:duration=0.08"
                                        " -c:v mpeg4",
                                        "one.avi");
    fillPaths(std::vector(ConversionEngine::kMaxInputs, one), output_);
    engine_.joinMode = 1;
    engine_.joinTotalMs = 79;

    const JobResult result = run();

    EXPECT_EQ(result.states, std::vector(ConversionEngine::kMaxInputs, 1));
    EXPECT_EQ(result.index, 999);
    EXPECT_EQ(videoPackets(output_), 2 * ConversionEngine::kMaxInputs);
}

TEST_F(Run, LargerJob_is_refused_without_a_file_touched) {
    for (const int count : {1000, 1001, std::numeric_limits<std::int32_t>::max()}) {
        fillPaths({source_}, output_);
        engine_.joinMode = 1;
        engine_.inputCount = count;

        engine_.run();

        EXPECT_EQ(engine_.fileStates[0], 2) << count;
        EXPECT_EQ(engine_.fileStates[999], 2) << count;
        EXPECT_FALSE(fs::exists(output_)) << count;
    }
}

TEST_F(Run, MissingInputRows_fail_their_inputs) {
    fillPaths({source_, source_, source_}, output_);
    engine_.joinMode = 1;
    engine_.inputPaths.resize(1);

    EXPECT_EQ(run().states, (std::vector{1, 2, 2}));
    EXPECT_EQ(videoPackets(output_), sourceVideoPackets_);
}

TEST_F(Run, MissingOutputRows_fail_the_job) {
    fillPaths({source_, source_}, output_);
    engine_.joinMode = 1;
    engine_.outputPaths.clear();

    EXPECT_EQ(run().states, (std::vector{2, 2}));
}

TEST_F(Run, Rows_are_read_up_to_their_first_zero) {
    fillPaths({source_}, output_);
    engine_.joinMode = 1;
    engine_.inputPaths[0].append(1, '\0').append("rest");
    engine_.outputPaths[0].append(100, '\0');

    EXPECT_EQ(run().states, std::vector{1});
    EXPECT_TRUE(fs::exists(output_));
}

// Inputs that cannot be used.

TEST_F(Run, FirstInputUnusable_fails_all_inputs) {
    const std::string folder = folder_ / "folder.mp4";
    fs::create_directory(folder);
    const std::vector<std::string> unusable{missing_,
                                            folder,
                                            "",
                                            mediaPath("text.mp4"),
                                            mediaPath("empty.mp4"),
                                            mediaPath("truncated.mp4"),
                                            mediaPath("unknown-codec.avi"),
                                            mediaPath("damaged-decoder-header.avi")};
    for (const std::string& first : unusable) {
        const JobResult result = join({first, source_, source_}, output_);

        EXPECT_EQ(result.states, (std::vector{2, 2, 2})) << first;
        EXPECT_EQ(result.index, 3) << first;
        EXPECT_FALSE(fs::exists(output_)) << first;
    }
}

TEST_F(Run, FirstInputWithoutVideo_ends_the_run_with_all_inputs_pending) {
    writeFile(output_, "earlier");
    for (const char* name : {"audio-only.m4a", "audio-only.wav", "cover.mp3", "subtitles.srt"}) {
        const JobResult result = join({mediaPath(name), source_}, output_);

        EXPECT_EQ(result.states, (std::vector{255, 255})) << name;
        EXPECT_EQ(result.index, 0) << name;
        EXPECT_EQ(fs::file_size(output_), 7U) << name;
    }
}

TEST_F(Run, FirstInputWithoutStreams_ends_the_run_with_all_inputs_pending) {
    const std::string input = folder_ / "no-streams.mp4";
    writeFile(input, ";FFMETADATA1\ntitle=none\n");

    EXPECT_EQ(join({input, source_}, output_).states, (std::vector{255, 255}));
    EXPECT_FALSE(fs::exists(output_));
}

TEST_F(Run, ExtensionInCapitals_is_known) {
    EXPECT_EQ(cut(source_, 0, 1000, folder_ / "OUT.MP4").states, std::vector{1});
}

TEST_F(Run, UnknownOutputFormat_fails_all_inputs) {
    for (const char* name : {"out.unknown", "out", "mp4", ".mp4x"}) {
        EXPECT_EQ(join({source_, source_}, folder_ / name).states, (std::vector{2, 2})) << name;
        EXPECT_FALSE(fs::exists(folder_ / name)) << name;
        // The format comes before the look for video.
        EXPECT_EQ(join({mediaPath("audio-only.m4a")}, folder_ / name).states, std::vector{2})
            << name;
    }
}

TEST_F(Run, UnknownOutputFormatOfLaterInput_fails_that_input) {
    fillJoin({source_, source_, source_}, output_);
    engine_.outputPaths[1] = folder_ / "out.unknown";

    EXPECT_EQ(run().states, (std::vector{1, 2, 1}));
}

TEST_F(Run, LaterInputUnusable_fails_and_the_next_goes_on) {
    const std::vector<std::string> unusable{missing_, mediaPath("text.mp4"), mediaPath("empty.mp4"),
                                            mediaPath("truncated.mp4"),
                                            mediaPath("unknown-codec.avi")};
    for (const std::string& middle : unusable) {
        const JobResult result = join({source_, middle, source_}, output_);

        EXPECT_EQ(result.states, (std::vector{1, 2, 1})) << middle;
        EXPECT_EQ(result.index, 3) << middle;
        EXPECT_EQ(videoPackets(output_), 2 * sourceVideoPackets_) << middle;
    }
}

TEST_F(Run, LastInputUnusable_leaves_a_complete_output) {
    for (const std::string& last : {missing_, mediaPath("text.mp4")}) {
        const JobResult result = join({source_, last}, output_);

        EXPECT_EQ(result.states, (std::vector{1, 2})) << last;
        EXPECT_EQ(result.index, 2) << last;
        EXPECT_EQ(videoPackets(output_), sourceVideoPackets_) << last;
        EXPECT_EQ(decode(output_).complaints, "") << last;
    }
}

TEST_F(Run, LaterInputWithoutVideo_adds_its_sound) {
    const std::string sound = mediaPath("audio-only.m4a");

    const JobResult result = join({source_, sound, source_}, output_);

    EXPECT_EQ(result.states, (std::vector{1, 1, 1}));
    EXPECT_EQ(videoPackets(output_), 2 * sourceVideoPackets_);
    const std::vector<PacketFacts> packets = packetsOf(output_, "a:0");
    EXPECT_EQ(packets.size(), 2 * audioPackets(source_) + audioPackets(sound));
    for (std::size_t i = 0; i < packets.size(); ++i) {
        ASSERT_EQ(packets[i].pts, static_cast<std::int64_t>(i) * 1024);
    }
}

TEST_F(Run, LaterInputWithSound_fails_where_the_first_had_none) {
    const std::string silent = mediaPath("video-only.mp4");

    const JobResult result = join({silent, mediaPath("h264.mp4"), silent}, output_);

    EXPECT_EQ(result.states, (std::vector{1, 2, 1}));
    EXPECT_EQ(videoPackets(output_), 2 * videoPackets(silent));
}

TEST_F(Run, LaterInputWithoutSound_is_taken) {
    const std::string silent = mediaMadeBy("-i @mpeg4.mp4 -c copy -an", "silent.mp4");

    EXPECT_EQ(join({mediaPath("mpeg4.mp4"), silent}, output_).states, (std::vector{1, 1}));
    EXPECT_EQ(videoPackets(output_), 2 * videoPackets(silent));
}

// An output that is one of the inputs.

class RunOntoItself : public Run {
protected:
    /// The input's content is as before, whatever the name it was to be overwritten by.
    void expectRefused(const std::string& output, const std::vector<std::string>& inputs) {
        EXPECT_EQ(join(inputs, output).states, std::vector(inputs.size(), 2));
        EXPECT_EQ(readFile(input_), content_);
    }

    const std::string input_ = copyOfMedia("mpeg4.mp4", folder_);
    const Bytes content_ = readFile(input_);
};

TEST_F(RunOntoItself, SamePath_fails_and_leaves_the_input) {
    expectRefused(input_, {input_});
    expectRefused(input_, {input_, source_});
    EXPECT_EQ(cut(input_, 0, 1000, input_).states, std::vector{2});
    EXPECT_EQ(readFile(input_), content_);
}

TEST_F(RunOntoItself, PathByAnotherSpelling_fails_and_leaves_the_input) {
    expectRefused((folder_.path() / "." / "mpeg4.mp4").string(), {input_});
}

TEST_F(RunOntoItself, SymbolicLink_fails_and_leaves_the_input) {
    fs::create_symlink(input_, output_);
    expectRefused(output_, {input_});
    expectRefused(input_, {output_});
}

TEST_F(RunOntoItself, HardLink_fails_and_leaves_the_input) {
    fs::create_hard_link(input_, output_);
    expectRefused(output_, {input_});
    EXPECT_EQ(readFile(output_), content_);
}

TEST_F(RunOntoItself, LaterInput_fails_all_and_leaves_the_input) {
    expectRefused(input_, {source_, input_});
    expectRefused(input_, {source_, source_, missing_, input_});
}

// Where a cut begins and ends.

TEST_F(Run, CutFromZero_reads_from_the_beginning) {
    const std::string stream = mediaPath("h264-bframes.ts"); // starts at 1.4 s
    for (const double start : {0.0, -5.0, -kInfinity, std::numeric_limits<double>::quiet_NaN()}) {
        fillCut(stream, 0, 1000, output_);
        engine_.startTimes[0] = start;
        engine_.spans[0] = 1.0;

        EXPECT_EQ(run().states, std::vector{1});

        if (start == start) {
            EXPECT_EQ(engine_.startTimes[0], start);
        }
        EXPECT_EQ(videoPackets(output_), 30U);
        EXPECT_TRUE(packetsOf(output_, "v:0").at(0).flags.starts_with('K'));
    }
}

TEST_F(Run, CutWithStart_adds_the_containers_start_to_the_table) {
    for (const char* name : {"h264.mp4", "h264-bframes.flv", "h264-bframes.mkv", "wmv2.wmv"}) {
        const json format = ffprobeJson(mediaPath(name), {"-show_format"}).at("format");
        const double begin = std::stod(format.at("start_time").get<std::string>());

        EXPECT_EQ(cut(mediaPath(name), 2500, 3000, folder_ / "out.mkv").states, std::vector{1});

        EXPECT_NEAR(engine_.startTimes[0], 2.5 + begin, 1e-6) << name;
    }
}

TEST_F(Run, CutByBytes_leaves_the_table) {
    for (const char* name : {"h264-bframes.ts", "mpeg2.mpg", "theora.ogv"}) {
        EXPECT_EQ(cut(mediaPath(name), 1500, 1800, folder_ / "out.mkv").states, std::vector{1});

        EXPECT_EQ(engine_.startTimes[0], 1.5) << name;
    }
}

TEST_F(Run, Join_does_not_seek) {
    fillJoin({source_, source_}, output_);
    engine_.startTimes[0] = 1.5;
    engine_.startTimes[1] = 1.5;

    EXPECT_EQ(run().states, (std::vector{1, 1}));

    EXPECT_EQ(engine_.startTimes[0], 1.5);
    EXPECT_EQ(videoPackets(output_), 2 * sourceVideoPackets_);
}

// The same fraction of the file as the start is of the duration.
TEST_F(Run, CutByBytes_begins_at_the_first_packet_behind_the_position) {
    const std::string stream = mediaPath("h264-gop250.ts");
    const json shown = ffprobeJson(stream, {"-show_format", "-select_streams", "v:0",
                                            "-show_packets", "-show_data_hash", "md5"});
    const double duration = std::stod(shown.at("format").at("duration").get<std::string>());
    const auto size = static_cast<double>(fs::file_size(stream));
    for (const double start : {0.5, 3.0, 6.25, 11.0}) {
        fillCut(stream, 0, 0, folder_ / "out.ts");
        engine_.startTimes[0] = start;
        engine_.spans[0] = 0.4;

        EXPECT_EQ(run().states, std::vector{1});

        const std::string first = packetsOf(folder_ / "out.ts", "v:0").at(0).hash;
        const double position = size * start / duration;
        for (const json& packet : shown.at("packets")) {
            if (std::stod(packet.at("pos").get<std::string>()) >= position) {
                EXPECT_EQ(packet.at("data_hash"), first) << start;
                break;
            }
        }
    }
}

TEST_F(Run, StartBeyondTheEnd_ends_well) {
    for (const char* name : {"h264.mp4", "h264-bframes.mkv", "h264-bframes.ts", "mpeg4.avi"}) {
        for (const double start : {1e3, 1e9, 1e18, 1e300, kInfinity}) {
            fillCut(mediaPath(name), 0, 1000, folder_ / "out.mkv");
            engine_.startTimes[0] = start;

            const JobResult result = run();

            EXPECT_EQ(result.states, std::vector{1}) << name << " " << start;
            EXPECT_EQ(result.index, 1) << name << " " << start;
        }
    }
}

TEST_F(Run, SpanThatIsNotPositive_copies_nothing) {
    for (const double span : {0.0, -0.0, -1.0, -kInfinity}) {
        fillCut(source_, 0, 0, output_);
        engine_.spans[0] = span;

        const JobResult result = run();

        EXPECT_EQ(result.states, std::vector{1}) << span;
        EXPECT_EQ(result.percent, 0) << span;
        EXPECT_TRUE(fs::exists(output_)) << span;
    }
}

TEST_F(Run, SpanThatIsNeverReached_copies_to_the_end) {
    for (const double span : {1e9, 1e300, kInfinity, std::numeric_limits<double>::quiet_NaN()}) {
        fillCut(source_, 0, 0, output_);
        engine_.spans[0] = span;

        const JobResult result = run();

        EXPECT_EQ(result.states, std::vector{1}) << span;
        EXPECT_GE(result.percent, 0) << span;
        EXPECT_LE(result.percent, 100) << span;
        EXPECT_EQ(videoPackets(output_), sourceVideoPackets_) << span;
    }
}

TEST_F(Run, SecondCutInput_stops_at_once) {
    fillPaths({source_, source_}, output_);
    engine_.spans[0] = 1.0;
    engine_.spans[1] = 1.0;

    const JobResult result = run();

    EXPECT_EQ(result.states, (std::vector{1, 1}));
    EXPECT_EQ(result.index, 2);
    EXPECT_EQ(videoPackets(output_), 25U);
    EXPECT_EQ(decode(output_).complaints, "");
}

TEST_F(Run, SecondCutInput_goes_on_until_the_outputs_clock_reaches_its_span) {
    fillPaths({source_, source_}, output_);
    engine_.spans[0] = 1.0;
    engine_.spans[1] = 1.8;
    engine_.startTimes[1] = 1.0;

    EXPECT_EQ(run().states, (std::vector{1, 1}));
    EXPECT_EQ(videoPackets(output_), 45U);
}

// What the run reports.

TEST_F(Run, Join_puts_its_length_into_every_span) {
    fillJoin({source_, source_, source_}, output_);
    engine_.joinTotalMs = 77;

    run();

    EXPECT_EQ(engine_.spans[0], 77.0);
    EXPECT_EQ(engine_.spans[1], 77.0);
    EXPECT_EQ(engine_.spans[2], 77.0);
    EXPECT_EQ(engine_.spans[3], 0.0);
}

TEST_F(Run, Percent_of_a_join_is_of_its_whole_length) {
    fillJoin({source_, source_, source_}, output_);
    EXPECT_EQ(engine_.joinTotalMs, 6);
    engine_.joinTotalMs = 70;
    EXPECT_EQ(run().percent, 8); // about 6 s of 70

    engine_.joinTotalMs = 3;
    EXPECT_EQ(run().percent, 100); // no more than that
}

TEST_F(Run, Percent_of_a_join_without_length_stays_within_bounds) {
    for (const int total : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
        fillPaths({source_}, output_);
        engine_.joinMode = 1;
        engine_.joinTotalMs = total;

        const JobResult result = run();

        EXPECT_EQ(result.states, std::vector{1}) << total;
        EXPECT_GE(result.percent, 0) << total;
        EXPECT_LE(result.percent, 100) << total;
    }
}

TEST_F(Run, Percent_of_a_cut_is_of_its_span) {
    fillCut(source_, 0, 9000, output_);
    EXPECT_EQ(run().percent, 22); // about 2 s of 9

    fillCut(source_, 0, 1000, output_);
    EXPECT_GE(run().percent, 96);
}

TEST_F(Run, Counters_while_running_tell_the_input_and_grow) {
    std::vector<int> indexes;
    std::vector<int> percents;
    std::vector<int> firstStates;
    fillJoin({source_, source_, source_}, folder_ / "out.mkv");
    const AtRunPoint watch(RunPoint::Packet, [&](int) {
        indexes.push_back(engine_.currentIndex);
        percents.push_back(engine_.currentPercent);
        firstStates.push_back(engine_.fileStates[0]);
    });

    run();

    EXPECT_EQ(indexes.size(), 3 * (sourceVideoPackets_ + audioPackets(source_)));
    EXPECT_TRUE(std::ranges::is_sorted(indexes));
    EXPECT_TRUE(std::ranges::is_sorted(percents));
    EXPECT_EQ(indexes.front(), 0);
    EXPECT_EQ(indexes.back(), 2);
    EXPECT_EQ(percents.front(), 0);
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        EXPECT_EQ(firstStates[i], indexes[i] == 0 ? 255 : 1) << i;
        EXPECT_LE(percents[i], 34 * (indexes[i] + 1)) << i; // each input is a third of it
    }
}

} // namespace
} // namespace velmora::test
