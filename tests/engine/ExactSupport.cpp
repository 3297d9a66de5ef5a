#include "ExactSupport.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace velmora::test {

JobResult Exact::cut(const std::string& input, std::int64_t startMs, std::int64_t endMs,
                     const std::string& output) {
    constexpr double kMsPerSecond = 1000.0;
    Job job;
    job.add(input, output, static_cast<double>(startMs) / kMsPerSecond,
            static_cast<double>(endMs) / kMsPerSecond);
    job.windows.push_back({startMs, endMs});
    return runJob(std::move(job));
}

JobResult Exact::join(const std::vector<std::string>& inputs, const std::string& output) {
    Job job;
    job.joins = true;
    for (const std::string& input : inputs) {
        job.add(input, output, 0.0, 0.002);
    }
    return runJob(std::move(job));
}

JobResult Exact::runJob(Job job) {
    job.exact = true;
    job.reencodes = true;
    job.video = video_;
    job.audio = audio_;
    load(engine_, job);
    report_ = engine_.run(job);
    return result();
}

std::string exactSource(const std::string& name, const std::string& pictures,
                        const std::string& options) {
    const std::string separator = pictures.find('=') == std::string::npos ? "=" : ":";
    return mediaMadeBy("-f lavfi -i " + pictures + separator +
                           "size=128x64:rate=25:duration=2 -f lavfi -i "
                           "sine=frequency=440:sample_rate=48000:duration=2 -ac 2 " +
                           options,
                       "exact-" + name);
}

std::vector<std::int64_t> pictureTimes(const std::string& path) {
    std::vector<std::int64_t> times;
    for (const PacketFacts& packet : packetsOf(path, "v:0")) {
        times.push_back(packet.pts.value_or(-1));
    }
    std::ranges::sort(times);
    return times;
}

std::vector<int> pixelOf(const std::string& path, int x, int y) {
    const std::string bytes =
        runProgram({"ffmpeg", "-v", "error", "-nostdin", "-i", path, "-frames:v", "1", "-vf",
                    "format=rgb24,crop=1:1:" + std::to_string(x) + ":" + std::to_string(y), "-f",
                    "rawvideo", "-"})
            .output;
    std::vector<int> colours;
    std::ranges::transform(bytes, std::back_inserter(colours),
                           [](char byte) { return static_cast<unsigned char>(byte); });
    return colours;
}

} // namespace velmora::test
