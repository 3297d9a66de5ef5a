#pragma once

#include "AvHandles.h"

#include <cstdint>
#include <deque>
#include <vector>

namespace velmora {

/// Finds out what the streams of an opened container are, by decoding pictures as far as the
/// library thinks necessary. 0 or more, or a negative libav error code.
int readStreamInfo(AVFormatContext& container);

/// Finds out the same without decoding H.264 and HEVC, of which one picture takes longer than all
/// else together: the container tells most, the headers of the first picture the rest. Where that
/// is not sure to be the same to the last value, it says so, and the container has to be opened
/// anew:
///
/// - The container has to be mov or Matroska and to tell the picture size and the mean rate. A real
///   rate that mov does not tell follows from its decoding times, unless it may come from the
///   headers instead. Matroska has no decoding times, so there the rate has to be told.
/// - The headers have to tell the reorder delay. H.264 need not, and a decoder then goes by the
///   pictures that it sees.
/// - The start of H.264 in Matroska, which the library knows by its decoding times alone, is that
/// of
///   its first packet. Very short files and those with subtitles, whose start may become that of
///   the file, are left to the library.
/// - No sound's bit rate may be a mean over the packets that happen to have been read (MP3, AC-3).
class QuickStreamInfo {
public:
    explicit QuickStreamInfo(AVFormatContext& container) : container_(container) {}

    /// Whether trying is worth while.
    bool isPossible() const;

    /// 0 or more, or a negative libav error code.
    int read();

    /// Whether what has been read is what readStreamInfo would have found.
    bool isSure() const { return isSure_; }

    /// What has been read of the streams, to be given out before what follows.
    std::deque<PacketHandle> releasePackets() { return std::move(packets_); }

    /// The decoding times of packets are guesses, made without knowing by how much coding runs
    /// ahead of display.
    bool guessesDecodingTimes() const;

private:
    /// A stream the decoder of which is held back.
    struct HeldBack {
        AVStream* stream;
        bool hasDuration;          ///< the container tells
        bool hasRate;              ///< the container tells
        std::int64_t pictures = 0; ///< read so far
        std::int64_t firstTime = AV_NOPTS_VALUE;
    };

    bool tellsPictures() const;
    bool tellsRates() const;
    void holdBack();
    int readWithoutDecoders();
    bool readHeaders();
    bool hasEnough() const;
    bool keep(const AVPacket& packet);
    bool isRateSure(const HeldBack& held, AVRational codecRate) const;
    void setStart(const HeldBack& held);

    AVFormatContext& container_;
    std::vector<HeldBack> heldBack_;
    std::deque<PacketHandle> packets_;
    bool isSure_ = false;
};

} // namespace velmora
