#pragma once

#include "JobSupport.h"

#include <cstddef>
#include <string>
#include <vector>

namespace velmora::test {

/// A test of copying jobs.
class Copy : public JobTest {};

/// One stream of a file, as ffprobe shows it.
struct StreamFacts {
    nlohmann::json fields;
    std::vector<PacketFacts> packets; ///< in coding order
    Fraction timeBase;
};
/// `stream`: "v:0", "a:0" … Throws when there is none.
StreamFacts streamOf(const std::string& path, const std::string& stream);

/// What ffmpeg makes of a file: all of its sound and its first video stream are decoded.
struct Decoded {
    std::vector<std::string> pictures; ///< checksums, in the order in which they are shown
    std::string complaints;
};
Decoded decode(const std::string& path);

/// A file that is copied from. It is read once in a process, so it must stay as it is.
struct Source {
    explicit Source(const std::string& file);

    std::string path;
    StreamFacts video;
    std::vector<std::string> pictures; ///< checksums, in display order
    std::vector<std::size_t> places;   ///< of each packet's picture in display order
    Fraction frameDuration;            ///< seconds
    int delay = 0;                     ///< pictures by which coding runs ahead of display

    /// When the first picture is shown.
    double startSeconds() const;
    /// The last key packet that is shown at or before `seconds`.
    std::size_t keyBefore(double seconds) const;
    /// The first packet with the same data; throws when there is none.
    std::size_t indexOf(const PacketFacts& packet) const;

private:
    static const Source& readOnce(const std::string& file);
    Source(const std::string& file, Decoded decoded);

    double shownAt(const PacketFacts& packet) const;
};

/// Video packets of a source that follow each other.
struct Stretch {
    const Source* source = nullptr;
    std::size_t first = 0;
    std::size_t count = 0;
};
Stretch wholeOf(const Source& source);

/// Fails the test unless the output's video is made of these stretches: the same data and key
/// flags, numbered without a gap and in the order in which the source shows them.
void expectPackets(const std::string& output, const std::vector<Stretch>& stretches);
/// The same, and all of the output is decoded without a complaint to the source's pictures.
void expectVideo(const std::string& output, const std::vector<Stretch>& stretches);

} // namespace velmora::test
