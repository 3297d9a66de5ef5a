#pragma once

#include "FileWriter.h"
#include "TestFiles.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace velmora::test {

inline constexpr std::size_t kKiB = 1024;
inline constexpr std::size_t kMiB = 1024 * kKiB;

/// The same bytes for the same seed.
Bytes someBytes(std::size_t count, std::uint32_t seed = 5);

/// At the writer's place.
void write(FileWriter& writer, std::span<const std::uint8_t> bytes);

/// Does the same to a file and to a piece of memory.
class Mirror {
public:
    explicit Mirror(FileWriter& writer) : writer_(writer) {}

    void write(const Bytes& bytes);
    void seek(std::size_t position);
    const Bytes& content() const { return content_; }

private:
    FileWriter& writer_;
    Bytes content_;
    std::size_t position_ = 0;
};

} // namespace velmora::test
