// Pictures and movies of several files.

#include "NestedSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

// Pictures.

TEST_F(NestedFiles, nameOfAPictureSequence_standsForTheOneFile) {
    const std::string outside = outside_ + "/private.png";
    fs::copy_file(mediaPath("pixel.png"), outside);
    const OpenWatch watch(outside);
    const std::string input = copyOfMedia("pixel.png", folder_);
    const std::string sequence = inside_ + "/p%03d.png";
    fs::rename(input, sequence);
    for (const char* name : {"/p000.png", "/p001.png", "/p002.png"}) {
        fs::create_symlink(outside, inside_ + name);
    }

    EXPECT_TRUE(videoBytesOf(sequence) == readFile(sequence));

    EXPECT_EQ(watch.openings(), 0);
}

/// One colour in each of the three files of a picture of 352 x 288.
void writePlanes(const std::string& y, const std::string& u, const std::string& v) {
    writeFile(y, Bytes(std::size_t{352} * 288, 1));
    writeFile(u, Bytes(std::size_t{176} * 144, 2));
    writeFile(v, Bytes(std::size_t{176} * 144, 3));
}

TEST_F(NestedFiles, planesBesideAPicture_areRead) {
    writePlanes(inside_ + "/p.Y", inside_ + "/p.U", inside_ + "/p.V");
    EXPECT_EQ(std::ranges::count(videoBytesOf(inside_ + "/p.Y"), 2), 176 * 144);
}

TEST_F(NestedFiles, planeOutside_isNotOpened) {
    const std::string outside = outside_ + "/private";
    writePlanes(inside_ + "/p.Y", outside, inside_ + "/p.V");
    fs::create_symlink(outside, inside_ + "/p.U");
    const OpenWatch watch(outside);
    EXPECT_EQ(std::ranges::count(videoBytesOf(inside_ + "/p.Y"), 2), 0);
    EXPECT_EQ(watch.openings(), 0);
}

// The demuxer of planes opens the input once more, by its name.
TEST_F(NestedFiles, inputBehindALink_mayBeOpenedAgain) {
    writePlanes(outside_ + "/p.Y", inside_ + "/p.U", inside_ + "/p.V");
    fs::create_symlink(outside_ + "/p.Y", inside_ + "/p.Y");
    const Bytes picture = videoBytesOf(inside_ + "/p.Y");
    EXPECT_EQ(std::ranges::count(picture, 1), 352 * 288);
    EXPECT_EQ(std::ranges::count(picture, 2), 176 * 144);
}

// Media files that leave their data to another file.

void putSize(Bytes& bytes, std::size_t at, std::size_t size) {
    for (int i = 0; i < 4; ++i) {
        bytes[at + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(size >> (24 - 8 * i));
    }
}

std::size_t sizeAt(const Bytes& bytes, std::size_t at) {
    std::size_t size = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        size = size << 8 | bytes.at(at + i);
    }
    return size;
}

/// Where a box of this type begins, among those from `at` on.
std::size_t boxAt(const Bytes& bytes, std::size_t at, const std::string& type) {
    while (std::string(bytes.begin() + static_cast<std::ptrdiff_t>(at + 4),
                       bytes.begin() + static_cast<std::ptrdiff_t>(at + 8)) != type) {
        at += sizeAt(bytes, at);
    }
    return at;
}

/// A data reference that names another file.
Bytes aliasOf(const std::string& path) {
    constexpr std::size_t fixedSize = 162;
    Bytes entry(fixedSize, 0);
    std::ranges::copy(std::string("alis"), entry.begin() + 4);
    entry.insert(entry.end(), {0, 2, 0, static_cast<std::uint8_t>(path.size())}); // absolute path
    entry.insert(entry.end(), path.begin(), path.end());
    entry.resize(entry.size() + path.size() % 2);
    entry.insert(entry.end(), {0xFF, 0xFF, 0, 0}); // the end
    putSize(entry, 0, entry.size());
    return entry;
}

/// Makes the first track of a movie whose index is its last box refer to `path` for its data.
Bytes referringTo(Bytes movie, const std::string& path) {
    std::vector<std::size_t> boxes{boxAt(movie, 0, "moov")};
    for (const char* type : {"trak", "mdia", "minf", "dinf", "dref"}) {
        boxes.push_back(boxAt(movie, boxes.back() + 8, type));
    }
    const std::size_t entry = boxes.back() + 16;
    const Bytes alias = aliasOf(path);
    const std::size_t growth = alias.size() - sizeAt(movie, entry);
    for (const std::size_t box : boxes) {
        putSize(movie, box, sizeAt(movie, box) + growth);
    }
    const auto begin = movie.begin() + static_cast<std::ptrdiff_t>(entry);
    movie.erase(begin, begin + static_cast<std::ptrdiff_t>(sizeAt(movie, entry)));
    movie.insert(movie.begin() + static_cast<std::ptrdiff_t>(entry), alias.begin(), alias.end());
    return movie;
}

TEST_F(NestedFiles, movieWithExternalData_opensNoOtherFile) {
    const std::string external = outside_ + "/external.mp4";
    const std::string movie = inside_ + "/movie.mov";
    fs::copy_file(mediaPath("mpeg4.mp4"), external);
    writeFile(movie,
              referringTo(readFile(mediaMadeBy("-i @mpeg4.mp4 -c copy", "whole.mov")), external));
    const OpenWatch watch(external);
    AtLogLine reference("external track", [](int) {}); // the demuxer has understood it

    videoBytesOf(movie);

    EXPECT_GT(reference.seen(), 0);
    EXPECT_EQ(watch.openings(), 0);
}

} // namespace
} // namespace velmora::test
