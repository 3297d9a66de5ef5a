// Containers that refuse the streams, some of them after they have begun to write.

#include "OutputFaultsSupport.h"

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

using testing::Values;

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

TEST_P(OutputRefused, new_isNotLeftBehind) {
    EXPECT_EQ(cut(input(), 0, 1000, output_).states, std::vector{2});
    EXPECT_FALSE(fs::exists(output_));
}

TEST_P(OutputRefused, existing_staysAsItWas) {
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

} // namespace
} // namespace velmora::test
