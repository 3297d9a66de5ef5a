// What becomes of a run when its output cannot be had or written, or its input breaks.

#include "CopySupport.h"

#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

using testing::Values;

/// Also holds every test to leaving nothing open or running.
class OutputFaults : public JobTest {
protected:
    void TearDown() override { expectNothingLeftSince(before_); }

    const std::string source_ = mediaPath("mpeg4.mp4");
    const Resources before_ = Resources::now();
};

// A disk that takes no more.

/// About five megabytes that hardly compress.
std::string largeSource() {
    return mediaMadeBy("-f lavfi -i nullsrc=size=320x180:rate=25:duration=4,noise=alls=100:allf=t"
                       " -c:v mpeg4 -q:v 4 -g 25",
                       "large.mp4");
}

/// No file of this process may become larger, while this lives.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    void (*handler_)(int);
    rlimit before_{};
};

class OutputFull : public OutputFaults, public testing::WithParamInterface<std::string> {
protected:
    const std::string large_ = largeSource();
    const std::string output_ = folder_ / ("out." + GetParam());
};

TEST_P(OutputFull, OnlyInput_fails) {
    const FileSizeLimit limit(1'500'000);

    const JobResult result = cut(large_, 0, 4000, output_);

    EXPECT_EQ(result.states, std::vector{2});
    EXPECT_EQ(result.index, 1);
    EXPECT_LE(fs::file_size(output_), 1'500'000U);
}

TEST_P(OutputFull, AtTheVeryEnd_fails_the_last_input) {
    cut(source_, 0, 4000, output_);
    const FileSizeLimit limit(fs::file_size(output_) - 1);

    EXPECT_EQ(join({source_}, output_).states, std::vector{2});
}

TEST_P(OutputFull, ExactlyFitting_is_done) {
    cut(source_, 0, 4000, output_);
    const FileSizeLimit limit(fs::file_size(output_));

    EXPECT_EQ(cut(source_, 0, 4000, output_).states, std::vector{1});
}

TEST_P(OutputFull, InSecondInput_fails_that_and_the_rest) {
    const auto size = static_cast<rlim_t>(fs::file_size(large_));
    const FileSizeLimit limit(size * 3 / 2);

    const JobResult result = join({large_, large_, large_}, output_);

    EXPECT_EQ(result.states, (std::vector{1, 2, 2}));
    EXPECT_EQ(result.index, 3);
}

INSTANTIATE_TEST_SUITE_P(Containers, OutputFull, Values("mp4", "mkv", "avi", "ts"),
                         [](const auto& parameter) { return parameter.param; });

/// The exit status of `action` in a process of its own.
int statusOf(const std::function<int()>& action) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(action());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

constexpr int kNotPermitted = 99;

/// A disk of one megabyte, which only this process sees.
bool mountSmallDisk(const std::string& folder) {
    return unshare(CLONE_NEWNS) == 0 &&
           mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("velmora-test", folder.c_str(), "tmpfs", 0, "size=1m") == 0;
}

TEST_F(OutputFaults, FullDisk_fails_the_input) {
    const std::string source = largeSource();
    const int state = statusOf([&]() -> int {
        if (!mountSmallDisk(folder_.path())) {
            return kNotPermitted;
        }
        return cut(source, 0, 4000, folder_ / "out.mp4").states.at(0);
    });
    if (state == kNotPermitted) {
        GTEST_SKIP() << "no file system can be mounted here";
    }

    EXPECT_EQ(state, 2);
}

// Places that cannot be written to.

TEST_F(OutputFaults, PathThatCannotBeAFile_fails_the_input) {
    const std::string file = folder_ / "file.mp4";
    const std::string folder = folder_ / "folder.mp4";
    writeFile(file, "content");
    fs::create_directory(folder);
    const std::string longName(256, 'n');
    for (const std::string& output :
         {folder_ / "missing/out.mp4", folder, folder + "/", file + "/out.mp4",
          folder_ / (longName + ".mp4"), std::string("/proc/version.mp4"),
          std::string("/nowhere.velmora/out.mp4")}) {
        const JobResult result = join({source_, source_}, output);

        EXPECT_EQ(result.states, (std::vector{2, 2})) << output;
        EXPECT_EQ(result.index, 2) << output;
    }
    EXPECT_EQ(fs::file_size(file), 7U);
}

