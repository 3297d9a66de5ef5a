#pragma once

#include "JobSupport.h"

#include <cstddef>
#include <string>

namespace velmora::test {

/// A test of runs over a source of two seconds. Also holds each to leaving nothing open or running.
class Run : public JobTest {
protected:
    void TearDown() override { expectNothingLeftSince(before_); }

    static std::size_t videoPackets(const std::string& path) {
        return packetsOf(path, "v:0").size();
    }
    static std::size_t audioPackets(const std::string& path) {
        return packetsOf(path, "a:0").size();
    }

    /// Two seconds of pictures and sound.
    const std::string source_ =
        mediaMadeBy("-f lavfi -i testsrc2=size=64x36:rate=25:duration=2 -f lavfi -i "
                    "sine=frequency=440:sample_rate=44100:duration=2 -c:v mpeg4 -g 25 -c:a aac",
                    "run.mp4");
    const std::size_t sourceVideoPackets_ = 50;
    const std::string missing_ = folder_ / "missing.mp4";
    const std::string output_ = folder_ / "out.mp4";
    const Resources before_ = Resources::now();
};

} // namespace velmora::test
