#include "Sources.h"

#include "TestMedia.h"

#include <array>
#include <filesystem>
#include <set>
#include <utility>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kVanishing = "gone.mp4";

/// The files' names, and the media that they are copies of.
constexpr std::array<std::pair<const char*, const char*>, 6> kCopies{{
    {"a.mp4", "h264.mp4"},
    {"b.mp4", "h264.mp4"},
    {kVanishing, "h264-bframes.mp4"},
    {"c.avi", "mpeg4.avi"},
    {"d.mp4", "video-only.mp4"},
    {"sound.m4a", "audio-only.m4a"},
}};
constexpr const char* kText = "text.mp4";
constexpr const char* kWords = "These are words and no pictures.\n";

} // namespace

Sources::Sources() {
    for (const auto& [name, medium] : kCopies) {
        fs::copy_file(mediaPath(medium), folder_ / name);
    }
    writeFile(folder_ / kText, kWords);
    fs::create_directory(folder_ / "out");
}

QString Sources::any(Random& random) const {
    if (random.oneIn(12)) {
        return path(random.oneIn(2) ? kText : "never.mp4");
    }
    return path(random.oneOf(kCopies).first);
}

void Sources::vanishOrReturn() const {
    const fs::path file = folder_ / kVanishing;
    if (!fs::remove(file)) {
        fs::copy_file(mediaPath("h264-bframes.mp4"), file);
    }
}

bool Sources::areUntouched() const {
    std::set<std::string> expected{kText, "out"};
    bool same =
        readFile(folder_ / kText) == Bytes(kWords, kWords + std::string_view(kWords).size());
    for (const auto& [name, medium] : kCopies) {
        expected.insert(name);
        if (name != kVanishing || fs::exists(folder_ / name)) {
            same = same && readFile(folder_ / name) == readFile(mediaPath(medium));
        }
    }
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_.path())) {
        same = same && expected.contains(entry.path().filename());
    }
    return same;
}

} // namespace velmora::test
