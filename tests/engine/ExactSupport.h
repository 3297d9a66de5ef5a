#pragma once

#include "JobSupport.h"
#include "RunReport.h"

#include <cstdint>
#include <string>
#include <vector>

namespace velmora::test {

/// A test of exact jobs: H.264 at 2 Mbit/s in 128 x 64, the source's timing, AAC at 48,000 Hz,
/// until a test asks for something else.
class Exact : public JobTest {
protected:
    /// Carries out the job; its report is in `report_`.
    JobResult cut(const std::string& input, std::int64_t startMs, std::int64_t endMs,
                  const std::string& output);
    JobResult join(const std::vector<std::string>& inputs, const std::string& output);

    VideoSettings video_{.codec = AV_CODEC_ID_H264,
                         .bitRate = 2'000'000,
                         .width = 128,
                         .height = 64,
                         .frameRate = 0.0};
    AudioSettings audio_{
        .codec = AV_CODEC_ID_AAC, .bitRate = 128'000, .sampleRate = 48'000, .channels = 2};
    RunReport report_;

private:
    JobResult runJob(Job job);
};

/// 128 x 64 pictures made from `pictures`, and a tone, for `seconds`; `options` are those of the
/// output. Shared by all tests: never write to it.
std::string exactSource(const std::string& name, const std::string& pictures = "testsrc2",
                        const std::string& options = "-c:v libx264 -g 25 -pix_fmt yuv420p");

/// The times of the pictures, in the order of showing, ticks.
std::vector<std::int64_t> pictureTimes(const std::string& path);
/// One pixel of the first picture, as red, green and blue.
std::vector<int> pixelOf(const std::string& path, int x, int y);

} // namespace velmora::test
