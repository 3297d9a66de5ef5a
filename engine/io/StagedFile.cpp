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

/// Where a link leads: it stays one.
std::string behindLinks(const std::string& path) {
    std::error_code failure;
    const fs::path real = fs::weakly_canonical(path, failure);
    return failure ? path : real.string();
}

/// Muxers look at the end of a name.
std::string besideTarget(const fs::path& target) {
    const std::string name = ".velmora-" + std::to_string(getpid()) + target.extension().string();
    return (target.parent_path() / name).string();
}

} // namespace

StagedFile::StagedFile(std::string target)
    : target_(behindLinks(target)), path_(besideTarget(target_)) {}

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
