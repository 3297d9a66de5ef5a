#include "TestMedia.h"

#include "FileDescriptor.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <iomanip>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <system_error>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

enum class Kind {
    Video,     ///< at least one picture of it can be decoded
    NoPicture, ///< its streams are known, but no picture can be decoded
    Other,     ///< neither, or damaged
};

using Edit = void (*)(Bytes&);

struct Recipe {
    std::string name;
    Kind kind;
    /// Arguments of ffmpeg, to which the output file is added. @NAME stands for the path of another
    /// of these files. Without a command the file holds the bytes of those named by `sources`, one
    /// after the other.
    std::string command;
    std::string sources = {};
    Edit edit = nullptr; ///< what is done to the content in the end
    bool piped = false;  ///< ffmpeg writes it as a stream in which it cannot go back
};

std::string pictures(const std::string& rate, const std::string& seconds,
                     const std::string& size = "320x180") {
    return " -f lavfi -i testsrc2=size=" + size + ":rate=" + rate + ":duration=" + seconds;
}

std::string sound(const std::string& seconds, const std::string& rate = "44100") {
    return " -f lavfi -i sine=frequency=440:sample_rate=" + rate + ":duration=" + seconds;
}

constexpr const char* kX264 = " -c:v libx264 -preset ultrafast -pix_fmt yuv420p";
constexpr const char* kAac = " -c:a aac -b:a 96k -ac 2";
constexpr const char* kMp3 = " -c:a libmp3lame -b:a 96k -ac 2";
constexpr const char* kMp2 = " -c:a mp2 -b:a 128k -ac 2";

void keepFirstHalf(Bytes& content) {
    content.resize(content.size() / 2);
}

// Every 500th byte of the second fourth, which lies among the coded pictures and sound.
void overwriteBytes(Bytes& content) {
    for (std::size_t i = content.size() / 4; i < content.size() / 2; i += 500) {
        content[i] = static_cast<std::uint8_t>(~content[i]);
    }
}

// The first coded picture of an mp4.
void overwriteStart(Bytes& content) {
    for (std::size_t i = 60; i < std::min<std::size_t>(content.size(), 3000); i += 7) {
        content[i] = static_cast<std::uint8_t>(~content[i]);
    }
}

// Packets of a transport stream have 188 bytes.
void dropFirstThird(Bytes& content) {
    const std::size_t packets = content.size() / 188;
    content.erase(content.begin(),
                  content.begin() + static_cast<std::ptrdiff_t>(packets / 3 * 188));
}

Bytes::iterator find(Bytes& content, Bytes::iterator from, std::string_view text) {
    return std::search(from, content.end(), text.begin(), text.end());
}

// MPEG-4 in avi gets a code that stands for no codec.
void forgetCodec(Bytes& content) {
    constexpr std::string_view unknown = "ZZ99";
    for (auto at = content.begin(); (at = find(content, at, "FMP4")) != content.end();) {
        std::ranges::copy(unknown, at);
    }
}

// FFV1 in avi: its second mention is in the stream's format, 24 bytes before the decoder's header.
void damageDecoderHeader(Bytes& content) {
    const auto handler = find(content, content.begin(), "FFV1");
    const auto format = find(content, handler + 4, "FFV1");
    std::fill_n(format + 24, 16, std::uint8_t{0xFF});
}

// AV1 in ivf, of which not even the first bits are as they have to be.
void writeImpossiblePictures(Bytes& content) {
    constexpr std::array<std::uint8_t, 32> header{
        'D', 'K', 'I', 'F', 0, 0, 32, 0, 'A', 'V', '0', '1', 64, 1, 180, 0, // 320 x 180
        25,  0,   0,   0,   1, 0, 0,  0, 1,   0,   0,   0};                 // 25/1, one picture
    constexpr std::array<std::uint8_t, 12> picture{100};                    // its size and time
    content.assign(header.begin(), header.end());
    content.insert(content.end(), picture.begin(), picture.end());
    content.insert(content.end(), 100, 0xFF);
}

void writeText(Bytes& content) {
    constexpr std::string_view text = "These are words and no pictures.\n";
    for (int i = 0; i < 100; ++i) {
        content.insert(content.end(), text.begin(), text.end());
    }
}

void writeSubtitles(Bytes& content) {
    constexpr std::string_view text = "1\n00:00:00,500 --> 00:00:01,500\nOne\n\n"
                                      "2\n00:00:02,000 --> 00:00:03,000\nTwo\n\n";
    content.assign(text.begin(), text.end());
}

