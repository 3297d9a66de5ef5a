// The sentences under the messages of failures.

#include "FailureText.h"

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

using Kind = FailureCause::Kind;

FailureCause cause(Kind kind) {
    FailureCause cause;
    cause.kind = kind;
    cause.path = "/videos/a %1 b.mp4";
    cause.library = "Read-only file system";
    cause.codec = "vp9";
    cause.choice = "mp4, mkv";
    return cause;
}

struct Told {
    Kind kind;
    const char* sentence;
};

class FailureText : public ::testing::TestWithParam<Told> {};

TEST_P(FailureText, cause_isToldInPlainWords) {
    EXPECT_EQ(sentenceOf(cause(GetParam().kind)), QString(GetParam().sentence));
}

INSTANTIATE_TEST_SUITE_P(
    Causes, FailureText,
    ::testing::Values(
        Told{Kind::None, ""},
        Told{Kind::InputMissing, "“a %1 b.mp4” is no longer in its folder. Put it back, or add it "
                                 "from where it is now."},
        Told{Kind::InputNotReadable,
             "“a %1 b.mp4” may not be read. Ask its owner for permission, or copy it."},
        Told{Kind::InputIsEmpty, "“a %1 b.mp4” is empty. Copy or download it again."},
        Told{Kind::InputIsNoMedia, "“a %1 b.mp4” is no video that can be read, or is damaged. Try "
                                   "to play it; if that fails, copy or download it again."},
        Told{Kind::InputIsCut, "“a %1 b.mp4” is incomplete: what is needed to read it is missing. "
                               "Copy or download it again."},
        Told{Kind::InputIsEncrypted,
             "“a %1 b.mp4” is encrypted. Only a copy without protection can be used."},
        Told{Kind::NoDecoder, "The pictures of “a %1 b.mp4” are of a kind that cannot be decoded "
                              "here. Convert it with the program that made it."},
        Told{Kind::NoPictures, "“a %1 b.mp4” has no pictures that can be decoded. Choose a file "
                               "with a video."},
        Told{Kind::NoFrameRate, "“a %1 b.mp4” does not tell its frame rate. Choose re-encoding, "
                                "with a frame rate."},
        Told{Kind::UnknownLength, "“a %1 b.mp4” does not tell how long it is. Save it again with "
                                  "the program that made it."},
        Told{Kind::NothingBetweenTimes, "There is no picture between both times in “a %1 b.mp4”. "
                                        "Set the end later, or the start earlier."},
        Told{Kind::FolderMissing, "The folder “/videos” does not exist. Choose another folder."},
        Told{Kind::NotWritable, "“a %1 b.mp4” cannot be written in “/videos”: Read-only file "
                                "system. Choose another folder or name."},
        Told{Kind::DiskFull, "The disk of “/videos” is full. Free some space, or choose another "
                             "folder."},
        Told{Kind::FileTooLarge, "“a %1 b.mp4” became larger than its file system allows. Choose "
                                 "a folder on another disk."},
        Told{Kind::OutputIsInput,
             "“a %1 b.mp4” is also a source, or a part of one. Choose another name."},
        Told{Kind::UnknownContainer,
             "The ending of “a %1 b.mp4” is that of no container. Choose another format."},
        Told{Kind::ContainerNotUsable,
             "The format of “a %1 b.mp4” is not written as one file. Choose another format."},
        Told{Kind::CodecNotTaken, "This format does not take “vp9”. These do: mp4, mkv."},
        Told{Kind::EncoderMissing, "“vp9” cannot be encoded here. Choose another codec."},
        Told{Kind::SizeRefused, "Pictures of this size cannot be encoded as “vp9”. The nearest "
                                "size that can: mp4, mkv."},
        Told{Kind::RateRefused,
             "This frame rate cannot be encoded as “vp9”. Choose mp4, mkv pictures a second."},
        Told{Kind::SoundRefused, "Sound of this sample rate or number of channels cannot be "
                                 "encoded as “vp9”. The nearest that can: mp4, mkv."},
        Told{Kind::Other, "“a %1 b.mp4”: Read-only file system. “Details…” shows what "
                          "happened."}));

TEST(FailureTextOfDisk, sizesAreKnown_areTold) {
    FailureCause full = cause(Kind::DiskFull);
    full.neededBytes = 1'288'490'189;
    full.freeBytes = 3'145'728;
    EXPECT_EQ(sentenceOf(full), "The disk of “/videos” is full: about 1.20 GiB are needed, 3.00 "
                                "MiB are free. Free some space, or choose another folder.");
}

TEST(FailureTextOfCodec, noContainerTakesAll_advisesReencoding) {
    FailureCause refused = cause(Kind::CodecNotTaken);
    refused.choice.clear();
    EXPECT_EQ(sentenceOf(refused), "This format does not take “vp9”. Choose re-encoding.");
    refused.codec.clear();
    EXPECT_EQ(sentenceOf(refused), "This format does not take these pictures or this sound. "
                                   "Choose re-encoding.");
}

} // namespace
} // namespace velmora::test
