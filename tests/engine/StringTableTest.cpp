// Tables of strings, and what is copied into their rows.

#include "ConversionEngine.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>

namespace velmora::test {
namespace {

TEST(StringTable, CountBelowOne_has_no_rows) {
    EXPECT_TRUE(ConversionEngine::allocStringTable(0, 256).empty());
    EXPECT_TRUE(ConversionEngine::allocStringTable(-1, 256).empty());
    EXPECT_TRUE(ConversionEngine::allocStringTable(std::numeric_limits<int>::min(), 256).empty());
}

TEST(StringTable, Rows_are_zeroed_and_as_large_as_asked) {
    const StringTable table = ConversionEngine::allocStringTable(3, 256);

    ASSERT_EQ(table.size(), 3U);
    for (const std::string& row : table) {
        EXPECT_EQ(row, std::string(256, '\0'));
    }
}

TEST(StringTable, RowOfNoSize_is_empty) {
    EXPECT_EQ(ConversionEngine::allocStringTable(2, 0), (StringTable{"", ""}));
    EXPECT_EQ(ConversionEngine::allocStringTable(1, -4), (StringTable{""}));
}

TEST(StringTable, Rows_do_not_share_their_bytes) {
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

TEST(CopyString, SizeZeroOrLess_nothing_is_written) {
    EXPECT_EQ(copied(0, "abc"), "########");
    EXPECT_EQ(copied(-1, "abc"), "########");
    EXPECT_EQ(copied(std::numeric_limits<int>::min(), "abc"), "########");
}

TEST(CopyString, SizeZeroOrLess_destination_may_be_null) {
    ConversionEngine::copyString(nullptr, 0, "abc");
    ConversionEngine::copyString(nullptr, -1, "abc");
}

TEST(CopyString, SizeOne_only_the_terminator_is_written) {
    EXPECT_EQ(copied(1, "abc"), "\0#######"s);
}

TEST(CopyString, LongerSource_is_cut_off_and_terminated) {
    EXPECT_EQ(copied(4, "abcdef"), "abc\0####"s);
    EXPECT_EQ(copied(4, "abcd"), "abc\0####"s);
}

TEST(CopyString, SourceThatJustFits_is_copied_whole) {
    EXPECT_EQ(copied(4, "abc"), "abc\0####"s);
}

TEST(CopyString, ShorterSource_bytes_after_the_terminator_stay) {
    EXPECT_EQ(copied(8, "ab"), "ab\0#####"s);
    EXPECT_EQ(copied(8, ""), "\0#######"s);
}

// The part that is wanted may be all there is: no byte beyond it may be read.
TEST(CopyString, UnterminatedSource_is_read_no_further_than_needed) {
    const std::array<char, 3> source{'a', 'b', 'c'};
    EXPECT_EQ(copied(4, source.data()), "abc\0####"s);
}

} // namespace
} // namespace velmora::test