void insertH264(std::vector<Recipe>& all) {
    const std::string x264 = kX264;
    const std::string aac = kAac;
    const std::string source = pictures("30", "4") + sound("4");
    const std::string bFrames = " -bf 3 -g 60";
    all.insert(all.end(),
               {
                   {"h264.mp4", Kind::Video, source + x264 + " -g 30" + aac},
                   {"h264-bframes.mp4", Kind::Video, source + x264 + bFrames + aac},
                   {"h264-2997.mp4", Kind::Video,
                    pictures("30000/1001", "4") + sound("4") + x264 + " -g 30" + aac},
                   {"h264-23976.mp4", Kind::Video,
                    pictures("24000/1001", "4") + sound("4", "48000") + x264 + " -g 48" + aac},
                   {"h264-open-gop.mp4", Kind::Video,
                    source + x264 + " -bf 2 -g 20 -x264-params open-gop=1:scenecut=0" + aac},
                   {"h264-16-references.mp4", Kind::Video,
                    pictures("30", "2") + " -c:v libx264 -preset ultrafast -pix_fmt yuv420p" +
                        " -bf 8 -refs 8 -x264-params b-adapt=0:b-pyramid=normal"},
                   {"h264-interlaced.mp4", Kind::Video,
                    pictures("25", "3") + " -vf tinterlace=interleave_top" + x264 +
                        " -flags +ilme+ildct -x264-params tff=1"},
                   {"h264-intra-refresh.ts", Kind::Video,
                    source + x264 + " -g 30 -x264-params intra-refresh=1" + aac},
                   {"h264-vfr.mp4", Kind::Video,
                    pictures("30", "4") + " -vf select='not(eq(mod(n,7),2)+between(n,50,61))'" +
                        " -vsync vfr" + x264 + bFrames},
                   {"h264-gop250.ts", Kind::Video,
                    pictures("25", "12", "192x108") + sound("12") + x264 + " -g 250" + aac},
                   {"h264-one-key.ts", Kind::Video,
                    pictures("30", "5", "192x108") + sound("5") + x264 + " -g 250 -bf 2" + aac},
                   {"h264-bframes.ts", Kind::Video, "-i @h264-bframes.mp4 -c copy"},
                   {"h264-open-gop.ts", Kind::Video,
                    source + x264 + " -bf 2 -g 20 -x264-params open-gop=1:scenecut=0" + aac},
                   {"h264-headers-once.ts", Kind::Video, "-i @h264-open-gop.mp4 -c copy"},
                   {"h264.flv", Kind::Video, "-i @h264.mp4 -c copy"},
                   {"h264-bframes.flv", Kind::Video, "-i @h264-bframes.mp4 -c copy"},
                   {"h264-bframes.mkv", Kind::Video, "-i @h264-bframes.mp4 -c copy"},
                   {"h264-bframes.mov", Kind::Video, "-i @h264-bframes.mp4 -c copy"},
                   {"h264-bframes.avi", Kind::Video,
                    "-i @h264-bframes.mp4 -c copy -bsf:v h264_mp4toannexb"},
                   {"h264-fragmented.mp4", Kind::Video,
                    "-i @h264-bframes.mp4 -c copy -movflags frag_keyframe+empty_moov"},
               });
}

