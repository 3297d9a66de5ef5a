#include "SnapshotSupport.h"

#include "EngineLog.h"
#include "SnapshotReference.h"

extern "C" {
#include <libavutil/log.h>
}

#include <filesystem>

namespace velmora::test {

namespace fs = std::filesystem;

void Snapshots::SetUp() {
    logged().clear();
    setLogSink([](const char* line) { logged() += line; });
    av_log_set_level(AV_LOG_INFO);
    engine_.snapshotPath = picture_;
    engine_.currentIndex = 0;
}

void Snapshots::TearDown() {
    setLogSink(nullptr);
    engine_.reset();
}

int Snapshots::take(const std::string& path, double seconds) {
    engine_.probePath = path;
    engine_.startTimes[0] = seconds;
    return engine_.snapshot();
}

void Snapshots::expectPlainPicture(const std::string& path, double seconds) {
    const ReferenceSnapshot reference = referenceSnapshot(path, seconds);
    fs::remove(picture_);
    ASSERT_EQ(take(path, seconds), 0);
    ASSERT_EQ(fs::exists(picture_), reference.file.has_value());
    EXPECT_TRUE(!reference.file || readFile(picture_) == *reference.file);
}

std::string& Snapshots::logged() {
    static std::string text;
    return text;
}

} // namespace velmora::test
