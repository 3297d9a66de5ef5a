#include "MediaEdits.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace velmora::test {
namespace {

Bytes::iterator find(Bytes& content, Bytes::iterator from, std::string_view text) {
    return std::search(from, content.end(), text.begin(), text.end());
}

} // namespace

void keepFirstHalf(Bytes& content) {
    content.resize(content.size() / 2);
}

void overwriteBytes(Bytes& content) {
    for (std::size_t i = content.size() / 4; i < content.size() / 2; i += 500) {
        content[i] = static_cast<std::uint8_t>(~content[i]);
    }
}

void overwriteStart(Bytes& content) {
    for (std::size_t i = 60; i < std::min<std::size_t>(content.size(), 3000); i += 7) {
        content[i] = static_cast<std::uint8_t>(~content[i]);
    }
}

// Packets of a transport stream have 188 bytes.
void dropFirstThird(Bytes& content) {
    const std::size_t packets = content.size() / 188;
    content.erase(content.begin(),
                  content.begin() + static_cast<std::ptrdiff_t>(packets / 3 * 188));
}

void forgetCodec(Bytes& content) {
    constexpr std::string_view kUnknown = "ZZ99";
    for (auto at = content.begin(); (at = find(content, at, "FMP4")) != content.end();) {
        std::ranges::copy(kUnknown, at);
    }
}

// Its second mention is in the stream's format, 24 bytes before the decoder's header.
void damageDecoderHeader(Bytes& content) {
    const auto handler = find(content, content.begin(), "FFV1");
    const auto format = find(content, handler + 4, "FFV1");
    std::fill_n(format + 24, 16, std::uint8_t{0xFF});
}

void writeImpossiblePictures(Bytes& content) {
    constexpr std::array<std::uint8_t, 32> kHeader{
        'D', 'K', 'I', 'F', 0, 0, 32, 0, 'A', 'V', '0', '1', 64, 1, 180, 0, // 320 x 180
        25,  0,   0,   0,   1, 0, 0,  0, 1,   0,   0,   0};                 // 25/1, one picture
    constexpr std::array<std::uint8_t, 12> kPicture{100};                   // its size and time
    content.assign(kHeader.begin(), kHeader.end());
    content.insert(content.end(), kPicture.begin(), kPicture.end());
    content.insert(content.end(), 100, 0xFF);
}

void writeText(Bytes& content) {
    constexpr std::string_view kText = "These are words and no pictures.\n";
    for (int i = 0; i < 100; ++i) {
        content.insert(content.end(), kText.begin(), kText.end());
    }
}

void writeSubtitles(Bytes& content) {
    constexpr std::string_view kText = "1\n00:00:00,500 --> 00:00:01,500\nOne\n\n"
                                       "2\n00:00:02,000 --> 00:00:03,000\nTwo\n\n";
    content.assign(kText.begin(), kText.end());
}

} // namespace velmora::test
