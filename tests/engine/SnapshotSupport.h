#pragma once

#include "ConversionEngine.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora::test {

/// A test of snapshots, of input 0 until it says otherwise, in a folder of its own. Keeps the log.
class Snapshots : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    int take(const std::string& path, double seconds);
    /// Fails the test unless a picture of `path` at this time is the plain one.
    void expectPlainPicture(const std::string& path, double seconds);
    /// What has been logged since the test began.
    static std::string& logged();

    ConversionEngine& engine_ = ConversionEngine::instance();
    TemporaryFolder folder_;
    std::string picture_ = folder_ / "picture.bmp";
};

} // namespace velmora::test
