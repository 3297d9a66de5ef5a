#include "CopySupport.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <map>
#include <numeric>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace velmora::test {
namespace {

using nlohmann::json;
using Ticks = std::optional<std::int64_t>;

/// What a container keeps of a packet.
struct ContainerTraits {
    bool lengthPrefixes = true; ///< in the data of H.264 and HEVC; else start codes
    bool codingTimes = true;    ///< its dts
    bool displayTimes = true;   ///< its pts
    bool everyTime = true;      ///< of every packet; else only of the first in a block of bytes
};

ContainerTraits traitsOf(const std::string& path) {
    static const std::map<std::string, ContainerTraits> others{
        {".mkv", {.codingTimes = false}},
        {".avi", {.lengthPrefixes = false, .displayTimes = false}},
        {".wmv", {.lengthPrefixes = false, .displayTimes = false}},
        {".ts", {.lengthPrefixes = false}},
        {".mpg", {.lengthPrefixes = false, .everyTime = false}},
    };
    const auto found = others.find(std::filesystem::path(path).extension());
    return found != others.end() ? found->second : ContainerTraits();
}

std::vector<std::size_t> inOrderOfDisplay(const std::vector<PacketFacts>& packets) {
    std::vector<std::size_t> order(packets.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, {}, [&](std::size_t i) { return packets[i].pts; });
    return order;
}

bool isKey(const PacketFacts& packet) {
    return packet.flags.starts_with('K');
}

/// Whether the bytes of its packets differ though their content is the same.
bool isRepacked(const std::string& output, const Source& source) {
    const std::string codec = source.video.fields.value("codec_name", "");
    const bool lengthPrefixes = traitsOf(output).lengthPrefixes;
    if (codec == "hevc" && !lengthPrefixes) {
        return true; // the zero byte before a start code may be read with either packet
    }
    return (codec == "h264" || codec == "hevc") &&
           lengthPrefixes != traitsOf(source.path).lengthPrefixes;
}

Ticks ticks(const json& packet, const char* key) {
    return packet.contains(key) ? Ticks(packet[key].get<std::int64_t>()) : std::nullopt;
}

/// What the packets of an output should be.
class Expected {
public:
    explicit Expected(const std::vector<Stretch>& stretches) {
        for (const Stretch& stretch : stretches) {
            append(stretch);
        }
    }

    std::vector<std::string> hashes;
    std::vector<bool> keys;
    std::vector<std::int64_t> places;  ///< in the output's order of display
    std::vector<std::string> pictures; ///< in the output's order of display

private:
    void append(const Stretch& stretch) {
        const Source& source = *stretch.source;
        const auto start = static_cast<std::int64_t>(places.size());
        std::vector<std::size_t> shown;
        for (std::size_t i = stretch.first; i < stretch.first + stretch.count; ++i) {
            hashes.push_back(source.video.packets.at(i).hash);
            keys.push_back(isKey(source.video.packets.at(i)));
            shown.push_back(source.places.at(i));
        }
        std::vector<std::size_t> sorted = shown;
        std::ranges::sort(sorted);
        for (const std::size_t place : shown) {
            places.push_back(start + std::ranges::lower_bound(sorted, place) - sorted.begin());
        }
        for (const std::size_t place : sorted) {
            pictures.push_back(source.pictures.at(place));
        }
    }
};

template <typename Value, typename Member>
std::vector<Value> column(const std::vector<PacketFacts>& packets, Member member) {
    std::vector<Value> values;
    std::ranges::transform(packets, std::back_inserter(values), member);
    return values;
}

void expectTicks(const std::vector<Ticks>& actual, const std::vector<std::int64_t>& expected,
                 const std::string& what) {
    ASSERT_EQ(actual.size(), expected.size()) << what;
    ASSERT_TRUE(actual.front()) << what;
    const std::int64_t shift = *actual.front() - expected.front();
    for (std::size_t i = 0; i < actual.size(); ++i) {
        if (actual[i]) { // a container may leave one out that follows from the others
            ASSERT_EQ(*actual[i] - shift, expected[i]) << what << " of packet " << i;
        }
    }
}

void expectTimes(const std::string& output, const StreamFacts& video, const Expected& expected,
                 const Source& first) {
    const ContainerTraits traits = traitsOf(output);
    const std::vector<PacketFacts>& packets = video.packets;
    const Numbering numbering(video.timeBase, first.frameDuration);
    // Only where coding and display can be told apart.
    const int delay = traits.displayTimes ? first.delay : 0;
    std::vector<std::int64_t> dts;
    std::vector<std::int64_t> pts;
    for (std::size_t i = 0; i < packets.size(); ++i) {
        dts.push_back(numbering.at(static_cast<std::int64_t>(i) - delay));
        pts.push_back(numbering.at(expected.places[i]));
    }
    if (traits.codingTimes && traits.everyTime) {
        expectTicks(column<Ticks>(packets, &PacketFacts::dts), dts, "dts");
    }
    if (traits.displayTimes && traits.everyTime) {
        expectTicks(column<Ticks>(packets, &PacketFacts::pts), pts, "pts");
    }
    if (traits.codingTimes && traits.displayTimes) {
        EXPECT_EQ(packets[0].pts.value() - packets[0].dts.value(), pts[0] - dts[0]);
    }
}

} // namespace

