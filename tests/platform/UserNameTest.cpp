#include "UserName.h"

#include "Program.h"

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

TEST(UserNameTest, userName_isTheOneThatTheSystemTells) {
    EXPECT_EQ(userName(), QString::fromStdString(runProgram({"id", "-un"}).output).trimmed());
}

} // namespace
} // namespace velmora::test
