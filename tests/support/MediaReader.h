#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velmora::test {

/// One packet as ffprobe shows it.
struct PacketFacts {
    std::optional<std::int64_t> pts; ///< ticks
    std::optional<std::int64_t> dts; ///< ticks
    std::int64_t duration = 0;       ///< ticks; 0: unknown
    std::int64_t size = 0;
    std::string flags; ///< begins with K for a key packet
    std::string hash;  ///< of its bytes
};

/// What ffprobe writes about the file, by the options in `arguments`. Throws when it fails.
nlohmann::json ffprobeJson(const std::string& path, const std::vector<std::string>& arguments);

/// The packets of one stream ("v:0", "a:0", "1" …) in the order of the file.
std::vector<PacketFacts> packetsOf(const std::string& path, const std::string& stream);

/// The checksum of every decoded picture ("v:0") or block of sound ("a:0"), in order.
std::vector<std::string> frameMd5s(const std::string& path, const std::string& stream);

/// Whether ffmpeg decodes all of the file without a word.
bool ffmpegDecodesClean(const std::string& path);
/// The same of several files, all their streams, in one go.
bool ffmpegDecodesClean(const std::vector<std::string>& paths);

} // namespace velmora::test