StreamFacts streamOf(const std::string& path, const std::string& stream) {
    const json shown = ffprobeJson(path, {"-select_streams", stream, "-show_streams",
                                          "-show_packets", "-show_data_hash", "md5"});
    StreamFacts facts{shown.at("streams").at(0), {}, {}};
    facts.timeBase = fractionOf(facts.fields.at("time_base"));
    for (const json& packet : shown.at("packets")) {
        facts.packets.push_back({.pts = ticks(packet, "pts"),
                                 .dts = ticks(packet, "dts"),
                                 .duration = ticks(packet, "duration").value_or(0),
                                 .size = std::stoll(packet.at("size").get<std::string>()),
                                 .flags = packet.at("flags"),
                                 .hash = packet.at("data_hash")});
    }
    return facts;
}

Decoded decode(const std::string& path) {
    ProgramResult shown = runProgram({"ffmpeg", "-v", "error", "-nostdin", "-xerror", "-i", path,
                                      "-map", "0:v:0", "-vsync", "passthrough", "-f", "framemd5",
                                      "-", "-map", "0:a?", "-f", "null", "-"});
    Decoded decoded;
    std::istringstream lines(shown.output);
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with('#')) {
            decoded.pictures.push_back(line.substr(line.rfind(' ') + 1));
        }
    }
    decoded.complaints = std::move(shown.errors);
    return decoded;
}

Source::Source(const std::string& file) : Source(readOnce(file)) {}

const Source& Source::readOnce(const std::string& file) {
    static std::map<std::string, Source> known;
    const auto found = known.find(file);
    return found != known.end() ? found->second
                                : known.emplace(file, Source(file, decode(file))).first->second;
}

Source::Source(const std::string& file, Decoded decoded)
    : path(file), video(streamOf(file, "v:0")), pictures(std::move(decoded.pictures)),
      delay(video.fields.at("has_b_frames")) {
    const Fraction rate = fractionOf(video.fields.at("r_frame_rate"));
    frameDuration = {rate.den, rate.num};
    places.resize(video.packets.size());
    const std::vector<std::size_t> order = inOrderOfDisplay(video.packets);
    for (std::size_t place = 0; place < order.size(); ++place) {
        places[order[place]] = place;
    }
}

double Source::shownAt(const PacketFacts& packet) const {
    // Without a time of display, that of coding.
    const std::int64_t time = packet.pts.value_or(packet.dts.value_or(0));
    return static_cast<double>(time) * static_cast<double>(video.timeBase.num) /
           static_cast<double>(video.timeBase.den);
}

double Source::startSeconds() const {
    return shownAt(video.packets.at(0));
}

std::size_t Source::keyBefore(double seconds) const {
    std::size_t found = 0;
    for (std::size_t i = 0; i < video.packets.size(); ++i) {
        if (isKey(video.packets[i]) && shownAt(video.packets[i]) <= seconds) {
            found = i;
        }
    }
    return found;
}

std::size_t Source::indexOf(const PacketFacts& packet) const {
    const auto found = std::ranges::find(video.packets, packet.hash, &PacketFacts::hash);
    if (found == video.packets.end()) {
        throw std::out_of_range(path + " has no such packet");
    }
    return static_cast<std::size_t>(found - video.packets.begin());
}

Stretch wholeOf(const Source& source) {
    return {&source, 0, source.video.packets.size()};
}

void expectPackets(const std::string& output, const std::vector<Stretch>& stretches) {
    const StreamFacts video = streamOf(output, "v:0");
    const Expected expected(stretches);
    ASSERT_EQ(video.packets.size(), expected.hashes.size());
    const Source& source = *stretches.front().source;
    if (!isRepacked(output, source)) {
        EXPECT_EQ(column<std::string>(video.packets, &PacketFacts::hash), expected.hashes);
    }
    EXPECT_EQ(column<bool>(video.packets, isKey), expected.keys);
    expectTimes(output, video, expected, source);
}

void expectVideo(const std::string& output, const std::vector<Stretch>& stretches) {
    expectPackets(output, stretches);
    const std::vector<std::string> pictures = Expected(stretches).pictures;
    if (!traitsOf(output).everyTime) { // readers then guess times and complain of their guesses
        EXPECT_EQ(frameMd5s(output, "v:0"), pictures);
        return;
    }
    const Decoded decoded = decode(output);
    EXPECT_EQ(decoded.pictures, pictures);
    EXPECT_EQ(decoded.complaints, "");
}

} // namespace velmora::test
