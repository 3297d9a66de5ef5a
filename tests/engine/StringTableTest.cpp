// Tables of strings, and what is copied into their rows.

#include "ConversionEngine.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>

namespace velmora::test {
namespace {

TEST(StringTable, countBelowOne_hasNoRows) {
    EXPECT_TRUE(ConversionEngine::allocStringTable(0, 256).empty());
    EXPECT_TRUE(ConversionEngine::allocStringTable(-1, 256).empty());
    EXPECT_TRUE(ConversionEngine::allocStringTable(std::numeric_limits<int>::min(), 256).empty());
}

TEST(StringTable, rows_areZeroedAndAsLargeAsAsked) {
    const StringTable table = ConversionEngine::allocStringTable(3, 256);

    ASSERT_EQ(table.size(), 3U);
    for (const std::string& row : table) {
        EXPECT_EQ(row, std::string(256, '\0'));
    }
}

TEST(StringTable, rowOfNoSize_isEmpty) {
    EXPECT_EQ(ConversionEngine::allocStringTable(2, 0), (StringTable{"", ""}));
    EXPECT_EQ(ConversionEngine::allocStringTable(1, -4), (StringTable{""}));
}

TEST(StringTable, rows_doNotShareTheirBytes) {
    StringTable table = ConversionEngine::allocStringTable(2, 16);
    ConversionEngine::copyString(table[0].data(), 16, "first");

    EXPECT_STREQ(table[0].c_str(), "first");
    EXPECT_EQ(table[1], std::string(16, '\0'));
}

/// A buffer whose untouched bytes can be told.
std::string copied(int size, const char* source) {
    std::string buffer = "########";
    ConversionEngine::copyString(buffer.data(), size, source);
    return buffer;
}

using namespace std::string_literals;

TEST(CopyString, sizeZeroOrLess_nothingIsWritten) {
    EXPECT_EQ(copied(0, "abc"), "########");
    EXPECT_EQ(copied(-1, "abc"), "########");
    EXPECT_EQ(copied(std::numeric_limits<int>::min(), "abc"), "########");
}

TEST(CopyString, sizeZeroOrLess_destinationMayBeNull) {
    ConversionEngine::copyString(nullptr, 0, "abc");
    ConversionEngine::copyString(nullptr, -1, "abc");
}

TEST(CopyString, sizeOne_onlyTheTerminatorIsWritten) {
    EXPECT_EQ(copied(1, "abc"), "\0#######"s);
}

TEST(CopyString, longerSource_isCutOffAndTerminated) {
    EXPECT_EQ(copied(4, "abcdef"), "abc\0####"s);
    EXPECT_EQ(copied(4, "abcd"), "abc\0####"s);
}

TEST(CopyString, sourceThatJustFits_isCopiedWhole) {
    EXPECT_EQ(copied(4, "abc"), "abc\0####"s);
}

TEST(CopyString, shorterSource_bytesAfterTheTerminatorStay) {
    EXPECT_EQ(copied(8, "ab"), "ab\0#####"s);
    EXPECT_EQ(copied(8, ""), "\0#######"s);
}

// The part that is wanted may be all there is: no byte beyond it may be read.
TEST(CopyString, unterminatedSource_isReadNoFurtherThanNeeded) {
    const std::array<char, 3> source{'a', 'b', 'c'};
    EXPECT_EQ(copied(4, source.data()), "abc\0####"s);
}

} // namespace
} // namespace velmora::test
