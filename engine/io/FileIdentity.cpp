#include "FileIdentity.h"

namespace velmora {
namespace {

std::int64_t nanoseconds(const timespec& time) {
    return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

} // namespace

FileIdentity FileIdentity::from(const struct stat& status) {
    return {.device = status.st_dev,
            .inode = status.st_ino,
            .size = status.st_size,
            .modifiedNs = nanoseconds(status.st_mtim),
            .changedNs = nanoseconds(status.st_ctim)};
}

std::optional<FileIdentity> FileIdentity::ofPath(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return from(status);
}

} // namespace velmora
