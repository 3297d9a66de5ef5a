#pragma once

#include "LogLines.h"
#include "SharedState.h"
#include "TestMedia.h"

#include <gtest/gtest.h>

#include <QString>

#include <string>

namespace velmora::test {

/// A test with a shared list and a current setting of its own, and a folder.
class SharedStateTest : public ::testing::Test {
protected:
    SharedStateTest();
    ~SharedStateTest() override;

    /// Adds an item; the times are in the unit of the workspace that the test stands for.
    NodeInfo& addItem(const std::string& path, float startTime, float endTime);
    QString output(const std::string& name) const { return QString::fromStdString(folder_ / name); }

    TemporaryFolder folder_;
};

} // namespace velmora::test