TEST_F(OutputFaults, PipeAsOutput_fails_without_waiting_for_a_reader) {
    const std::string pipe = folder_ / "pipe.mp4";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);

    EXPECT_EQ(cut(source_, 0, 1000, pipe).states, std::vector{2});
    EXPECT_TRUE(fs::is_fifo(pipe));
}

TEST_F(OutputFaults, DeviceAsOutput_fails) {
    for (const char* device : {"/dev/null", "/dev/full"}) {
        const std::string link = folder_ / "device.mp4";
        fs::create_symlink(device, link);

        EXPECT_EQ(cut(source_, 0, 1000, link).states, std::vector{2}) << device;
        EXPECT_TRUE(fs::is_symlink(link));
        fs::remove(link);
    }
}

TEST_F(OutputFaults, LoopOfLinks_fails) {
    const std::string loop = folder_ / "loop.mp4";
    fs::create_symlink("loop.mp4", loop);

    EXPECT_EQ(cut(source_, 0, 1000, loop).states, std::vector{2});
}

TEST_F(OutputFaults, LinkToAnotherFile_writes_there) {
    const std::string target = folder_ / "target.mp4";
    const std::string link = folder_ / "link.mp4";
    fs::create_symlink(target, link);

    EXPECT_EQ(cut(source_, 0, 1000, link).states, std::vector{1});
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(decode(target).complaints, "");
}

/// The exit status of `action` in a process of its own, without the rights of the superuser.
int statusWithoutRights(const std::function<int()>& action) {
    constexpr uid_t nobody = 65534;
    return statusOf([&] {
        const bool dropped = getuid() != 0 || setuid(nobody) == 0;
        return dropped ? action() : kNotPermitted;
    });
}

TEST_F(OutputFaults, WithoutPermission_fails_and_changes_nothing) {
    const std::string input = copyOfMedia("mpeg4.mp4", folder_);
    const std::string closed = folder_ / "closed";
    const std::string open = folder_ / "open";
    fs::create_directory(closed);
    fs::create_directory(open);
    const std::string readOnly = open + "/read-only.mp4";
    writeFile(readOnly, "content");
    fs::permissions(folder_.path(), fs::perms(0755));
    fs::permissions(input, fs::perms(0644));
    fs::permissions(closed, fs::perms(0555));
    fs::permissions(open, fs::perms(0777));
    fs::permissions(readOnly, fs::perms(0444));
    const auto stateOf = [&](const std::string& output) {
        return statusWithoutRights([&] { return cut(input, 0, 1000, output).states.at(0); });
    };

    EXPECT_EQ(stateOf(open + "/out.mp4"), 1); // the input can be read
    EXPECT_EQ(stateOf(closed + "/out.mp4"), 2);
    EXPECT_EQ(stateOf(readOnly), 2);

    EXPECT_TRUE(fs::is_empty(closed));
    EXPECT_EQ(fs::file_size(readOnly), 7U);
}

// Names.

TEST_F(OutputFaults, UnusualName_is_taken_as_it_is) {
    const std::vector<std::string> names{"with:colon",
                                         "file:name",
                                         "http:colons",
                                         "100%d",
                                         "%s%n%05d",
                                         "\"double\" and 'single'",
                                         "new\nline",
                                         "back\\slash",
                                         " blanks ",
                                         "-dash",
                                         "*?[a]{b}$HOME`x`|;&<>#",
                                         "Größe",
                                         "日本語",
                                         "שלום",
                                         "\U0001F3AC",
                                         "no\xFFutf8",
                                         std::string(251, 'n')};
    for (const std::string& name : names) {
        const std::string input = folder_ / ("in " + name.substr(0, 200) + ".mp4");
        const std::string output = folder_ / (name + ".mp4");
        fs::copy_file(source_, input);

        EXPECT_EQ(cut(input, 0, 1000, output).states, std::vector{1}) << name;

        EXPECT_TRUE(fs::exists(output)) << name;
        fs::remove(input);
        fs::remove(output);
        EXPECT_TRUE(fs::is_empty(folder_.path())) << name; // nothing under another name
    }
}

