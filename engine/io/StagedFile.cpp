#include "StagedFile.h"

extern "C" {
#include <libavutil/error.h>
}

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace velmora {
namespace {

namespace fs = std::filesystem;

/// Where a link leads, also one that leads nowhere yet: it stays a link.
fs::path behindLinks(fs::path path) {
    constexpr int kMostLinks = 40;
    std::error_code failure;
    for (int i = 0; i < kMostLinks && fs::is_symlink(path, failure); ++i) {
        const fs::path next = fs::read_symlink(path, failure);
        if (failure) {
            break;
        }
        path = path.parent_path() / next; // an absolute one replaces all of it
    }
    return path;
}

/// Muxers look at the end of a name.
std::string besideTarget(const fs::path& target) {
    const std::string name = ".velmora-" + std::to_string(getpid()) + target.extension().string();
    return (target.parent_path() / name).string();
}

} // namespace

StagedFile::StagedFile(const std::string& target)
    : target_(behindLinks(target).string()), path_(besideTarget(target_)) {}

StagedFile::~StagedFile() {
    if (!isDone_) {
        std::remove(path_.c_str());
    }
}

int StagedFile::prepare() {
    struct stat status {};
    if (stat(target_.c_str(), &status) == 0) {
        if (!S_ISREG(status.st_mode)) {
            return AVERROR(EINVAL);
        }
        if (access(target_.c_str(), W_OK) != 0) {
            return AVERROR(errno);
        }
    }
    isDone_ = false;
    return 0;
}

int StagedFile::commit() {
    struct stat status {};
    constexpr mode_t kPermissions = 0777;
    if (stat(target_.c_str(), &status) == 0) {
        chmod(path_.c_str(), status.st_mode & kPermissions);
    }
    if (std::rename(path_.c_str(), target_.c_str()) != 0) {
        return AVERROR(errno);
    }
    isDone_ = true;
    return 0;
}

} // namespace velmora
