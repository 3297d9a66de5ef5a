#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <optional>
#include <string>

namespace velmora {

/// What tells one file, in one state of its content, from another.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    std::int64_t modifiedNs = 0; ///< last change of the content, nanoseconds
    std::int64_t changedNs = 0;  ///< last change of content or attributes, nanoseconds

    bool operator==(const FileIdentity&) const = default;
    bool isSameFile(const FileIdentity& other) const {
        return device == other.device && inode == other.inode;
    }

    static FileIdentity from(const struct stat& status);
    /// Follows links; nothing when the path cannot be looked at.
    static std::optional<FileIdentity> ofPath(const std::string& path);
};

} // namespace velmora
