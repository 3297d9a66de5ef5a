#pragma once

#include "AvHandles.h"
#include "InputFiles.h"
#include "StopFlag.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>

namespace velmora {

/// One opened source: its container and the streams that are used of it. Owns the files and the
/// container context. Belongs to one thread.
///
/// Of several video or audio streams the last one is used. An attached picture (cover art) is not
/// a video stream; data and subtitle streams are not read.
class InputMedia {
public:
    /// Opens and reads end early with AVERROR_EXIT once `stop` is raised; null: never.
    InputMedia(std::string path, const StopFlag* stop);

    /// Opens the file and reads the container's header. 0 or a negative libav error code.
    int open();
    /// Finds out what the streams are and picks those to be used. 0 or more, or a negative code.
    int readStreamInfo();

    /// The next packet of any stream that is read. 0, or a negative code at the end or on failure.
    int read(AVPacket& packet);
    /// The next packet of the video stream; null at the end or on failure.
    PacketHandle readVideoPacket();

    /// Goes to `startSeconds` on the input's own time line, counted from its first picture: to the
    /// key frame at or before it, or, in formats whose time line may jump, to the same fraction of
    /// the file as of the duration. In the first case the container's start time is added to
    /// `startSeconds`. 0 or more, or a negative code; raw streams, in which nothing can be found,
    /// are then read from their beginning, others from wherever they are.
    int seek(double& startSeconds);

    /// Goes to the last known place of the stream that is not after `timestamp`, in ticks of its
    /// time base; the container's start time counts. 0 or more, or a negative code.
    int seekStream(int streamIndex, std::int64_t timestamp);
    /// Goes to a place of the file where a packet of it begins. 0 or more, or a negative code.
    int seekToByte(std::int64_t position);

    /// How many places of the file have been learnt so far, by its index or by reading. With
    /// others a seek may lead elsewhere.
    int knownPlaces() const;

    const std::string& path() const { return path_; }
    AVFormatContext* container() const { return container_.get(); }
    /// Null when there is none.
    AVStream* videoStream() const { return stream(videoStreamIndex_); }
    AVStream* audioStream() const { return stream(audioStreamIndex_); }
    int videoStreamIndex() const { return videoStreamIndex_; } ///< -1: none
    int audioStreamIndex() const { return audioStreamIndex_; } ///< -1: none
    /// Where the time line of the container begins, microseconds; 0 when unknown.
    std::int64_t startUs() const;
    /// As the file was when it was opened.
    const FileIdentity& identity() const { return files_.identity(); }

private:
    static int isStopped(void* self);
    AVStream* stream(int index) const;
    int findStreamInfo();
    void pickStreams();
    std::optional<std::int64_t> bytePosition(double startSeconds) const;
    double containerStartSeconds() const; ///< 0 when unknown

    std::string path_;
    const StopFlag* stop_;
    InputFiles files_; ///< outlives the container, which reads through them
    InputContextHandle container_;
    std::deque<PacketHandle> lookahead_; ///< read already, to be given out first
    int videoStreamIndex_ = -1;
    int audioStreamIndex_ = -1;
    bool guessesDecodingTimes_ = false; ///< the library, without knowing the decoder's delay
};

} // namespace velmora
