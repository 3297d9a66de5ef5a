#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {

using Bytes = std::vector<std::uint8_t>;

/// A new folder of this test's own, removed with all that is in it.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    /// The path of a file in the folder, as the engine wants it.
    std::string operator/(std::string_view name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

/// Throw when the file cannot be read or written.
Bytes readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const Bytes& content);
void writeFile(const std::filesystem::path& path, std::string_view content);

/// The descriptors that this process has open.
std::size_t openDescriptors();
/// The threads of this process, once no more than `expected` are left of those that have ended.
std::size_t threadsOnceEnded(std::size_t expected);
std::size_t threads();

} // namespace velmora::test