void insertOtherCodecs(std::vector<Recipe>& all) {
    const std::string source = pictures("30", "4") + sound("4");
    const std::string small = pictures("25", "2") + sound("2", "48000");
    const std::string hevc = " -c:v libx265 -preset ultrafast -pix_fmt yuv420p"
                             " -x265-params log-level=error:pools=none:frame-threads=1:bframes=2";
    all.insert(
        all.end(),
        {
            {"mpeg4.avi", Kind::Video, source + " -c:v mpeg4 -q:v 5" + kMp3},
            {"mpeg4-bframes.avi", Kind::Video, source + " -c:v mpeg4 -q:v 5 -bf 2" + kMp3},
            {"mpeg4.mp4", Kind::Video, source + " -c:v mpeg4 -q:v 5" + kAac},
            {"hevc.mp4", Kind::Video, small + hevc + " -tag:v hvc1" + kAac},
            {"hevc.ts", Kind::Video, "-i @hevc.mp4 -c copy"},
            {"hevc.mkv", Kind::Video, "-i @hevc.mp4 -c copy"},
            {"mpeg2.ts", Kind::Video, source + " -c:v mpeg2video -q:v 5 -g 15 -bf 2" + kMp2},
            {"mpeg2.mpg", Kind::Video, source + " -c:v mpeg2video -q:v 5 -g 15 -bf 2" + kMp2},
            {"mpeg1.mpg", Kind::Video, small + " -c:v mpeg1video -q:v 5" + kMp2},
            {"flv1.flv", Kind::Video, source + " -c:v flv -q:v 5" + kMp3},
            {"wmv2.wmv", Kind::Video, source + " -c:v wmv2 -q:v 5 -c:a wmav2 -b:a 128k -ac 2"},
            {"vp9.webm", Kind::Video,
             pictures("25", "2", "160x90") +
                 " -c:v libvpx-vp9 -deadline realtime -cpu-used 8 -b:v 200k"},
            {"theora.ogv", Kind::Video,
             small + " -c:v libtheora -q:v 5 -c:a libvorbis -b:a 96k -ac 2"},
            {"mjpeg.mov", Kind::Video,
             small + " -c:v mjpeg -q:v 5 -pix_fmt yuvj422p -c:a pcm_s16le"},
            {"ffv1.avi", Kind::Video, pictures("25", "1") + " -c:v ffv1 -level 3"},
            {"vorbis.mkv", Kind::Video, source + kX264 + " -bf 2 -c:a libvorbis -b:a 96k -ac 2"},
            {"opus.mkv", Kind::Video,
             pictures("30", "4") + sound("4", "48000") + kX264 + " -c:a libopus -b:a 64k"},
            {"flac.mkv", Kind::Video, source + kX264 + " -c:a flac -ac 2"},
        });
}

void insertStreams(std::vector<Recipe>& all) {
    const std::string x264 = kX264;
    const std::string picture = " -f lavfi -i testsrc=size=200x200:rate=1:duration=1";
    const std::string cover = " -disposition:v:1 attached_pic";
    all.insert(
        all.end(),
        {
            {"video-only.mp4", Kind::Video, pictures("30", "4") + x264 + " -bf 2"},
            {"audio-only.m4a", Kind::NoPicture, sound("4") + kAac},
            {"audio-only.wav", Kind::NoPicture, sound("2", "22050") + " -c:a pcm_s16le"},
            {"two-streams.mkv", Kind::Video,
             pictures("30", "3") + pictures("25", "3", "160x120") + sound("3") +
                 sound("3", "48000") + " -map 0 -map 2 -map 1 -map 3 -c:v:0 libx264" +
                 " -preset ultrafast -pix_fmt yuv420p -c:v:1 mpeg4 -c:a:0 aac -c:a:1 libmp3lame" +
                 " -metadata:s:a:0 language=eng -metadata:s:a:1 language=fra"},
            {"two-h264.mp4", Kind::Video,
             pictures("30", "3") + pictures("25", "3", "160x120") + " -map 0 -map 1" + x264 +
                 " -bf 2"},
            {"subtitles.srt", Kind::Other, "", "", writeSubtitles},
            {"subtitles.mkv", Kind::Video,
             "-i @h264.mp4 -i @subtitles.srt -map 0 -map 1 -c copy -c:s srt"},
            {"subtitles.mp4", Kind::Video,
             "-i @h264.mp4 -i @subtitles.srt -map 0 -map 1 -c copy -c:s mov_text"},
            {"cover.mp3", Kind::NoPicture,
             sound("3") + picture + " -map 0 -map 1 -c:a libmp3lame -c:v png -id3v2_version 3" +
                 " -disposition:v:0 attached_pic"},
            {"cover.m4a", Kind::NoPicture,
             sound("3") + picture + " -map 0 -map 1 -c:a aac -c:v png -f mp4" +
                 " -disposition:v:0 attached_pic"},
            {"cover.mp4", Kind::Video,
             "-i @h264.mp4" + picture + " -map 0 -map 1 -c copy -c:v:1 png" + cover},
            {"cover.mkv", Kind::Video,
             "-i @h264.mp4 -c copy -attach @pixel.png -metadata:s:t mimetype=image/png"},
            {"odd-size.avi", Kind::Video,
             pictures("25", "2") + " -vf scale=321:241 -c:v mpeg4 -q:v 5"},
            {"odd-size.mp4", Kind::Video,
             pictures("25", "2") +
                 " -vf scale=175:99 -c:v libx264 -preset ultrafast -pix_fmt yuv444p"},
            {"tagged-upright.mp4", Kind::Video,
             pictures("30", "3") + sound("3") + " -vf setsar=12/11" + x264 +
                 " -bf 2 -colorspace bt709 -color_primaries bt709 -color_trc bt709" +
                 " -color_range tv" + kAac + " -metadata:s:v language=deu" +
                 " -metadata:s:a language=fra -metadata title=Grüße"},
            {"tagged-rotated.mp4", Kind::Video,
             "-i @tagged-upright.mp4 -c copy -metadata:s:v rotate=90"},
            {"rate-30000.mp4", Kind::Video, pictures("30000", "0.01") + " -c:v mpeg4"},
            {"rate-1000.mp4", Kind::Video, pictures("1000", "0.1") + " -c:v mpeg4"},
            {"one-picture.mkv", Kind::Video, pictures("25", "0.04") + x264},
        });
}

