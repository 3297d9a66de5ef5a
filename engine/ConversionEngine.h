#pragma once

#include "RunReport.h"

extern "C" {
#include <libavutil/pixfmt.h>
}

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct AVCodecContext;
struct AVFrame;

namespace velmora {

struct Job;

/// A table of byte strings; each row is read up to its first NUL.
using StringTable = std::vector<std::string>;

/// Releases a picture made by ConversionEngine::allocPicture.
struct FreePicture {
    void operator()(AVFrame* picture) const noexcept;
};
using PictureHandle = std::unique_ptr<AVFrame, FreePicture>;

/// The one object through which the program reaches the media libraries: the job table, the output
/// settings, the results of the last probe, the counters of a run, and the operations on them.
/// Callers set the fields that an operation reads, then call it. Errors are reported by codes and
/// states, never by exceptions; their causes go to the log.
///
/// Threads: `run` works on a thread of its own; everything else belongs to the main thread. A run
/// gets a copy of what it reads, made before its thread is started, so the main thread may probe
/// and preview meanwhile. Only the atomic fields are read and written by both, and
/// `videoFrameRate`, which a run may replace: it is not to be read or written while one goes on.
class ConversionEngine {
public:
    /// A job holds at most this many inputs.
    static constexpr std::size_t kMaxInputs = 999;

    /// Results in `fileStates`. An input goes from pending to one of the others, once.
    enum FileState : std::uint8_t { Done = 1, Failed = 2, Pending = 255 };

    /// The engine, created on first use; lives as long as the process.
    static ConversionEngine& instance();
    ~ConversionEngine() = default;
    ConversionEngine(const ConversionEngine&) = delete;
    ConversionEngine& operator=(const ConversionEngine&) = delete;

    /// Puts paths, stream indexes and counters back to their first values. Job table, settings and
    /// modes keep what they hold.
    void reset();

    /// A table of `count` rows, each a string of `size` NULs; without rows when `count` is below 1.
    static StringTable allocStringTable(int count, int size);
    /// Copies at most `size` - 1 bytes and terminates `dst`; does nothing when `size` is below 1.
    static void copyString(char* dst, int size, const char* src);
    /// A picture with memory of its own, without padding between rows; null when it cannot be had.
    static PictureHandle allocPicture(AVPixelFormat pixelFormat, int width, int height);

    /// Opens `probePath` and fills the probe results. 0; -1: cannot be opened; -2: no stream info;
    /// -4: no decoder for the video; -5: its decoder does not open. Blocks.
    std::int32_t probe();
    /// Carries out the job in the table. Blocks until it has ended or has been stopped.
    void run();
    /// Carries out a job that was copied from the table before; the table's plain fields are not
    /// read. For a thread of its own. Blocks until the job has ended or has been stopped.
    RunReport run(const Job& job);
    /// Writes the first picture found at `startTimes`[`currentIndex`] of `probePath` to
    /// `snapshotPath`, 320 x 240. 0, or the libraries' negative code when the file cannot be opened
    /// or read. Blocks. The file stays open for the next picture until another one is asked for.
    std::int32_t snapshot();

    /// Writes BGR24 rows of `width` x 3 bytes, top row first, as a BMP file; the rows in `pixels`
    /// are upside down afterwards. Only a plain file of this user's is overwritten; anything else
    /// at `path` is left alone and nothing is written.
    static void writeBmp(std::uint8_t* pixels, const std::string& path, int width, int height);
    /// Scales a decoded picture to `width` x `height` and writes it with `writeBmp`.
    static void scaleToBmp(const std::string& path, AVCodecContext& decoder, const AVFrame& frame,
                           int width, int height);

    // Job table: filled by the driver before a run.
    std::int32_t inputCount = 0;
    std::atomic<std::int32_t> jobCount{0}; ///< the tasks that the progress window speaks of
    StringTable inputPaths;                ///< UTF-8
    StringTable outputPaths;               ///< UTF-8; the run writes to the first
    /// Cut start per input, seconds. A run and a snapshot add the container's start time.
    std::array<std::atomic<double>, kMaxInputs> startTimes{};
    std::array<double, kMaxInputs> endTimes{}; ///< seconds; not read by the run
    /// Length of the cut per input, seconds; in a join the run puts `joinTotalMs` here.
    std::array<std::atomic<double>, kMaxInputs> spans{};
    std::array<std::atomic<std::uint8_t>, kMaxInputs + 1> fileStates{};
    std::int32_t joinTotalMs = 0; ///< length of all inputs of a join, in whole *seconds*
    /// The input being processed; -1 before a run, `inputCount` after a complete one. Also the
    /// snapshot's input; that does not disturb a run's count.
    std::atomic<std::int32_t> currentIndex{-1};
    std::atomic<std::int32_t> currentPercent{0}; ///< 0 to 100; of the whole job in a join
    std::atomic<std::uint8_t> stopRequested{0};  ///< 1: the run ends as soon as it can
    std::uint8_t joinMode = 0;                   ///< 1: whole inputs are appended; 0: cut
    std::uint8_t reencode = 0;                   ///< 1: decode and encode; 0: copy packets
    std::uint8_t videoCodecChosen = 0;           ///< for the driver; not read here

    // Output settings: written by the driver; a probe puts the source's values here.
    std::int32_t videoCodecId = 0;    ///< an AVCodecID
    std::int32_t audioCodecId = 0;    ///< an AVCodecID
    std::int32_t videoBitRate = 0;    ///< bit/s
    std::int32_t videoWidth = 0;      ///< pixels
    std::int32_t videoHeight = 0;     ///< pixels
    double videoFrameRate = 0.0;      ///< pictures per second; 0.0: as the source
    std::int32_t audioBitRate = 0;    ///< bit/s
    std::int32_t audioSampleRate = 0; ///< Hz
    std::int32_t audioChannels = 0;

    // Probe results.
    std::int32_t streamCount = 0;
    std::int32_t videoStreamIndex = -1; ///< -1: none
    std::int32_t audioStreamIndex = -1; ///< -1: none
    std::int32_t sourceWidth = 0;       ///< pixels
    std::int32_t sourceHeight = 0;      ///< pixels
    double sourceFrameRate = 0.0;       ///< pictures per second, divided as integers
    std::int32_t sourceFrameRateNum = 0;
    std::int32_t sourceFrameRateDen = 0;
    std::int64_t durationUs = 0;      ///< microseconds; AV_NOPTS_VALUE: unknown
    std::int64_t durationFloor = 0;   ///< always 0
    std::int64_t durationSeconds = 0; ///< seconds, truncated; negative: unknown

    std::string probePath;    ///< UTF-8; what `probe` and `snapshot` open
    std::string snapshotPath; ///< UTF-8; what `snapshot` writes

private:
    ConversionEngine();
};

} // namespace velmora
