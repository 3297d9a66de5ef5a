#include "MediaRecipes.h"

#include "MediaEdits.h"

namespace velmora::test {
namespace {

using Recipe = MediaRecipe;
using Kind = Recipe::Kind;

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
                   {"h264-open-gop.ts", Kind::Video,
                    source + x264 + " -bf 2 -g 20 -x264-params open-gop=1:scenecut=0" + aac},
               });
}

/// The same in other containers.
void insertCopiesOfH264(std::vector<Recipe>& all) {
    all.insert(all.end(),
               {
                   {"h264-bframes.ts", Kind::Video, "-i @h264-bframes.mp4 -c copy"},
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
        });
}

/// Of pictures: sizes, tags, rates.
void insertTraits(std::vector<Recipe>& all) {
    const std::string x264 = kX264;
    all.insert(all.end(),
               {
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

} // namespace

const std::vector<MediaRecipe>& mediaRecipes() {
    static const std::vector<Recipe> list = [] {
        std::vector<Recipe> all;
        insertH264(all);
        insertCopiesOfH264(all);
        insertOtherCodecs(all);
        insertStreams(all);
        insertTraits(all);
        insertOddities(all);
        return all;
    }();
    return list;
}

} // namespace velmora::test