TEST_F(OutputFaults, RelativeName_is_of_the_working_folder) {
    const fs::path before = fs::current_path();
    fs::current_path(folder_.path());
    for (const char* name : {"out.mp4", "with:colon.mp4", "-y.mp4"}) {
        EXPECT_EQ(cut(source_, 0, 1000, name).states, std::vector{1}) << name;
        EXPECT_TRUE(fs::exists(folder_ / name)) << name;
    }
    fs::current_path(before);
}

TEST_F(OutputFaults, LongPath_is_not_cut_short) {
    fs::path deep = folder_.path();
    for (int i = 0; i < 8; ++i) {
        deep /= std::string(200, static_cast<char>('a' + i));
    }
    fs::create_directories(deep);
    const std::string output = deep / "out.mp4";
    ASSERT_GT(output.size(), 1024U);

    EXPECT_EQ(cut(source_, 0, 1000, output).states, std::vector{1});
    EXPECT_TRUE(fs::exists(output));
}

// Containers that refuse the streams, some of them after they have begun to write.

struct Refusal {
    std::string media;
    std::string extension;
};

void PrintTo(const Refusal& refusal, std::ostream* out) {
    *out << refusal.media << " to " << refusal.extension;
}

class OutputRefused : public OutputFaults, public testing::WithParamInterface<Refusal> {
protected:
    static std::string input() {
        if (GetParam().media == "pictures.apng") {
            return mediaMadeBy("-f lavfi -i testsrc2=size=64x36:rate=25:duration=1 -c:v apng",
                               "pictures.apng");
        }
        return mediaPath(GetParam().media);
    }
    const std::string output_ = folder_ / ("out." + GetParam().extension);
};

TEST_P(OutputRefused, New_is_not_left_behind) {
    EXPECT_EQ(cut(input(), 0, 1000, output_).states, std::vector{2});
    EXPECT_FALSE(fs::exists(output_));
}

TEST_P(OutputRefused, Existing_stays_as_it_was) {
    writeFile(output_, "earlier");

    EXPECT_EQ(cut(input(), 0, 1000, output_).states, std::vector{2});

    EXPECT_EQ(fs::file_size(output_), 7U);
}

INSTANTIATE_TEST_SUITE_P(
    Media, OutputRefused,
    Values(Refusal{"mpeg4.mp4", "flv"}, Refusal{"hevc.mp4", "3gp"}, Refusal{"hevc.mp4", "m4v"},
           Refusal{"vp9.webm", "flv"}, Refusal{"theora.ogv", "mp4"}, Refusal{"mpeg4.mp4", "mpg"},
           Refusal{"flac.mkv", "mov"}, Refusal{"opus.mkv", "avi"}, Refusal{"opus.mkv", "wmv"},
           Refusal{"pictures.apng", "mkv"}, Refusal{"h264.mp4", "webm"}, Refusal{"h264.mp4", "mp3"},
           Refusal{"h264.mp4", "ogg"}, Refusal{"h264.mp4", "wav"}),
    [](const auto& parameter) {
        return asTestName(parameter.param.media) + "_to_" + parameter.param.extension;
    });

// Inputs that break.

class InputBroken : public OutputFaults, public testing::WithParamInterface<std::string> {};