void insertOddities(std::vector<Recipe>& all) {
    all.insert(
        all.end(),
        {
            {"raw.h264", Kind::Video, "-i @h264-bframes.mp4 -c:v copy -an"},
            {"raw.m4v", Kind::Video, "-i @mpeg4.mp4 -c:v copy -an -bsf:v dump_extra -f m4v"},
            {"piped.mkv", Kind::Video, "-i @h264-bframes.mp4 -c copy -f matroska", "", nullptr,
             true},
            {"piped.flv", Kind::Video, "-i @h264.mp4 -c copy -f flv", "", nullptr, true},
            {"pixel.png", Kind::Video,
             "-f lavfi -i color=red:size=16x16:duration=1:rate=1 -vf scale=1:1"},
            {"pixel.mkv", Kind::Video,
             "-f lavfi -i color=red:size=16x16:duration=1:rate=5 -vf scale=1:1 -c:v ffv1"},
            {"damaged.mp4", Kind::Video, "", "h264-bframes.mp4", overwriteBytes},
            {"damaged.ts", Kind::Video, "", "h264-bframes.ts", overwriteBytes},
            {"damaged.avi", Kind::Video, "", "mpeg4.avi", overwriteBytes},
            {"cut-off.ts", Kind::Video, "", "h264-bframes.ts", keepFirstHalf},
            {"cut-off.mkv", Kind::Video, "", "h264-bframes.mkv", keepFirstHalf},
            {"cut-off.avi", Kind::Video, "", "mpeg4.avi", keepFirstHalf},
            {"damaged-start.mp4", Kind::Video, "", "h264-bframes.mp4", overwriteStart},
            {"starts-mid-group.ts", Kind::Video, "", "h264-bframes.ts", dropFirstThird},
            {"starts-mid-open-group.ts", Kind::Video, "", "h264-open-gop.ts", dropFirstThird},
            {"headers-gone.ts", Kind::NoPicture, "", "h264-headers-once.ts", dropFirstThird},
            {"two-recordings.ts", Kind::Video, "", "h264-bframes.ts h264-gop250.ts"},
            {"edit-list.mp4", Kind::Video, "-ss 1 -i @h264-bframes.mp4 -c copy"},
            {"late-video.mp4", Kind::Video,
             "-itsoffset 7 -i @h264-bframes.mp4" + sound("12") +
                 " -map 0:v -map 1:a -c:v copy -c:a aac"},
            {"truncated.mp4", Kind::Other, "", "h264.mp4", keepFirstHalf},
            {"empty.mp4", Kind::Other, ""},
            {"text.mp4", Kind::Other, "", "", writeText},
            {"impossible-pictures.ivf", Kind::Other, "", "", writeImpossiblePictures},
            {"video-only-mpeg4.avi", Kind::Video, pictures("25", "1") + " -c:v mpeg4"},
            {"unknown-codec.avi", Kind::Other, "", "mpeg4.avi", forgetCodec},
            {"unknown-codec-only.avi", Kind::Other, "", "video-only-mpeg4.avi", forgetCodec},
            {"damaged-decoder-header.avi", Kind::Other, "", "ffv1.avi", damageDecoderHeader},
        });
}

const std::vector<Recipe>& recipes() {
    static const std::vector<Recipe> list = [] {
        std::vector<Recipe> all;
        insertH264(all);
        insertOtherCodecs(all);
        insertStreams(all);
        insertOddities(all);
        return all;
    }();
    return list;
}

const Recipe& recipeOf(const std::string& name) {
    const auto found = std::ranges::find(recipes(), name, &Recipe::name);
    if (found == recipes().end()) {
        throw std::invalid_argument("no media file is named " + name);
    }
    return *found;
}

/// The file that a word of a command stands for; empty when it is an argument as it is.
std::string mediaNamedIn(const std::string& word) {
    return word.starts_with('@') ? word.substr(1) : std::string();
}

