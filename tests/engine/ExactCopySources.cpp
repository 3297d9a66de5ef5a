#include "ExactCopySources.h"

#include "JobSupport.h"

#include <filesystem>
#include <map>
#include <string>

namespace velmora::test {
namespace {

/// What ffmpeg is told behind the pictures and the sound; "@NAME" instead: those packets.
const std::map<std::string, std::string>& recipes() {
    static const std::string kH264 = "-c:v libx264 -g 50 -pix_fmt yuv420p -c:a aac";
    static const std::map<std::string, std::string> kRecipes = {
        {"plain.mp4", kH264},
        {"plain.mov", "@plain.mp4"},
        {"plain.mkv", "@plain.mp4"},
        {"plain.ts", "@plain.mp4"},
        {"plain.avi", "@plain.mp4"},
        {"long.mp4", kH264 + " -preset ultrafast"},
        {"long.mkv", "@long.mp4"},
        {"open.mp4", "-c:v libx264 -preset superfast -g 50 -bf 2 -x264-params open-gop=1 -pix_fmt "
                     "yuv420p -c:a aac"},
        {"asp.mp4", "-c:v mpeg4 -g 50 -c:a aac"},
        {"fast.mp4", kH264 + " -movflags +faststart"},
        {"silent.mp4", "@plain.mp4 -an"},
        {"gaps.mp4", "-vf setpts=(N/25+0.6*floor(N/10))/TB -vsync vfr -c:v libx264 -g 25 -bf 2 "
                     "-pix_fmt yuv420p -video_track_timescale 12800 -c:a aac"},
        {"gaps0.mp4", "-vf setpts=(N/25+0.6*floor(N/10))/TB -vsync vfr -c:v libx264 -g 25 -bf 0 "
                      "-pix_fmt yuv420p -video_track_timescale 12800 -c:a aac"},
        {"repeated.ts", kH264 + " -x264-params repeat-headers=1:aud=1"},
        {"intra.mov", "-c:v prores_ks -c:a pcm_s16le"},
        {"pcm.mov", "-c:v libx264 -g 50 -pix_fmt yuv420p -c:a pcm_s16le"},
    };
    return kRecipes;
}

/// Both files, one behind the other.
std::string joined(const std::string& first, const std::string& second) {
    const std::filesystem::path path = std::filesystem::path(first).replace_filename("changing.ts");
    Bytes bytes = readFile(first);
    const Bytes rest = readFile(second);
    bytes.insert(bytes.end(), rest.begin(), rest.end());
    writeFile(path, bytes);
    return path;
}

} // namespace

std::string copySource(const std::string& name) {
    if (name == "changing.ts") { // other settings from 5 s on
        const std::string other = mediaMadeBy("-i " + copySource("plain.mp4") +
                                                  " -ss 5 -c:v libx264 -g 50 -refs 5 -c:a copy "
                                                  "-output_ts_offset 5 -f mpegts",
                                              "copy-other.ts");
        return joined(mediaMadeBy("-i " + copySource("plain.mp4") + " -t 5 -c copy -f mpegts",
                                  "copy-first.ts"),
                      other);
    }
    if (name == "late.mp4") { // its sound, by 3 s
        const std::string plain = copySource("plain.mp4");
        return mediaMadeBy("-itsoffset 3 -i " + plain + " -i " + plain +
                               " -map 1:v -map 0:a -c copy",
                           "copy-late.mp4");
    }
    const std::string& recipe = recipes().at(name);
    const bool isLong = name.starts_with("long") || name.starts_with("open");
    const std::string length = isLong ? "duration=60" : "duration=10";
    if (recipe.front() == '@') {
        const std::size_t end = recipe.find(' ');
        const std::string options = end != std::string::npos ? recipe.substr(end) : "";
        return mediaMadeBy("-i " + copySource(recipe.substr(1, end - 1)) + " -c copy" + options,
                           "copy-" + name);
    }
    return mediaMadeBy("-f lavfi -i testsrc2=size=128x64:rate=25:" + length +
                           " -f lavfi -i sine=frequency=440:sample_rate=48000:" + length +
                           " -ac 2 " + recipe,
                       "copy-" + name);
}

} // namespace velmora::test
