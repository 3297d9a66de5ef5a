#include "Decoder.h"

#include "EngineLog.h"
#include "InputMedia.h"
#include "MediaReader.h"
#include "TestMedia.h"

#include <gtest/gtest.h>

#include <memory>

namespace velmora::test {
namespace {

std::unique_ptr<InputMedia> opened(const char* name) {
    auto media = std::make_unique<InputMedia>(mediaPath(name), nullptr);
    EXPECT_GE(media->open(), 0);
    EXPECT_GE(media->readStreamInfo(), 0);
    return media;
}

int open(Decoder& decoder, const char* name) {
    const auto media = opened(name);
    return decoder.open(*media->videoStream(), media->path());
}

/// How many pictures come of the whole file.
int picturesOf(InputMedia& media, Decoder& decoder) {
    int count = 0;
    const auto receiveAll = [&] {
        while (decoder.receive() != nullptr) {
            ++count;
        }
    };
    const PacketHandle packet(av_packet_alloc());
    while (media.read(*packet) >= 0) {
        if (packet->stream_index == media.videoStreamIndex()) {
            decoder.send(*packet);
            receiveAll();
        }
        av_packet_unref(packet.get());
    }
    decoder.sendEnd();
    receiveAll();
    return count;
}

TEST(Decoder, openOfUnknownCodec_isToldFromOneThatDoesNotOpen) {
    const ExpectedLogLines quiet(ExpectedLogLines::Kind::Everything);
    Decoder decoder;
    EXPECT_EQ(open(decoder, "unknown-codec.avi"), AVERROR_DECODER_NOT_FOUND);
    EXPECT_FALSE(decoder.isOpen());
    EXPECT_EQ(open(decoder, "damaged-decoder-header.avi"), AVERROR_INVALIDDATA);
    EXPECT_FALSE(decoder.isOpen());
}

TEST(Decoder, failedOpen_closesWhatWasOpen) {
    const ExpectedLogLines quiet(ExpectedLogLines::Kind::Everything);
    Decoder decoder;
    EXPECT_EQ(open(decoder, "h264-bframes.flv"), 0);
    EXPECT_TRUE(decoder.isOpen());
    EXPECT_LT(open(decoder, "unknown-codec.avi"), 0);
    EXPECT_FALSE(decoder.isOpen());
}

TEST(Decoder, end_givesThePicturesThatWereHeldBack) {
    const auto media = opened("h264-bframes.flv");
    Decoder decoder;
    ASSERT_EQ(decoder.open(*media->videoStream(), media->path()), 0);
    EXPECT_EQ(picturesOf(*media, decoder),
              static_cast<int>(frameMd5s(media->path(), "v:0").size()));
}

TEST(Decoder, packetWithoutData_isNotTheEnd) {
    const auto media = opened("h264-bframes.flv");
    Decoder decoder;
    ASSERT_EQ(decoder.open(*media->videoStream(), media->path()), 0);
    const PacketHandle empty(av_packet_alloc());
    decoder.send(*empty);
    EXPECT_EQ(picturesOf(*media, decoder),
              static_cast<int>(frameMd5s(media->path(), "v:0").size()));
}

} // namespace
} // namespace velmora::test