std::vector<std::string> wordsOf(const std::string& command) {
    std::istringstream words(command);
    return {std::istream_iterator<std::string>(words), std::istream_iterator<std::string>()};
}

/// All that the content depends on, and so of the files that it is made from.
std::string descriptionOf(const Recipe& recipe) {
    std::string text = recipe.name + '\n' + recipe.command + (recipe.piped ? " |" : "");
    if (recipe.edit != nullptr) {
        Bytes sample(8000);
        for (std::size_t i = 0; i < sample.size(); ++i) {
            sample[i] = static_cast<std::uint8_t>("FMP4 FFV1 "[i % 10]);
        }
        recipe.edit(sample);
        text.append(sample.begin(), sample.end());
    }
    for (const std::string& name : wordsOf(recipe.sources)) {
        text += descriptionOf(recipeOf(name));
    }
    for (const std::string& word : wordsOf(recipe.command)) {
        if (const std::string other = mediaNamedIn(word); !other.empty()) {
            text += descriptionOf(recipeOf(other));
        }
    }
    return text;
}

/// 64-bit FNV-1a.
std::string hashOf(const std::string& text) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char character : text) {
        hash = (hash ^ static_cast<std::uint8_t>(character)) * 0x100000001b3;
    }
    std::ostringstream digits;
    digits << std::hex << std::setw(16) << std::setfill('0') << hash;
    return digits.str();
}

/// Held by the process that makes the file, so that others wait for it instead of making it too.
class Lock {
public:
    explicit Lock(const fs::path& path)
        : file_(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
        while (flock(file_.get(), LOCK_EX) != 0) {
            if (errno != EINTR) {
                throw std::system_error(errno, std::generic_category(), path.string());
            }
        }
    }

private:
    FileDescriptor file_;
};

void runFfmpeg(const Recipe& recipe, const fs::path& target) {
    std::vector<std::string> command{"ffmpeg", "-v", "error", "-nostdin", "-y"};
    for (const std::string& word : wordsOf(recipe.command)) {
        const std::string other = mediaNamedIn(word);
        command.push_back(other.empty() ? word : mediaPath(other));
    }
    command.push_back(recipe.piped ? "pipe:1" : target.string());
    const ProgramResult result = runProgram(command, recipe.piped ? target : fs::path());
    if (result.status != 0) {
        throw std::runtime_error("cannot make " + recipe.name + ": " + result.errors);
    }
}

void make(const Recipe& recipe, const fs::path& target) {
    if (!recipe.command.empty()) {
        runFfmpeg(recipe, target);
    } else {
        Bytes content;
        for (const std::string& name : wordsOf(recipe.sources)) {
            const Bytes bytes = readFile(mediaPath(name));
            content.insert(content.end(), bytes.begin(), bytes.end());
        }
        if (recipe.edit != nullptr) {
            recipe.edit(content);
        }
        writeFile(target, content);
    }
}

std::vector<std::string> namesWhere(const std::function<bool(Kind)>& wanted) {
    std::vector<std::string> names;
    for (const Recipe& recipe : recipes()) {
        if (wanted(recipe.kind)) {
            names.push_back(recipe.name);
        }
    }
    return names;
}

} // namespace

// The folder's name tells the command, so a changed command makes the file again. A file gets its
// name when it is complete.
std::string mediaPath(const std::string& name) {
    const Recipe& recipe = recipeOf(name);
    const fs::path folder = fs::path(VELMORA_TEST_MEDIA) / hashOf(descriptionOf(recipe));
    fs::path file = folder / name;
    if (fs::exists(file)) {
        return file;
    }
    fs::create_directories(folder);
    const Lock lock(folder / "lock");
    if (!fs::exists(file)) {
        const fs::path unfinished = folder / ("unfinished-" + name);
        make(recipe, unfinished);
        fs::rename(unfinished, file);
    }
    return file;
}

std::string copyOfMedia(const std::string& name, const TemporaryFolder& folder) {
    std::string target = folder / name;
    fs::copy_file(mediaPath(name), target);
    return target;
}

std::vector<std::string> videoMedia() {
    return namesWhere([](Kind kind) { return kind == Kind::Video; });
}

std::vector<std::string> readableMedia() {
    return namesWhere([](Kind kind) { return kind != Kind::Other; });
}

std::string asTestName(const std::string& mediaName) {
    std::string name = mediaName;
    std::ranges::replace_if(
        name, [](unsigned char character) { return std::isalnum(character) == 0; }, '_');
    return name;
}

} // namespace velmora::test
