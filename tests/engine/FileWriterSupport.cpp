#include "FileWriterSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

namespace velmora::test {

Bytes someBytes(std::size_t count, std::uint32_t seed) {
    std::mt19937_64 random(seed);
    Bytes bytes(count + sizeof(std::uint64_t));
    for (std::size_t i = 0; i < count; i += sizeof(std::uint64_t)) {
        const std::uint64_t number = random();
        std::memcpy(&bytes[i], &number, sizeof(number));
    }
    bytes.resize(count);
    return bytes;
}

void write(FileWriter& writer, std::span<const std::uint8_t> bytes) {
    avio_write(writer.io(), bytes.data(), static_cast<int>(bytes.size()));
}

void Mirror::write(const Bytes& bytes) {
    test::write(writer_, bytes);
    const std::size_t end = position_ + bytes.size();
    content_.resize(std::max(content_.size(), end));
    std::ranges::copy(bytes, content_.begin() + static_cast<std::ptrdiff_t>(position_));
    position_ = end;
}

void Mirror::seek(std::size_t position) {
    const auto target = static_cast<std::int64_t>(position);
    EXPECT_EQ(avio_seek(writer_.io(), target, SEEK_SET), target);
    position_ = position;
}

} // namespace velmora::test
