#include "PlayList.h"

#include <string>
#include <string_view>

namespace velmora {
namespace {

constexpr std::string_view kMark = "#EXTM3U";
constexpr std::size_t kMaxBytes = std::size_t{4} * 1024 * 1024;

} // namespace

bool isPlayList(const FileReader& file) {
    return file.beginning(kMark.size()) == kMark;
}

bool isEndlessPlayList(const FileReader& file) {
    if (!isPlayList(file)) {
        return false;
    }
    const std::string content = file.beginning(kMaxBytes);
    return content.size() == kMaxBytes || (content.find("#EXTINF") != std::string::npos &&
                                           content.find("#EXT-X-ENDLIST") == std::string::npos);
}

} // namespace velmora
