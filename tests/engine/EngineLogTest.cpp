#include "EngineLog.h"
#include "ConversionEngine.h"
#include "MediaOperations.h"
#include "TestMedia.h"

#include <gtest/gtest.h>

extern "C" {
#include <libavutil/log.h>
}

#include <string>
#include <vector>

namespace velmora::test {
namespace {

std::vector<std::string>& lines() {
    static std::vector<std::string> taken;
    return taken;
}

class EngineLogTest : public ::testing::Test {
protected:
    EngineLogTest() {
        lines().clear();
        mediaOperations().setLogSink([](const char* line) { lines().emplace_back(line); });
    }
    ~EngineLogTest() override { setLogSink(nullptr); }
};

TEST_F(EngineLogTest, lineOfTheLibraries_isPassedOnAsOneText) {
    av_log(nullptr, AV_LOG_ERROR, "%s at %d\n", "unexpected end", 42);
    EXPECT_EQ(lines(), std::vector<std::string>{"unexpected end at 42\n"});
}

TEST_F(EngineLogTest, lineBelowTheLibrariesLevel_isDropped) {
    av_log(nullptr, AV_LOG_DEBUG, "too much\n");
    EXPECT_TRUE(lines().empty());
}

TEST_F(EngineLogTest, veryLongLine_isCutOff) {
    av_log(nullptr, AV_LOG_ERROR, "%s", std::string(5000, 'x').c_str());
    ASSERT_EQ(lines().size(), 1U);
    EXPECT_EQ(lines()[0], std::string(1023, 'x'));
}

TEST_F(EngineLogTest, fileThatCannotBeOpened_isNamedWithTheSystemsReason) {
    ConversionEngine& engine = ConversionEngine::instance();
    engine.probePath = "/no/such/film.mp4";
    EXPECT_EQ(engine.probe(), -1);
    engine.reset();
    ASSERT_FALSE(lines().empty());
    EXPECT_NE(lines().back().find("/no/such/film.mp4"), std::string::npos) << lines().back();
    EXPECT_NE(lines().back().find("No such file or directory"), std::string::npos);
}

// The quick reading of headers makes the libraries complain, which is no news to anybody. What is
// kept from the log is known by its words: with others it would be back here.
TEST_F(EngineLogTest, probeOfASoundFile_saysNothing) {
    ConversionEngine& engine = ConversionEngine::instance();
    for (const char* name : {"h264.mp4", "hevc.mkv"}) {
        engine.probePath = mediaPath(name);
        EXPECT_EQ(engine.probe(), 0);
        EXPECT_EQ(lines(), std::vector<std::string>()) << name;
    }
    engine.reset();
}

} // namespace
} // namespace velmora::test