TEST_P(InputBroken, Input_is_copied_as_far_as_it_can_be_read) {
    const std::string input = mediaPath(GetParam());
    const std::string output = folder_ / "out.mkv";

    const JobResult result = cut(input, 0, 100'000, output);

    EXPECT_EQ(result.states, std::vector{1});
    const std::size_t packets = packetsOf(output, "v:0").size();
    EXPECT_GT(packets, 0U);
    EXPECT_NEAR(static_cast<double>(packets), static_cast<double>(packetsOf(input, "v:0").size()),
                2.0);
}

INSTANTIATE_TEST_SUITE_P(Media, InputBroken,
                         Values("damaged.mp4", "damaged.ts", "damaged.avi", "cut-off.ts",
                                "cut-off.mkv", "cut-off.avi"),
                         [](const auto& parameter) { return asTestName(parameter.param); });

TEST_F(OutputFaults, InputCutOffInMidPacket_is_joined_with_the_next) {
    const std::string broken = mediaPath("cut-off.mkv");
    const std::string whole = mediaPath("h264-bframes.mkv");
    const std::string output = folder_ / "out.mkv";

    EXPECT_EQ(join({broken, whole, broken}, output).states, (std::vector{1, 1, 1}));
    EXPECT_GE(packetsOf(output, "v:0").size(),
              packetsOf(whole, "v:0").size() + 2 * packetsOf(broken, "v:0").size() - 2);
}

TEST_F(OutputFaults, InputOfEveryLength_never_breaks_the_run) {
    const Bytes whole = readFile(mediaMadeBy("-f lavfi -i testsrc2=size=32x32:rate=25:duration=1"
                                             " -c:v mpeg4 -g 12",
                                             "small.mkv"));
    const std::string input = folder_ / "in.mkv";
    const std::string output = folder_ / "out.mp4";
    for (std::size_t size = 0; size < whole.size(); size += 97) {
        writeFile(input, Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));

        const JobResult result = cut(input, 0, 1000, output);

        EXPECT_TRUE(result.states.at(0) == 1 || result.states.at(0) == 2) << size;
        EXPECT_EQ(result.index, 1) << size;
    }
}

TEST_F(OutputFaults, DamagedBytes_never_break_the_run) {
    const Bytes whole = readFile(mediaMadeBy("-f lavfi -i testsrc2=size=32x32:rate=25:duration=1"
                                             " -c:v mpeg4 -g 12",
                                             "small.mp4"));
    const std::string input = folder_ / "in.mp4";
    const std::string output = folder_ / "out.mkv";
    for (std::size_t at = 0; at < whole.size(); at += 101) {
        Bytes damaged = whole;
        damaged[at] = static_cast<std::uint8_t>(~damaged[at]);
        writeFile(input, damaged);

        const JobResult result = cut(input, 0, 1000, output);

        // Damage may hide the video stream, which ends the run.
        const bool ended = result.states.at(0) == 255 && result.index == 0;
        const bool counted = result.states.at(0) != 255 && result.index == 1;
        EXPECT_TRUE(ended || counted) << at;
    }
}

class InputVanishing : public OutputFaults {
protected:
    /// Joins a large file of which something becomes while it is copied, and another.
    JobResult joinWhile(const std::function<void()>& vanish) {
        fs::copy_file(largeSource(), input_);
        fillJoin({input_, largeSource()}, output_);
        const AtRunPoint watch(RunPoint::Packet, [&](int number) {
            if (number == 5) {
                vanish();
            }
        });
        return run();
    }

    std::size_t packets() { return packetsOf(output_, "v:0").size(); }

    const std::string input_ = folder_ / "large.mp4";
    const std::string output_ = folder_ / "out.mkv";
};

TEST_F(InputVanishing, RemovedInput_is_copied_in_full) {
    EXPECT_EQ(joinWhile([&] { fs::remove(input_); }).states, (std::vector{1, 1}));
    EXPECT_EQ(packets(), 200U);
}

TEST_F(InputVanishing, TruncatedInput_ends_there_and_the_next_goes_on) {
    const JobResult result = joinWhile([&] { fs::resize_file(input_, 1'000'000); });

    EXPECT_EQ(result.states, (std::vector{1, 1}));
    EXPECT_EQ(result.index, 2);
    EXPECT_GT(packets(), 100U);
    EXPECT_LT(packets(), 200U);
}

TEST_F(InputVanishing, RemovedLaterInput_fails_alone) {
    const std::string later = folder_ / "later.mp4";
    fs::copy_file(largeSource(), later);
    fillJoin({largeSource(), later, largeSource()}, output_);
    const AtRunPoint watch(RunPoint::Packet, [&](int number) {
        if (number == 5) {
            fs::remove(later);
        }
    });

    EXPECT_EQ(run().states, (std::vector{1, 2, 1}));
    EXPECT_EQ(packets(), 200U);
}

} // namespace
} // namespace velmora::test
