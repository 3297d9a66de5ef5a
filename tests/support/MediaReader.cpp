#include "MediaReader.h"

#include "Program.h"

#include <sstream>
#include <stdexcept>

namespace velmora::test {
namespace {

using nlohmann::json;

/// The prefix keeps a name with a colon from being read as an address.
std::string addressOf(const std::string& path) {
    return "file:" + path;
}

std::string outputOf(const std::vector<std::string>& command) {
    ProgramResult result = runProgram(command);
    if (result.status != 0) {
        throw std::runtime_error(command.front() + ": " + result.errors);
    }
    return std::move(result.output);
}

std::optional<std::int64_t> ticks(const json& packet, const char* key) {
    return packet.contains(key) ? std::optional(packet[key].get<std::int64_t>()) : std::nullopt;
}

PacketFacts factsOf(const json& packet) {
    PacketFacts facts;
    facts.pts = ticks(packet, "pts");
    facts.dts = ticks(packet, "dts");
    facts.duration = ticks(packet, "duration").value_or(0);
    facts.size = std::stoll(packet.at("size").get<std::string>());
    facts.flags = packet.at("flags").get<std::string>();
    facts.hash = packet.at("data_hash").get<std::string>();
    return facts;
}

} // namespace

json ffprobeJson(const std::string& path, const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"ffprobe", "-v", "error", "-of", "json"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    command.push_back(addressOf(path));
    return json::parse(outputOf(command));
}

std::vector<PacketFacts> packetsOf(const std::string& path, const std::string& stream) {
    const json shown =
        ffprobeJson(path, {"-select_streams", stream, "-show_packets", "-show_data_hash", "md5"});
    std::vector<PacketFacts> packets;
    for (const json& packet : shown.at("packets")) {
        packets.push_back(factsOf(packet));
    }
    return packets;
}

std::vector<std::string> frameMd5s(const std::string& path, const std::string& stream) {
    std::istringstream lines(
        outputOf({"ffmpeg", "-v", "error", "-nostdin", "-i", addressOf(path), "-map", "0:" + stream,
                  "-vsync", "passthrough", "-f", "framemd5", "-"}));
    std::vector<std::string> hashes;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with('#')) {
            hashes.push_back(line.substr(line.rfind(' ') + 1));
        }
    }
    return hashes;
}

bool ffmpegDecodesClean(const std::string& path) {
    return ffmpegDecodesClean(std::vector{path});
}

bool ffmpegDecodesClean(const std::vector<std::string>& paths) {
    std::vector<std::string> command{"ffmpeg", "-v", "error", "-nostdin", "-xerror"};
    for (const std::string& path : paths) {
        command.insert(command.end(), {"-i", addressOf(path)});
    }
    for (std::size_t i = 0; paths.size() > 1 && i < paths.size(); ++i) {
        command.insert(command.end(), {"-map", std::to_string(i)});
    }
    command.insert(command.end(), {"-f", "null", "-"});
    const ProgramResult result = runProgram(command);
    return result.status == 0 && result.errors.empty();
}

} // namespace velmora::test
