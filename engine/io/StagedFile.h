#pragma once

#include <string>

namespace velmora {

/// A file that takes another's place once it is complete. Until then that other one, or its
/// absence, stays as it is; without commit() nothing is left behind.
class StagedFile {
public:
    /// Nothing on the disk is touched.
    explicit StagedFile(const std::string& target);
    ~StagedFile();
    StagedFile(const StagedFile&) = delete;
    StagedFile& operator=(const StagedFile&) = delete;

    /// Looks whether the target can be replaced: it is not there, or a regular file that may be
    /// written to. 0 or a negative libav error code.
    int prepare();
    /// Where to write, in the folder of the target.
    const std::string& path() const { return path_; }
    /// Puts what was written in the target's place, with its permissions. 0 or a negative code.
    int commit();

private:
    std::string target_; ///< behind all links
    std::string path_;
    bool isDone_ = true; ///< nothing to be removed
};

} // namespace velmora
