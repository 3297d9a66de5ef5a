#pragma once

#include "ConversionEngine.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora::test {

/// A test of probes. The fields that a probe fills begin with -77, which none leaves by chance.
class Probe : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    static ConversionEngine& engine() { return ConversionEngine::instance(); }
    static int probeOf(const std::string& path);
    static void spoilResults();
};

} // namespace velmora::test
