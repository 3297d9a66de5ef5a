#pragma once

#include "ExactSupport.h"

#include <filesystem>
#include <iterator>
#include <vector>

namespace velmora::test {

/// A test of exact cuts that copy.
class ExactCopy : public Exact {
protected:
    JobResult copy(const std::string& input, std::int64_t startMs, std::int64_t endMs,
                   const std::string& output) {
        Job job;
        job.add(input, output, static_cast<double>(startMs) / 1000,
                static_cast<double>(endMs) / 1000);
        job.windows.push_back({startMs, endMs});
        job.exact = true;
        load(engine_, job);
        report_ = engine_.run(job);
        return result();
    }
    /// Nothing is left in the test's folder but these many files.
    void expectFiles(std::ptrdiff_t count) const {
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_.path()), {}), count);
    }
};

inline const std::vector<int> kDone{ConversionEngine::Done};
inline const std::vector<int> kFailed{ConversionEngine::Failed};

} // namespace velmora::test
