#pragma once

#include "AvHandles.h"
#include "FileWriter.h"
#include "PacketClock.h"

#include <string>
#include <utility>

namespace velmora {

/// One stream of the output with the clock that numbers its packets, from the job's first input to
/// its last.
struct OutputStream {
    AVStream* stream = nullptr; ///< owned by the muxer's context
    PacketClock clock;          ///< counts what has been written; set up by the header
    AVRational unit{0, 1};      ///< seconds per frame or per sample
};

/// The one output of a job: the muxer, its streams and its file. Cannot be copied; belongs to one
/// thread. A file whose trailer was not written is left as far as it got. Muxers that open files by
/// themselves, or that read back what they have written, are refused, and so is every file that a
/// muxer may ask for besides its own.
class OutputMedia {
public:
    explicit OutputMedia(std::string path) : path_(std::move(path)) {}
    OutputMedia(const OutputMedia&) = delete;
    OutputMedia& operator=(const OutputMedia&) = delete;
    ~OutputMedia() = default;

    /// 0 or a negative libav error code: AVERROR(EINVAL) for a format that is not written as one
    /// file from its beginning to its end. Nothing on the disk is touched.
    int create(const AVOutputFormat& format);
    const AVOutputFormat& format() const { return *context_->oformat; }
    AVDictionary** tags() { return &context_->metadata; }
    AVFormatContext& container() { return *context_; }
    /// Has the muxer write by this option, if it knows it. Before the header.
    void setOption(const char* key, const char* value) { options_.set(key, value); }

    /// A new stream without parameters, to be filled in before the header; null without memory.
    OutputStream* addVideoStream(AVRational frameDuration);
    OutputStream* addAudioStream(AVRational sampleDuration);
    /// Null when there is none.
    OutputStream* videoStream() { return video_.stream != nullptr ? &video_ : nullptr; }
    OutputStream* audioStream() { return audio_.stream != nullptr ? &audio_ : nullptr; }

    /// How much has been written, seconds; 0 without such a stream.
    double videoSeconds() const { return video_.clock.seconds(); }
    /// The same, after `pictures` more.
    double videoSecondsAfter(std::int64_t pictures) const {
        return video_.clock.secondsAt(video_.clock.units() + pictures);
    }
    double audioSeconds() const { return audio_.clock.seconds(); }

    /// Opens the file and writes the header. 0 or a negative code.
    int begin();
    bool hasBegun() const { return begun_; }

    /// Takes the packet, stamped in the stream's time base, and interleaves it with those of the
    /// other stream. 0 or more, or a negative code.
    int write(const OutputStream& stream, AVPacket& packet);
    /// The file's first failed write, or 0. It may show at another packet than the one that failed.
    int fileError() const { return file_.error(); }

    /// Writes the trailer and closes the file. 0, or the code of the first failure.
    int finish();

private:
    OutputStream* addStream(OutputStream& stream, AVRational unit);
    int writeHeader();

    std::string path_;
    FileWriter file_; ///< outlives the muxer, which writes through it
    OutputContextHandle context_;
    OptionDictionary options_;
    OutputStream video_;
    OutputStream audio_;
    bool begun_ = false;
};

} // namespace velmora
