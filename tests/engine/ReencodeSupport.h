#pragma once

#include "JobSupport.h"

extern "C" {
#include <libavcodec/codec_id.h>
}

#include <string>
#include <vector>

namespace velmora::test {

/// A test of re-encoding jobs. The settings ask for H.264 and AAC, 160 x 120, the source's rate,
/// 44,100 Hz and two channels, until a test asks for something else.
class Reencode : public JobTest {
public:
    ~Reencode() override { engine_.reencode = 0; }

protected:
    Reencode();
    void choose(AVCodecID video, AVCodecID audio);

    JobResult cut(const std::string& input, float startMs, float endMs, const std::string& output);
    JobResult join(const std::vector<std::string>& inputs, const std::string& output);
};

/// A second of small pictures, 25 of them, and sound. Shared by all tests: never write to it.
std::string smallSource();

/// A test of re-encoding jobs that ask for pictures of the size that `smallSource` has.
class ReencodeEncoder : public Reencode {
protected:
    ReencodeEncoder();

    /// A second of the source; the path of the output.
    std::string made(const std::string& source, const std::string& extension);
};

/// What ffprobe tells of the stream; null when there is none.
nlohmann::json fieldsOf(const std::string& path, const std::string& stream);

/// Where the last packet of the stream ends, seconds.
double endOf(const std::string& path, const std::string& stream);

/// When bright pictures begin to follow dark ones, and loud sound to follow quiet sound, seconds.
std::vector<double> flashesIn(const std::string& path);
std::vector<double> beepsIn(const std::string& path);

} // namespace velmora::test
