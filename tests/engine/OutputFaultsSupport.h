#pragma once

#include "JobSupport.h"

#include <functional>
#include <string>

namespace velmora::test {

/// A test of runs that may fail. Holds each to leaving nothing open or running.
class OutputFaults : public JobTest {
protected:
    void TearDown() override { expectNothingLeftSince(before_); }

    const std::string source_ = mediaPath("mpeg4.mp4");
    const Resources before_ = Resources::now();
};

/// About five megabytes that hardly compress.
std::string largeSource();

/// The exit status of `action` in a process of its own.
int statusOf(const std::function<int()>& action);

/// The status to give when the machine does not let a test do what it has to.
inline constexpr int kNotPermitted = 99;

} // namespace velmora::test
