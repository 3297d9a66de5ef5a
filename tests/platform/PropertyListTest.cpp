#include "PropertyList.h"

#include "BinaryPropertyList.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <QVariant>

#include <random>
#include <string>
#include <string_view>

namespace velmora::test {
namespace {

constexpr const char* kBegin = R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0">)";

/// A property list of which `rest` follows the beginning.
std::string begun(std::string_view rest) {
    std::string text = kBegin;
    text.insert(text.end(), rest.begin(), rest.end());
    return text;
}

std::string repeated(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

std::string nested(int levels) {
    return kBegin + repeated("<array>", levels) + repeated("</array>", levels) + "</plist>";
}

std::string bigEndian(std::uint64_t value, int bytes) {
    std::string text;
    for (int shift = (bytes - 1) * 8; shift >= 0; shift -= 8) {
        text += static_cast<char>(value >> static_cast<unsigned>(shift));
    }
    return text;
}

/// A binary property list of these coded objects, of which the first is the root.
std::string binary(const std::vector<std::string>& objects) {
    std::string content = "bplist00";
    std::string places;
    for (const std::string& object : objects) {
        places += bigEndian(content.size(), 4);
        content += object;
    }
    const std::size_t placesAt = content.size();
    return content + places + std::string(6, '\0') + "\4\2" + bigEndian(objects.size(), 8) +
           bigEndian(0, 8) + bigEndian(placesAt, 8);
}

/// A coded array of these objects; "\xAF\x11" announces a count of two bytes.
std::string arrayOf(const std::vector<std::uint64_t>& indexes) {
    std::string object = "\xAF\x11" + bigEndian(indexes.size(), 2);
    for (const std::uint64_t index : indexes) {
        object += bigEndian(index, 2);
    }
    return object;
}

class PropertyListTest : public ::testing::Test {
protected:
    QVariant read(const std::string& content) {
        writeFile(folder_.path() / "list.plist", content);
        return readPropertyList(QString::fromStdString(folder_ / "list.plist"));
    }

    TemporaryFolder folder_;
};

TEST_F(PropertyListTest, read_xmlOfAllTypes_givesTheirValues) {
    const QVariant value = read(
        begun("<dict><key>text</key><string>é &lt;</string><key>number</key><integer>-7</integer>"
              "<key>real</key><real>1.5</real><key>yes</key><true/><key>date</key>"
              "<date>2020-01-01T00:00:00Z</date><key>list</key><array><string>a</string>"
              "<data>AA==</data><string>b</string></array></dict></plist>"));
    const QVariantMap map = value.toMap();
    EXPECT_EQ(map.value("text"), QVariant(QString("é <")));
    EXPECT_EQ(map.value("number"), QVariant(qlonglong{-7}));
    EXPECT_EQ(map.value("real"), QVariant(1.5));
    EXPECT_EQ(map.value("yes"), QVariant(true));
    EXPECT_FALSE(map.value("date").isValid());
    EXPECT_EQ(map.value("list"), QVariant(QVariantList{QString("a"), QVariant(), QString("b")}));
}

TEST_F(PropertyListTest, read_binary_givesItsValues) {
    const QVariant value = read(binary({arrayOf({1, 2, 1}),
                                        "\x53"
                                        "abc",
                                        "\xD1" + bigEndian(1, 2) + bigEndian(3, 2), "\x10\x2A"}));
    EXPECT_EQ(value,
              QVariant(QVariantList{QString("abc"), QVariantMap{{"abc", QVariant(qlonglong{42})}},
                                    QString("abc")}));
}

TEST_F(PropertyListTest, read_filesThatAreNone_givesNothing) {
    EXPECT_FALSE(readPropertyList("").isValid());
    EXPECT_FALSE(readPropertyList("/nowhere/list.plist").isValid());
    EXPECT_FALSE(readPropertyList(QString::fromStdString(folder_.path().string())).isValid());
    EXPECT_FALSE(read("").isValid());
    EXPECT_FALSE(read("words").isValid());
    EXPECT_FALSE(read("bplist00").isValid());
    EXPECT_FALSE(read(begun("<array><string>a</string>")).isValid());
}

TEST_F(PropertyListTest, read_fileAboveTheLimit_givesNothing) {
    const std::string begin = begun("<array></array>");
    const std::string end = "</plist>";
    const std::size_t limit = std::size_t{256} * 1024;
    const std::string blanks(limit - begin.size() - end.size(), ' ');
    EXPECT_TRUE(read(begin + blanks + end).isValid());
    EXPECT_FALSE(read(begin + blanks + ' ' + end).isValid());
}

TEST_F(PropertyListTest, read_nesting_isLimited) {
    EXPECT_TRUE(read(nested(32)).isValid());
    EXPECT_FALSE(read(nested(33)).isValid());
    EXPECT_FALSE(read(nested(17000)).isValid());
    EXPECT_FALSE(read(kBegin + repeated("<array>", 37000)).isValid());
    EXPECT_FALSE(read(kBegin + repeated("<dict><key>a</key>", 14000)).isValid());
}

TEST_F(PropertyListTest, read_binaryNestedDeeply_givesNothing) {
    std::vector<std::string> objects;
    for (std::uint64_t i = 1; i < 20000; ++i) {
        objects.push_back(arrayOf({i}));
    }
    objects.push_back(arrayOf({}));
    EXPECT_FALSE(read(binary(objects)).isValid());
}

TEST_F(PropertyListTest, read_binaryThatHoldsAnArrayTwice_givesNothing) {
    std::vector<std::string> objects;
    for (std::uint64_t i = 1; i < 30; ++i) {
        objects.push_back(arrayOf({i, i}));
    }
    objects.push_back(arrayOf({}));
    EXPECT_FALSE(read(binary(objects)).isValid());
    EXPECT_FALSE(read(binary({arrayOf({0})})).isValid());
}

// Each of 30 levels holds the next one twice, which is a billion values.
TEST(BinaryPropertyList, containersHeldTwice_areNotSafe) {
    const auto isSafe = [](const std::string& content) {
        return isSafeBinaryPropertyList(QByteArray::fromStdString(content));
    };
    const std::string key = "\x51k";
    const std::string dictionary = std::string("\xD1") + bigEndian(2, 2) + bigEndian(1, 2);
    EXPECT_TRUE(isSafe(binary({dictionary, arrayOf({2}), key})));
    EXPECT_FALSE(isSafe(binary({arrayOf({1, 1}), arrayOf({})})));
    EXPECT_FALSE(isSafe(binary({arrayOf({1, 1}), dictionary, key})));
    EXPECT_FALSE(isSafe(binary({arrayOf({1, 1}), "\xC0"}))); // a set
    EXPECT_FALSE(isSafe(binary({std::string("\xD1") + bigEndian(1, 2) + bigEndian(0, 2), key})));
    EXPECT_TRUE(isSafe(binary({"\x5F\x13" + bigEndian(3, 8) + "abc"}))); // a length of eight bytes
    EXPECT_FALSE(isSafe("bplist00"));
}

TEST_F(PropertyListTest, read_binaryThatHoldsALongTextOften_givesNothing) {
    const std::string longText = "\x5F\x11" + bigEndian(60000, 2) + std::string(60000, 'x');
    EXPECT_TRUE(read(binary({arrayOf(std::vector<std::uint64_t>(200, 1)), longText})).isValid());
    EXPECT_FALSE(read(binary({arrayOf(std::vector<std::uint64_t>(300, 1)), longText})).isValid());
}

TEST_F(PropertyListTest, read_binaryWithPlacesOutside_givesNothing) {
    EXPECT_FALSE(read(binary({arrayOf({9})})).isValid());
    EXPECT_FALSE(read("bplist00" + std::string(32, '\xFF')).isValid());
    EXPECT_FALSE(read("bplist00\xA0" + std::string(6, '\0') + "\1\1" + bigEndian(1, 8) +
                      bigEndian(1, 8) + bigEndian(8, 8))
                     .isValid());
    EXPECT_FALSE(read(binary({"\x5F\x13" + bigEndian(~std::uint64_t{0}, 8)})).isValid());
}

TEST_F(PropertyListTest, read_damagedBytes_neverCrashes) {
    const std::string xml = begun("<array><dict><key>name</key><string>p &amp; q</string><key>index"
                                  "</key><integer>3</integer></dict></array></plist>");
    const std::string coded = binary({arrayOf({1, 2}),
                                      "\x53"
                                      "abc",
                                      "\xD1" + bigEndian(1, 2) + bigEndian(3, 2), "\x10\x2A"});
    std::mt19937 random(1);
    int readable = 0;
    for (int round = 0; round < 2000; ++round) {
        std::string content = round % 2 == 0 ? xml : coded;
        for (int i = 0; i < 3; ++i) {
            content[random() % content.size()] = static_cast<char>(random());
        }
        readable += read(content).isValid() ? 1 : 0;
    }
    EXPECT_GT(readable, 0);
    EXPECT_LT(readable, 2000);
}

} // namespace
} // namespace velmora::test
