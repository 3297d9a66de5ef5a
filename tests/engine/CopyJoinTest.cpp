// Direct joins of inputs that differ, and of inputs whose own times are of no use.

#include "CopySupport.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string>

namespace velmora::test {
namespace {

using testing::Values;

/// Two seconds, with the decoder's headers before each key picture, so that any may follow another.
std::string h264With(int reorderedPictures, const std::string& extension = "mp4") {
    return mediaMadeBy("-f lavfi -i testsrc2=size=128x72:rate=25:duration=2 -pix_fmt yuv420p "
                       "-c:v libx264 -preset ultrafast -g 25 -x264-params repeat-headers=1 -bf " +
                           std::to_string(reorderedPictures),
                       "reordered." + extension);
}

class CopyMixed : public JobTest, public testing::WithParamInterface<std::string> {
protected:
    /// Joins them and reads the video of the result.
    StreamFacts joined(const std::vector<const Source*>& sources) {
        std::vector<std::string> paths;
        std::ranges::transform(sources, std::back_inserter(paths),
                               [](const Source* source) { return source->path; });
        const JobResult result = join(paths, output_);
        EXPECT_EQ(result.states, std::vector(sources.size(), 1));
        return streamOf(output_, "v:0");
    }

    /// Every picture has a time of its own, and all are shown in the order of their sources.
    void expectAllShown(const StreamFacts& video, const std::vector<const Source*>& sources) {
        std::vector<std::string> hashes;
        std::vector<std::string> pictures;
        for (const Source* source : sources) {
            for (const PacketFacts& packet : source->video.packets) {
                hashes.push_back(packet.hash);
            }
            pictures.insert(pictures.end(), source->pictures.begin(), source->pictures.end());
        }
        std::vector<std::string> copied;
        std::set<std::int64_t> times;
        for (const PacketFacts& packet : video.packets) {
            copied.push_back(packet.hash);
            times.insert(packet.pts.value());
        }
        if (GetParam() != "ts") {
            EXPECT_EQ(copied, hashes);
        }
        EXPECT_EQ(times.size(), hashes.size());
        const Decoded decoded = decode(output_);
        EXPECT_EQ(decoded.pictures, pictures);
        EXPECT_EQ(decoded.complaints, "");
    }

    /// The decoding times are those of consecutive frames.
    void expectConsecutive(const StreamFacts& video) {
        const Numbering numbering(video.timeBase, plain_.frameDuration);
        const std::int64_t start = video.packets.at(0).dts.value();
        const std::int64_t first = numbering.at(-video.fields.at("has_b_frames").get<int>());
        for (std::size_t i = 0; i < video.packets.size(); ++i) {
            const auto frame =
                static_cast<std::int64_t>(i) - video.fields.at("has_b_frames").get<int>();
            ASSERT_EQ(video.packets[i].dts.value() - start, numbering.at(frame) - first) << i;
        }
    }

    std::string output_ = folder_ / ("out." + GetParam());
    Source plain_{h264With(0)};
    Source reordered_{h264With(3)};
};

TEST_P(CopyMixed, reorderedInput_afterOneThatIsNotIsShownInOrder) {
    const std::vector<const Source*> sources{&plain_, &reordered_};
    expectAllShown(joined(sources), sources);
}

TEST_P(CopyMixed, reorderedInput_betweenTwoThatAreNotIsShownInOrder) {
    const std::vector<const Source*> sources{&plain_, &reordered_, &plain_};
    expectAllShown(joined(sources), sources);
}

TEST_P(CopyMixed, inputThatIsNotReordered_afterOneThatIsFollowsWithoutAGap) {
    const std::vector<const Source*> sources{&reordered_, &plain_};
    const StreamFacts video = joined(sources);
    expectAllShown(video, sources);
    if (GetParam() != "mkv") { // which stores no decoding times
        expectConsecutive(video);
    }
}

TEST_P(CopyMixed, inputThatIsNotReordered_betweenTwoThatAreFailsNone) {
    const std::vector<const Source*> sources{&reordered_, &plain_, &reordered_};
    const StreamFacts video = joined(sources);
    expectAllShown(video, sources);
    if (GetParam() != "mkv") {
        expectConsecutive(video);
    }
}

INSTANTIATE_TEST_SUITE_P(Containers, CopyMixed, Values("mp4", "mkv", "ts", "flv"),
                         [](const auto& parameter) { return parameter.param; });

class CopyJoin : public JobTest {};

TEST_F(CopyJoin, inputsOfTwoContainers_areCopiedInFull) {
    const Source first(h264With(3, "mp4"));
    const Source second(h264With(3, "mkv"));
    const std::string output = folder_ / "out.mp4";

    EXPECT_EQ(join({first.path, second.path}, output).states, (std::vector{1, 1}));

    expectVideo(output, {wholeOf(first), wholeOf(second)});
}

/// A transport stream whose time starts anew in the middle, as after a restarted recording.
class CopyJumpingTime : public JobTest, public testing::WithParamInterface<std::string> {
protected:
    std::string jumping() {
        Bytes content = readFile(source_.path);
        const Bytes again = content;
        content.insert(content.end(), again.begin(), again.end());
        std::string path = folder_ / "jumping.ts";
        writeFile(path, content);
        return path;
    }

    Source source_{h264With(3, "ts")};
    std::string output_ = folder_ / ("out." + GetParam());
};

TEST_P(CopyJumpingTime, cut_ofEverythingNumbersOn) {
    EXPECT_EQ(cut(jumping(), 0, 100'000, output_).states, std::vector{1});

    expectVideo(output_, {wholeOf(source_), wholeOf(source_)});
}

TEST_P(CopyJumpingTime, join_numbersOn) {
    EXPECT_EQ(join({source_.path, jumping()}, output_).states, (std::vector{1, 1}));

    expectVideo(output_, {wholeOf(source_), wholeOf(source_), wholeOf(source_)});
}

INSTANTIATE_TEST_SUITE_P(Containers, CopyJumpingTime, Values("mp4", "mkv", "ts"),
                         [](const auto& parameter) { return parameter.param; });

} // namespace
} // namespace velmora::test
