#include "PlatformLog.h"

#include "LogLines.h"

#include <QLoggingCategory>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

TEST(PlatformLogTest, line_isWrittenAsItStands) {
    const LogLines lines;
    platformLog("get \"x\":1.5 %d ü");
    EXPECT_EQ(lines.all(), QStringList("get \"x\":1.5 %d ü"));
}

TEST(PlatformLogTest, line_levelNotEnabled_isNotWritten) {
    const LogLines lines;
    QLoggingCategory::setFilterRules({});
    platformLog("line");
    EXPECT_TRUE(lines.all().isEmpty());
}

} // namespace
} // namespace velmora::test
